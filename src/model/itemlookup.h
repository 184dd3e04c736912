#pragma once

#include <QString>
#include <QtGlobal>

struct MenuDocument;

/// Index of the first item (scanning from 0) whose key equals `key` exactly; -1 when none does.
/// Every lookup from a tree-node key or a copyKey goes through here, never through a kept index.
qint16 findItemByKey(const MenuDocument& document, const QString& key);

/// findItemByKey for a key that must name an item: none is run-time error 9 (subscript out of range)
/// of `source`.
qint16 requireItemByKey(const MenuDocument& document, const QString& key, const char* source);

/// The nearest item at or before `index` whose level is one less than the level of item `index`;
/// -1 for a negative index or when there is none; throws RunTimeError 9 for an index past the last
/// item. Only meaningful while a file is being read.
qint16 findParent(const MenuDocument& document, int index);

/// Number of items whose parent is -1.
qint16 countTopLevel(const MenuDocument& document);
