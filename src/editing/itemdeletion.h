#pragma once

#include "editoperation.h"

#include <QString>

struct MenuDocument;

/// Removes the item with `key` and, first, all its descendants. Each removal moves the last item
/// of the array into the freed slot (the moved item keeps its key); lastIndex is never lowered.
/// Links to a removed item are switched off, the linking items keeping their own commands.
/// Removing the only item leaves a fresh item "New item 1" with key "E0".
void deleteItemTree(MenuDocument& document, const QString& key);

/// The menu-document half of the editor's Delete command: closes the gap that the item leaves among
/// its siblings, removes it with its branch (or, when it is the only item, resets it in place to the
/// fresh item "New item 1" / "E0"), then makes the copy-command links canonical again.
/// Throws RunTimeError 9 when `key` names no item.
void removeItemBranch(MenuDocument& document, const QString& key);

/// Delete (the Edit menu's Delete, also the second half of Cut): removes the selected item with its
/// branch from the document (removeItemBranch) and patches the tree: the node goes with its subtree,
/// a menu left empty shows a fresh node "New Item 1" (the document's fresh item reads "New item 1"),
/// the tree is recoloured and the first item shown.
TreeUpdate deleteSelectedItem(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation deleteItem { "delete", EditOperation::Needs::ItemNode,
                                            EditOperation::Recording::SnapshotBefore, nullptr, &deleteSelectedItem };
} // namespace EditOperations
