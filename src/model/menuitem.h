#pragma once

#include "command.h"

#include <QList>
#include <QString>

/// One entry of the menu tree. The tree shape lives in the numbers (level, parent, childCount,
/// siblingOrder); the key is the item's identity for its whole life, its array index is not.
struct MenuItem
{
    QString caption;
    qint16 level = 0;
    qint16 parent = -1;
    qint16 childCount = 0;
    qint16 siblingOrder = 0;
    QString key;
    /// Slot 0 is a placeholder that is never written or shown; real commands are slots 1..n.
    QList<Command> commands = placeholderCommands();
    QString copyKey = QStringLiteral("-1");
    bool copiesCommands = false;
    /// Key of the newest copy made of this item by subtree copy; not stored in the file.
    QString lastCopyKey;

    /// The upper bound of the command array: the number of real commands.
    int commandUpperBound() const { return int(commands.size()) - 1; }
    bool hasOwnCommands() const { return commands.size() > 1; }

    /// A command array holding only the placeholder slot.
    static QList<Command> placeholderCommands();

    friend bool operator==(const MenuItem& left, const MenuItem& right);
    friend bool operator!=(const MenuItem& left, const MenuItem& right) { return !(left == right); }
};
