#pragma once

#include "editoperation.h"

#include <QString>

struct MenuDocument;

/// Move up: the selected item and the sibling node before it exchange their places (siblingOrder);
/// keys and array positions stay. Nothing happens for the first of its siblings.
TreeUpdate moveItemUp(EditContext& context);
bool hasPreviousSibling(const EditContext& context);
/// Move down: the same with the sibling node after it.
TreeUpdate moveItemDown(EditContext& context);
bool hasNextSibling(const EditContext& context);

/// Move into the item above: the selected item with its branch becomes the last child of the item of
/// its previous sibling node, the node it is shown under. Keys, array positions and levels stay;
/// the siblings it leaves close the gap. Its node moves with its branch and stays selected.
TreeUpdate moveIntoItemAbove(EditContext& context);
/// Whether there is an item above to move into: the selected node has a previous sibling node (and
/// that node's item does not lie in the selected branch, which only a menu that Paste left out of
/// step with its tree could show).
bool hasItemAbove(const EditContext& context);

/// Move out of the parent: the selected item with its branch becomes the sibling right after the
/// item of its parent node, the siblings after that making room. Keys, array positions and levels
/// stay; its node moves with its branch and stays selected.
TreeUpdate moveOutOfParent(EditContext& context);
/// Whether there is a parent to move out of: the selected node is not on the top level.
bool hasParentItem(const EditContext& context);

/// Where a dragged branch goes: under the node it was dropped on, or beside it.
enum class DropPlace { Child, Next };

/// A branch dropped on a node: what was dragged (by its key in the source document) and where it
/// goes in the target document.
struct DropRequest
{
    QString draggedKey;
    /// The node it was dropped on ("Root" for the root node) and that node's parent node.
    QString targetKey;
    QString targetParentKey;
    DropPlace place = DropPlace::Child;
    bool copy = false;
    bool copyCommandDup = false;
};

/// What a drop asks of the two editor windows.
struct DropUpdates
{
    TreeUpdate target;
    /// For a move between two windows: the branch leaves the window where the drag started.
    TreeUpdate source;
};

/// Whether a drop on the node `targetKey` of document `targetDocument` is ignored: no drag of this
/// program is going on, a left-button drag while the drag-and-drop option is off (a right-button
/// drag is always allowed), no node under the pointer, or the dragged node dropped on itself.
bool isDropIgnored(const DragState& drag, bool dragAndDropOption, qint16 targetDocument, const QString& targetKey);

/// The drop the drag state's choices ask for, on the node `targetKey` whose parent node is
/// `targetParentKey`.
DropRequest dropRequestOf(const DragState& drag, const QString& targetKey, const QString& targetParentKey,
                          bool copyCommandDup);

/// The item a drop puts the branch under: the target item for a child, the target's parent for a
/// place next to it; -1 for the top level.
int dropDestination(const MenuDocument& target, const DropRequest& request);

/// Why a drop within one document is refused: its destination lies in the dragged branch itself.
/// Empty when it may go on.
QString dropRefusal(const MenuDocument& document, const DropRequest& request);

/// A drop that copies the branch: it is copied from `source` into `target` and the links of the
/// target are made canonical again. `source` and `target` may be the same document.
DropUpdates dropCopy(MenuDocument& source, MenuDocument& target, const DropRequest& request);

/// A drop that moves the branch from one document to another: copied as by dropCopy, then deleted
/// from `source` as Delete deletes it.
DropUpdates dropMoveBetween(MenuDocument& source, MenuDocument& target, const DropRequest& request,
                            EditingState& editing);

/// A drop that moves the branch within one document: it keeps its keys and array positions and
/// arrives as the first child of its destination, the sibling orders and child counts at both places
/// fixed; its node moves with its branch, and the status bar shows its new place.
TreeUpdate dropMoveWithin(MenuDocument& document, const DropRequest& request);

namespace EditOperations {
inline constexpr EditOperation moveUp {
    "move-up",          EditOperation::Needs::ItemNode, EditOperation::Recording::SnapshotBefore, nullptr, &moveItemUp,
    &hasPreviousSibling
};
inline constexpr EditOperation moveDown {
    "move-down",    EditOperation::Needs::ItemNode, EditOperation::Recording::SnapshotBefore, nullptr, &moveItemDown,
    &hasNextSibling
};
inline constexpr EditOperation moveIntoItemAbove {
    "indent", EditOperation::Needs::ItemNode, EditOperation::Recording::SnapshotBefore,
    nullptr,  &::moveIntoItemAbove,           &hasItemAbove
};
inline constexpr EditOperation moveOutOfParent { "outdent",
                                                 EditOperation::Needs::ItemNode,
                                                 EditOperation::Recording::SnapshotBefore,
                                                 nullptr,
                                                 &::moveOutOfParent,
                                                 &hasParentItem };
} // namespace EditOperations
