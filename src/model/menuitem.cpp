#include "menuitem.h"

QList<Command> MenuItem::placeholderCommands()
{
    // Shared by every item that has no command yet, so empty items cost one pointer.
    static const QList<Command> placeholder { Command {} };
    return placeholder;
}

bool operator==(const MenuItem& left, const MenuItem& right)
{
    return left.caption == right.caption && left.level == right.level && left.parent == right.parent
        && left.childCount == right.childCount && left.siblingOrder == right.siblingOrder && left.key == right.key
        && left.commands == right.commands && left.copyKey == right.copyKey
        && left.copiesCommands == right.copiesCommands && left.lastCopyKey == right.lastCopyKey;
}
