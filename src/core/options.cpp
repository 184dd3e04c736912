#include "options.h"

int Options::startingHideMode() const
{
    int mode = 0;
    if (hideItemsCopyCommand != 0) {
        mode += 1;
    }
    if (hideItemsWithoutCommand != 0) {
        mode += 2;
    }
    return mode;
}
