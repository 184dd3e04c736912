#include "documentsavability.h"

#include "menufile/saveproblemcheck.h"
#include "model/menudocument.h"

bool documentIsSavable(const MenuDocument& document)
{
    // The editor's own save check: the fuzz targets hold it to what the round trip shows.
    return findSaveProblems(document).isEmpty();
}
