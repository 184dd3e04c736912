#include "subtreecopy.h"

#include "itemroom.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QHash>

#include <vector>

namespace {

const char* const copySource = "copyItemTree";

int itemIndexOf(const MenuDocument& document, const QString& key, const char* source)
{
    const int index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return index;
}

/// The children of every item, grouped by parent, each group in the order a copy visits them: by
/// siblingOrder 1 .. childCount, and among equal orders in array order.
struct ChildIndex
{
    std::vector<int> start; // the children of item p are children[start[p] .. start[p + 1])
    std::vector<int> children;
};

ChildIndex indexChildren(const MenuItemArray& items)
{
    const int count = int(items.size());
    std::vector<int> reachable;
    int maxOrder = 0;
    for (int j = 0; j < count; ++j) {
        const MenuItem& item = items.at(j);
        if (item.parent >= 0 && item.parent < count && item.siblingOrder >= 1
            && item.siblingOrder <= items.at(item.parent).childCount) {
            reachable.push_back(j);
            maxOrder = qMax(maxOrder, int(item.siblingOrder));
        }
    }
    // Two stable counting sorts: by siblingOrder, then by parent.
    std::vector<int> orderStart(std::size_t(maxOrder) + 2, 0);
    for (const int j : reachable) {
        ++orderStart[std::size_t(items.at(j).siblingOrder) + 1];
    }
    for (std::size_t o = 1; o < orderStart.size(); ++o) {
        orderStart[o] += orderStart[o - 1];
    }
    std::vector<int> byOrder(reachable.size());
    for (const int j : reachable) {
        byOrder[std::size_t(orderStart[std::size_t(items.at(j).siblingOrder)]++)] = j;
    }
    ChildIndex index;
    index.start.assign(std::size_t(count) + 1, 0);
    for (const int j : byOrder) {
        ++index.start[std::size_t(items.at(j).parent) + 1];
    }
    for (std::size_t p = 1; p < index.start.size(); ++p) {
        index.start[p] += index.start[p - 1];
    }
    std::vector<int> next(index.start.begin(), index.start.end() - 1);
    index.children.resize(byOrder.size());
    for (const int j : byOrder) {
        index.children[std::size_t(next[std::size_t(items.at(j).parent)]++)] = j;
    }
    return index;
}

/// The number of items a copy of the branch of `index` makes: the item and every item the walk
/// through `children` reaches below it. Counting stops past the most items a menu can hold: a pasted
/// record may name itself or its own branch as its parent, and the walk through such a loop would
/// not end.
qint64 branchCopyCount(const ChildIndex& children, int index)
{
    qint64 count = 0;
    std::vector<int> pending { index };
    while (!pending.empty() && count <= MenuDocument::maximumItemCount) {
        const int visit = pending.back();
        pending.pop_back();
        ++count;
        for (int c = children.start[std::size_t(visit)]; c < children.start[std::size_t(visit) + 1]; ++c) {
            pending.push_back(children.children[std::size_t(c)]);
        }
    }
    return count;
}

} // namespace

int copyItemTree(int sourceIndex, int newParent, MenuDocument& source, MenuDocument& target, bool copyCommandDup,
                 TreeUpdate& update, const char* operationName)
{
    if (sourceIndex < 0 || sourceIndex >= source.items.size() || newParent < -1 || newParent >= target.items.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(copySource));
    }
    // The two documents are told apart by their window, as the editor tells them apart.
    const bool sameDocument = source.windowIndex == target.windowIndex;
    // Made before anything is appended: copies never become children of the items being copied.
    const ChildIndex children = indexChildren(source.items);
    // Refused as a whole before the first copy is made, rather than failing halfway.
    ensureRoomForNewItems(target, branchCopyCount(children, sourceIndex), operationName);
    QHash<QString, int> sourceIndexOfKey;
    if (!sameDocument) {
        sourceIndexOfKey.reserve(source.items.size());
        for (int i = int(source.items.size()) - 1; i >= 0; --i) {
            sourceIndexOfKey.insert(source.items.at(i).key, i); // the first of equal keys wins
        }
    }

    struct Pending
    {
        int sourceIndex;
        int newParent;
    };
    // Pre-order without recursion: a branch may be thousands of levels deep.
    std::vector<Pending> pending { { sourceIndex, newParent } };
    int topCopy = -1;
    while (!pending.empty()) {
        const Pending visit = pending.back();
        pending.pop_back();

        MenuItem copy = source.items.at(visit.sourceIndex);
        const int copyIndex = Int16::checked(target.items.size(), copySource);
        copy.childCount = 0;
        target.lastIndex = Int16::incremented(target.lastIndex, copySource);
        copy.key = QLatin1Char('E') + QString::number(target.lastIndex);
        copy.parent = Int16::checked(visit.newParent, copySource);
        if (visit.newParent != -1) {
            MenuItem& parentItem = target.items[visit.newParent];
            parentItem.childCount = Int16::incremented(parentItem.childCount, copySource);
            copy.siblingOrder = parentItem.childCount;
        }
        source.items[visit.sourceIndex].lastCopyKey = copy.key;

        const MenuItem& original = source.items.at(visit.sourceIndex);
        if (!sameDocument) {
            if (original.copiesCommands) {
                // The link cannot cross to another menu: the copy holds its target's commands. A link
                // that names no item takes those of the first item.
                copy.copiesCommands = false;
                const int linked = sourceIndexOfKey.value(original.copyKey, 0);
                copy.commands = source.items.at(linked).commands;
            }
        } else if (copyCommandDup) {
            if (original.commandUpperBound() < 1) {
                copy.copiesCommands = false;
            } else {
                copy.copiesCommands = true;
                copy.copyKey = original.copiesCommands ? original.copyKey : original.key;
            }
        }
        target.items.append(copy);
        if (visit.newParent == -1) {
            target.items[copyIndex].siblingOrder = countTopLevel(target);
        }
        const QString parentKey = visit.newParent == -1 ? QStringLiteral("Root") : target.items.at(visit.newParent).key;
        update.addNode(parentKey, copy.key, copy.caption);
        if (topCopy < 0) {
            topCopy = copyIndex;
        }

        const int first = children.start[std::size_t(visit.sourceIndex)];
        for (int c = children.start[std::size_t(visit.sourceIndex) + 1] - 1; c >= first; --c) {
            pending.push_back({ children.children[std::size_t(c)], copyIndex });
        }
    }
    return topCopy;
}

TreeUpdate copyItem(EditContext& context)
{
    const MenuDocument& document = context.document;
    context.editing.clipboardItem = document.items.at(itemIndexOf(document, context.selected.key, "mnuCopy_Click"));
    return TreeUpdate();
}

QString pasteRefusal(const EditContext& context)
{
    return context.editing.clipboardItem ? QString() : QStringLiteral("Nothing has been copied or cut yet.");
}

TreeUpdate pasteItem(EditContext& context)
{
    MenuDocument& document = context.document;
    const int selected = itemIndexOf(document, context.selected.key, "mnuPaste_Click");
    MenuItem& clipboard = *context.editing.clipboardItem;
    // The item keeps its key and its place among its siblings; everything else, its parent and
    // child count among it, is the clipboard's. The tree shows the new caption, nothing else.
    clipboard.key = context.selected.key;
    clipboard.siblingOrder = document.items.at(selected).siblingOrder;
    document.items[selected] = clipboard;
    TreeUpdate update;
    // The tree is neither rebuilt nor recoloured; the item panel shows what the item now holds.
    update.setNodeText(context.selected.key, clipboard.caption).showItem();
    return update;
}

TreeUpdate duplicateItem(EditContext& context)
{
    MenuDocument& document = context.document;
    const int source = itemIndexOf(document, context.selected.key, "mnuDuplicate_Click");
    const int parent = findItemByKey(document, context.selected.parentKey);
    TreeUpdate update;
    update.showBusy();
    copyItemTree(source, parent, document, document, context.editing.copyCommandDup, update, "mnuDuplicate_Click");
    update.recolour().hideBusy().showItemCount();
    return update;
}
