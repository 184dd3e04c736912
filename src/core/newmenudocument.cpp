#include "newmenudocument.h"

#include "model/menudocument.h"

MenuDocument newMenuDocument(qint16 documentIndex)
{
    MenuItem item;
    item.caption = QStringLiteral("New Item 1");
    item.key = QStringLiteral("E0");
    // Level 1, not 0, like the single item left after deleting everything: whether an item is
    // top-level is decided by its parent alone.
    item.level = 1;
    item.parent = -1;
    item.childCount = 0;
    item.siblingOrder = 1;
    item.commands = MenuItem::placeholderCommands();
    item.copyKey = QStringLiteral("-1");
    item.copiesCommands = false;

    MenuDocument document;
    document.items.append(item);
    document.hideMode = 0;
    document.filePath.clear();
    document.lastIndex = 0;
    document.windowIndex = documentIndex;
    document.saved = false;
    return document;
}
