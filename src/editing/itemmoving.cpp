#include "itemmoving.h"

#include "copylinks.h"
#include "itemdeletion.h"
#include "subtreecopy.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <algorithm>

namespace {

const char* const moveSource = "cmdUp_Click";
const char* const dropSource = "lstMenu_OLEDragDrop";
const char* const moveIntoSource = "mnuMoveIntoItemAbove";
const char* const moveOutSource = "mnuMoveOutOfParent";

int itemIndexOf(const MenuDocument& document, const QString& key, const char* source)
{
    const int index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return index;
}

/// Exchanges the places of the selected item and its neighbour node; `earlier` tells whether the
/// selected item takes the smaller place.
TreeUpdate exchangePlaces(EditContext& context, const QString& neighbourKey, bool earlier)
{
    MenuDocument& document = context.document;
    MenuItem& selected = document.items[itemIndexOf(document, context.selected.key, moveSource)];
    MenuItem& neighbour = document.items[itemIndexOf(document, neighbourKey, moveSource)];
    const qint16 smaller = std::min(selected.siblingOrder, neighbour.siblingOrder);
    const qint16 larger = std::max(selected.siblingOrder, neighbour.siblingOrder);
    selected.siblingOrder = earlier ? smaller : larger;
    neighbour.siblingOrder = earlier ? larger : smaller;
    TreeUpdate update;
    if (earlier) {
        update.moveNodeUp(context.selected.key);
    } else {
        update.moveNodeDown(context.selected.key);
    }
    update.showPosition(context.selected.key);
    return update;
}

/// Whether item `index` is `ancestor` or lies below it.
bool isInBranch(const MenuDocument& document, int index, int ancestor)
{
    for (int steps = 0; index >= 0 && steps <= document.items.size(); ++steps) {
        if (index == ancestor) {
            return true;
        }
        index = document.items.at(index).parent;
    }
    return false;
}

/// Takes item `moved` out of its siblings: the ones after it close the gap and its parent counts one
/// child less. Its own parent and place stay until the caller gives it new ones.
void leaveSiblings(MenuDocument& document, int moved, const char* source)
{
    auto& items = document.items;
    const qint16 oldParent = items.at(moved).parent;
    const qint16 oldOrder = items.at(moved).siblingOrder;
    for (int k = 0; k < items.size(); ++k) {
        MenuItem& item = items[k];
        if (k != moved && item.parent == oldParent && item.siblingOrder > oldOrder) {
            item.siblingOrder = Int16::decremented(item.siblingOrder, source);
        }
    }
    if (oldParent >= 0) {
        items[oldParent].childCount = Int16::decremented(items.at(oldParent).childCount, source);
    }
}

} // namespace

bool hasPreviousSibling(const EditContext& context)
{
    return !context.selected.previousSiblingKey.isEmpty();
}

bool hasNextSibling(const EditContext& context)
{
    return !context.selected.nextSiblingKey.isEmpty();
}

TreeUpdate moveItemUp(EditContext& context)
{
    return exchangePlaces(context, context.selected.previousSiblingKey, true);
}

TreeUpdate moveItemDown(EditContext& context)
{
    return exchangePlaces(context, context.selected.nextSiblingKey, false);
}

bool isDropIgnored(const DragState& drag, bool dragAndDropOption, qint16 targetDocument, const QString& targetKey)
{
    if (!drag.active || drag.button == DragState::Button::None) {
        return true;
    }
    if (drag.button == DragState::Button::Left && !dragAndDropOption) {
        return true;
    }
    // A node is itself only in its own window: another menu's node may bear the same key.
    return targetKey.isEmpty() || (targetDocument == drag.document && targetKey == drag.nodeKey);
}

DropRequest dropRequestOf(const DragState& drag, const QString& targetKey, const QString& targetParentKey,
                          bool copyCommandDup)
{
    DropRequest request;
    request.draggedKey = drag.nodeKey;
    request.targetKey = targetKey;
    request.targetParentKey = targetParentKey;
    request.place = drag.dropAsSibling ? DropPlace::Next : DropPlace::Child;
    request.copy = drag.dropCopy;
    request.copyCommandDup = copyCommandDup;
    return request;
}

int dropDestination(const MenuDocument& target, const DropRequest& request)
{
    // The root node and the parent node of a top-level node belong to no item: the top level.
    return findItemByKey(target, request.place == DropPlace::Child ? request.targetKey : request.targetParentKey);
}

QString dropRefusal(const MenuDocument& document, const DropRequest& request)
{
    const int dragged = findItemByKey(document, request.draggedKey);
    const int destination = dropDestination(document, request);
    if (dragged >= 0 && destination >= 0 && isInBranch(document, destination, dragged)) {
        return QStringLiteral("An item cannot be dropped into its own branch !");
    }
    return QString();
}

DropUpdates dropCopy(MenuDocument& source, MenuDocument& target, const DropRequest& request)
{
    const int dragged = itemIndexOf(source, request.draggedKey, dropSource);
    const int destination = dropDestination(target, request);
    DropUpdates updates;
    updates.target.showBusy();
    copyItemTree(dragged, destination, source, target, request.copyCommandDup, updates.target, dropSource);
    normalizeCopyLinks(target);
    updates.target.recolour().hideBusy().showItemCount();
    return updates;
}

DropUpdates dropMoveBetween(MenuDocument& source, MenuDocument& target, const DropRequest& request,
                            EditingState& editing)
{
    DropUpdates updates = dropCopy(source, target, request);
    // The branch then leaves the menu it was dragged from, as Delete takes it out.
    WindowEditingState window;
    EditContext deletion { source, SelectedNode::of(request.draggedKey, QString()), EditArguments(), editing, window };
    updates.source = deleteSelectedItem(deletion);
    return updates;
}

TreeUpdate dropMoveWithin(MenuDocument& document, const DropRequest& request)
{
    const int dragged = itemIndexOf(document, request.draggedKey, dropSource);
    const int destination = dropDestination(document, request);
    auto& items = document.items;
    const qint16 oldParent = items.at(dragged).parent;
    const qint16 oldOrder = items.at(dragged).siblingOrder;
    for (int k = 0; k < items.size(); ++k) {
        if (k == dragged) {
            continue;
        }
        // The siblings that followed it close the gap; the children of the destination make room. The
        // other items are only read, so they stay shared with the undo states.
        const MenuItem& item = items.at(k);
        if (item.parent == oldParent && item.siblingOrder > oldOrder) {
            items[k].siblingOrder = Int16::decremented(item.siblingOrder, dropSource);
        }
        if (item.parent == destination) {
            items[k].siblingOrder = Int16::incremented(items.at(k).siblingOrder, dropSource);
        }
    }
    if (oldParent >= 0) {
        items[oldParent].childCount = Int16::decremented(items.at(oldParent).childCount, dropSource);
    }
    if (destination >= 0) {
        items[destination].childCount = Int16::incremented(items.at(destination).childCount, dropSource);
    }
    MenuItem& moved = items[dragged];
    moved.parent = Int16::checked(destination, dropSource);
    moved.siblingOrder = 1;

    TreeUpdate update;
    update.moveNodeUnder(request.draggedKey, destination >= 0 ? items.at(destination).key : QStringLiteral("Root"))
        .recolour()
        .showPosition(request.draggedKey);
    return update;
}

bool hasItemAbove(const EditContext& context)
{
    if (context.selected.previousSiblingKey.isEmpty()) {
        return false;
    }
    const int moved = findItemByKey(context.document, context.selected.key);
    const int above = findItemByKey(context.document, context.selected.previousSiblingKey);
    // An item that is gone is for the move itself to report.
    return moved < 0 || above < 0 || !isInBranch(context.document, above, moved);
}

TreeUpdate moveIntoItemAbove(EditContext& context)
{
    MenuDocument& document = context.document;
    const int moved = itemIndexOf(document, context.selected.key, moveIntoSource);
    // The item of the node the user sees above it, never an item the tree hides between the two.
    const int above = itemIndexOf(document, context.selected.previousSiblingKey, moveIntoSource);
    leaveSiblings(document, moved, moveIntoSource);
    MenuItem& destination = document.items[above];
    destination.childCount = Int16::incremented(destination.childCount, moveIntoSource);
    MenuItem& item = document.items[moved];
    item.parent = Int16::checked(above, moveIntoSource);
    item.siblingOrder = destination.childCount;

    TreeUpdate update;
    update.moveNodeToLastChild(context.selected.key, context.selected.previousSiblingKey)
        .recolour()
        .showPosition(context.selected.key);
    return update;
}

bool hasParentItem(const EditContext& context)
{
    const SelectedNode& selected = context.selected;
    if (selected.parentKey.isEmpty() || selected.parentKey == SelectedNode::rootKey()) {
        return false;
    }
    const int moved = findItemByKey(context.document, selected.key);
    const int former = findItemByKey(context.document, selected.parentKey);
    if (moved < 0 || former < 0) {
        return true; // an item that is gone is for the move itself to report
    }
    const int destination = context.document.items.at(former).parent;
    return destination < 0 || !isInBranch(context.document, destination, moved);
}

TreeUpdate moveOutOfParent(EditContext& context)
{
    MenuDocument& document = context.document;
    const int moved = itemIndexOf(document, context.selected.key, moveOutSource);
    // The item of the parent node the user sees: where the tree hides the item's own parent (a link
    // under "Hide items"), the item leaves that hidden parent too.
    const int former = itemIndexOf(document, context.selected.parentKey, moveOutSource);
    leaveSiblings(document, moved, moveOutSource);
    auto& items = document.items;
    const qint16 destination = items.at(former).parent;
    const qint16 place = Int16::incremented(items.at(former).siblingOrder, moveOutSource);
    for (int k = 0; k < items.size(); ++k) {
        MenuItem& item = items[k];
        if (k != moved && item.parent == destination && item.siblingOrder >= place) {
            item.siblingOrder = Int16::incremented(item.siblingOrder, moveOutSource);
        }
    }
    if (destination >= 0) {
        items[destination].childCount = Int16::incremented(items.at(destination).childCount, moveOutSource);
    }
    MenuItem& item = items[moved];
    item.parent = destination;
    item.siblingOrder = place;

    TreeUpdate update;
    update.moveNodeAfter(context.selected.key, context.selected.parentKey)
        .recolour()
        .showPosition(context.selected.key);
    return update;
}
