#pragma once

#include <QString>

struct MenuDocument;

/// Removes the item with `key` and, first, all its descendants. Each removal moves the last item
/// of the array into the freed slot (the moved item keeps its key); lastIndex is never lowered.
/// Links to a removed item are switched off, the linking items keeping their own commands.
/// Removing the only item leaves a fresh item "New item 1" with key "E0".
void deleteItemTree(MenuDocument& document, const QString& key);
