#pragma once

#include "editoperation.h"
#include "itemdeletion.h"

struct MenuDocument;

/// Copies item `sourceIndex` of `source` with its whole branch into `target`, the copy becoming the
/// last child of item `newParent` of `target` (-1: the last top-level item). Copies get fresh keys
/// from the target's key counter in the order they are made (pre-order), keep their branch's shape
/// and order, and each source item notes its newest copy in lastCopyKey. Commands: between two
/// documents a link is dissolved into its target's commands; within one document a copy links to the
/// commands of the item it was copied from when `copyCommandDup` is on (items without commands get
/// no link), and otherwise keeps the source's own link. The nodes of the copies are added to
/// `update`, parents before children. `source` and `target` may be the same document; `newParent`
/// must then lie outside the copied branch. Returns the index of the copy of the source item.
/// Throws RunTimeError 9 on a bad index, and RunTimeError 6 with `operationName` as its source when
/// the copies would not fit into the target (ensureRoomForNewItems); either before anything changed.
int copyItemTree(int sourceIndex, int newParent, MenuDocument& source, MenuDocument& target, bool copyCommandDup,
                 TreeUpdate& update, const char* operationName = "copyItemTree");

/// Copy: the selected item's record, commands included, becomes the clipboard item. Records nothing.
TreeUpdate copyItem(EditContext& context);

/// Paste: the selected item takes over the clipboard item's record (caption, commands, link and
/// also its level, parent and childCount as they were when it was copied), keeping its key and its
/// place among its siblings; only the node's text changes in the tree, and the item panel shows the
/// item as it now stands.
TreeUpdate pasteItem(EditContext& context);
/// Paste needs something copied first.
QString pasteRefusal(const EditContext& context);

/// Duplicate: the selected item with its branch is copied as the last sibling of the selected item.
TreeUpdate duplicateItem(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation copy { "copy", EditOperation::Needs::ItemNode, EditOperation::Recording::Nothing,
                                      nullptr, &copyItem };
/// Cut: a snapshot and a copy, then Delete with a snapshot of its own: two undo steps.
inline constexpr EditOperation cut {
    "cut",      EditOperation::Needs::ItemNode, EditOperation::Recording::SnapshotBefore, nullptr, &copyItem, nullptr,
    &deleteItem
};
inline constexpr EditOperation paste { "paste", EditOperation::Needs::ItemNode,
                                       EditOperation::Recording::SnapshotBefore, &pasteRefusal, &pasteItem };
inline constexpr EditOperation duplicate { "duplicate", EditOperation::Needs::ItemNode,
                                           EditOperation::Recording::SnapshotBefore, nullptr, &duplicateItem };
} // namespace EditOperations
