#include "menureloading.h"

#include "model/errortable.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <algorithm>

TreeUpdate reloadMenu(EditContext& context)
{
    if (!context.arguments.fileDocument) {
        throw RunTimeError(ErrorNumber::InvalidProcedureCall, QStringLiteral("reloadMenu"));
    }
    const MenuDocument& file = *context.arguments.fileDocument;
    MenuDocument& document = context.document;
    document.items = file.items;
    // Keys already given out stay given out: an undo state or the clipboard may still name them.
    document.lastIndex = std::max(document.lastIndex, file.lastIndex);
    document.saved = true;
    TreeUpdate update;
    update.regenerate();
    update.recolour();
    update.showItemCount();
    return update;
}
