#include "hidemode.h"

#include "model/menuitem.h"

#include <limits>

namespace HideMode {

int applyModeChange(int hideMode, int modeChange)
{
    if (modeChange == -3) {
        return hideMode;
    }
    if (modeChange == 0) {
        return 0;
    }
    if (modeChange == 3) {
        return 3;
    }
    // The Hide entries only ever add or take away 1 or 2, so the sum stays small; saturate rather
    // than wrap should a caller pass something wild.
    const qint64 sum = qint64(hideMode) + modeChange;
    if (sum > std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    if (sum < std::numeric_limits<int>::min()) {
        return std::numeric_limits<int>::min();
    }
    return int(sum);
}

bool isVisible(const MenuItem& item, int hideMode)
{
    const bool hasChildren = item.childCount >= 1;
    switch (hideMode) {
    case 1:
        return !item.copiesCommands;
    case 2:
        return item.hasOwnCommands() || hasChildren;
    case 3:
        // A submenu stays even when it is a link, so its children keep a place in the tree.
        return (item.hasOwnCommands() && !item.copiesCommands) || hasChildren;
    default:
        return true;
    }
}

Marks marksFor(int hideMode)
{
    Marks marks;
    switch (hideMode) {
    case 1:
        marks.copies = true;
        break;
    case 2:
        marks.withoutCommand = true;
        break;
    case 3:
        marks.copies = true;
        marks.withoutCommand = true;
        marks.both = true;
        break;
    default:
        break;
    }
    return marks;
}

QString rootText(int hideMode)
{
    if (hideMode == 0) {
        return QStringLiteral("KELV");
    }
    return QStringLiteral("KELV (Some items may be hidded)");
}

} // namespace HideMode
