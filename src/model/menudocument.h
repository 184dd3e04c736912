#pragma once

#include "menuitem.h"
#include "menuitemarray.h"

#include <QString>

/// One open menu. The same record is the whole-document state kept by undo and redo.
struct MenuDocument
{
    /// The most items a menu can hold: a menu file numbers its items with 16-bit numbers, and the
    /// reader refuses a file with more item lines.
    static constexpr qsizetype maximumItemCount = 32767;

    MenuItemArray items;
    /// 0 shows all items, 1 hides copy-command links, 2 hides items without commands, 3 hides both.
    qint32 hideMode = 0;
    QString filePath;
    /// Number of the newest key given out; never lowered, so keys are never given out twice.
    qint16 lastIndex = 0;
    qint16 windowIndex = 0;
    bool saved = false;

    /// The upper bound of the item array (item count - 1).
    int upperBound() const { return int(items.size()) - 1; }

    friend bool operator==(const MenuDocument& left, const MenuDocument& right);
    friend bool operator!=(const MenuDocument& left, const MenuDocument& right) { return !(left == right); }
};
