#include "itemcreation.h"

#include "itemroom.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

const char* const newItemSource = "mnuNewItem";
const char* const newSubItemSource = "mnuNewSubItem";
const char* const labelEditSource = "lstMenu_AfterLabelEdit";

/// Appends an item "New Item " + (item count) with a fresh key from the document's key counter as
/// the last child of the item `parentKey` names, or last on the top level when it names none (the
/// root node's key), adds its node there, shows and selects it and starts editing its label.
TreeUpdate appendNewItem(EditContext& context, const QString& parentKey, const char* source)
{
    MenuDocument& document = context.document;
    ensureRoomForNewItems(document, 1, source);

    const qsizetype count = document.items.size();
    // The new slot starts empty: no link (an empty copyKey, not "-1") and level 0.
    MenuItem item;
    item.copyKey = QString();
    item.level = 0;
    item.parent = 0;
    item.siblingOrder = 0;
    item.caption = QStringLiteral("New Item ") + QString::number(Int16::checked(count + 1, source));
    document.lastIndex = Int16::incremented(document.lastIndex, source);
    item.key = QLatin1Char('E') + QString::number(document.lastIndex);
    document.items.append(item);
    const qsizetype index = count;

    // The root belongs to no item: under it, the new item is a top-level one (-1).
    const qint16 parent = findItemByKey(document, parentKey);
    MenuItem& created = document.items[index];
    created.parent = parent;
    if (parent >= 0) {
        MenuItem& parentItem = document.items[parent];
        parentItem.childCount = Int16::incremented(parentItem.childCount, source);
        created.siblingOrder = parentItem.childCount;
    } else {
        created.siblingOrder = countTopLevel(document);
    }

    // Naming the new item is part of this undo step. Cleared only once nothing can fail any more: a
    // failed New Item starts no label edit, and the next one must record its own step.
    context.editing.snapshotNextLabelEdit = false;

    TreeUpdate update;
    update.addNode(parent >= 0 ? parentKey : SelectedNode::rootKey(), created.key, created.caption)
        .showItemCount()
        .clickNode(created.key)
        .startLabelEdit(created.key);
    return update;
}

} // namespace

TreeUpdate createItem(EditContext& context)
{
    return appendNewItem(context, context.selected.parentKey, newItemSource);
}

TreeUpdate createSubItem(EditContext& context)
{
    return appendNewItem(context, context.selected.key, newSubItemSource);
}

TreeUpdate startRenaming(EditContext& context)
{
    TreeUpdate update;
    update.startLabelEdit(context.selected.key);
    return update;
}

TreeUpdate beginLabelEdit(EditContext& context)
{
    context.window.labelEditTag = context.editing.snapshotNextLabelEdit;
    context.editing.snapshotNextLabelEdit = true;
    return TreeUpdate();
}

TreeUpdate storeLabelEdit(EditContext& context)
{
    const qint16 index = findItemByKey(context.document, context.selected.key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(labelEditSource));
    }
    context.document.items[index].caption = context.arguments.text;
    context.editing.snapshotNextLabelEdit = true;
    return TreeUpdate();
}
