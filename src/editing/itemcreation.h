#pragma once

#include "editoperation.h"

/// New Item: appends an item "New Item " + (item count) as the last sibling of the selected item
/// (under the selected node's parent node), with a fresh key from the document's key counter, adds
/// its node, shows and selects it and starts editing its label. Naming it then records no second
/// snapshot: creating and naming an item is one undo step.
TreeUpdate createItem(EditContext& context);

/// New Sub-item: the same new item, opened for naming in the same undo step, but as the last child
/// of the selected item; with the root node selected, as the last top-level item.
TreeUpdate createSubItem(EditContext& context);

/// Rename: starts editing the label of the selected node; the end of the edit stores the caption.
TreeUpdate startRenaming(EditContext& context);

/// The start of a label edit: the window's tag takes whether the edit records a snapshot when it
/// ends, and every later edit records one again.
TreeUpdate beginLabelEdit(EditContext& context);

/// A confirmed label edit: the selected node's item takes the text exactly as typed (an empty text
/// gives an empty caption). The node keeps the text the tree accepted; nothing is rebuilt.
TreeUpdate storeLabelEdit(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation newItem { "new-item", EditOperation::Needs::ItemNode,
                                         EditOperation::Recording::SnapshotBefore, nullptr, &createItem };
inline constexpr EditOperation newSubItem { "new-sub-item", EditOperation::Needs::Node,
                                            EditOperation::Recording::SnapshotBefore, nullptr, &createSubItem };
inline constexpr EditOperation rename { "rename", EditOperation::Needs::ItemNode, EditOperation::Recording::Nothing,
                                        nullptr, &startRenaming };
inline constexpr EditOperation beginLabelEdit { "begin-label-edit", EditOperation::Needs::ItemNode,
                                                EditOperation::Recording::Nothing, nullptr, &::beginLabelEdit };
inline constexpr EditOperation storeLabelEdit { "store-label-edit", EditOperation::Needs::ItemNode,
                                                EditOperation::Recording::SnapshotWhenLabelTagged, nullptr,
                                                &::storeLabelEdit };
} // namespace EditOperations
