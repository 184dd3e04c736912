#include "menudocument.h"

bool operator==(const MenuDocument& left, const MenuDocument& right)
{
    return left.items == right.items && left.hideMode == right.hideMode && left.filePath == right.filePath
        && left.lastIndex == right.lastIndex && left.windowIndex == right.windowIndex && left.saved == right.saved;
}
