#include "itemcreation.h"

#include "itemroom.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

const char* const newItemSource = "mnuNewItem";
const char* const labelEditSource = "lstMenu_AfterLabelEdit";

} // namespace

TreeUpdate createItem(EditContext& context)
{
    MenuDocument& document = context.document;
    ensureRoomForNewItems(document, 1, newItemSource);

    const qsizetype count = document.items.size();
    // The new slot starts empty: no link (an empty copyKey, not "-1") and level 0.
    MenuItem item;
    item.copyKey = QString();
    item.level = 0;
    item.parent = 0;
    item.siblingOrder = 0;
    item.caption = QStringLiteral("New Item ") + QString::number(count + 1);
    document.lastIndex = Int16::incremented(document.lastIndex, newItemSource);
    item.key = QLatin1Char('E') + QString::number(document.lastIndex);
    document.items.append(item);
    const qsizetype index = count;

    // The parent node of the selected node: the root belongs to no item, so a top-level item gets -1.
    const qint16 parent = findItemByKey(document, context.selected.parentKey);
    MenuItem& created = document.items[index];
    created.parent = parent;
    if (parent >= 0) {
        MenuItem& parentItem = document.items[parent];
        parentItem.childCount = Int16::incremented(parentItem.childCount, newItemSource);
        created.siblingOrder = parentItem.childCount;
    } else {
        created.siblingOrder = countTopLevel(document);
    }

    // Naming the new item is part of this undo step. Cleared only once nothing can fail any more: a
    // failed New Item starts no label edit, and the next one must record its own step.
    context.editing.snapshotNextLabelEdit = false;

    TreeUpdate update;
    update.addNode(parent >= 0 ? context.selected.parentKey : SelectedNode::rootKey(), created.key, created.caption)
        .showItemCount()
        .clickNode(created.key)
        .startLabelEdit(created.key);
    return update;
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
