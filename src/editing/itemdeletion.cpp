#include "itemdeletion.h"

#include "copylinks.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QHash>
#include <QSet>

#include <set>
#include <vector>

namespace {

const char* const deleteItemTreeSource = "deleteItemTree";
const char* const removeItemBranchSource = "removeItemBranch";

RunTimeError noSuchItem(const char* source)
{
    return RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
}

/// A menu always keeps one item: removing the only one leaves this fresh item in its slot. It is a
/// new item in every respect, so it links nowhere and has no copy made of it yet.
void resetToFreshItem(MenuItem& item)
{
    item = MenuItem {};
    item.caption = QStringLiteral("New item 1");
    item.key = QStringLiteral("E0");
    item.level = 1;
    item.parent = -1;
    item.childCount = 0;
    item.siblingOrder = 1;
}

/// Removes one item with its branch, item by item: the children of an item go first, always the
/// child that stands earliest in the array, and every removal moves the last item of the array
/// into the freed slot. Menus can hold 32,767 items, so instead of rescanning the array for each
/// removal this keeps, updated on every move, the slot of each key, the children of each slot
/// (ordered, so the earliest child is at hand) and the items that name each key as copyKey. The
/// items end up in exactly the slots that a plain scan-and-move removal would give them.
class BranchRemoval
{
public:
    explicit BranchRemoval(MenuDocument& document)
        : m_items(document.items)
        , m_children(std::size_t(m_items.size()))
    {
        const int count = int(m_items.size());
        m_indexOfKey.reserve(count);
        for (int i = count - 1; i >= 0; --i) {
            m_indexOfKey.insert(m_items.at(i).key, i); // walking backwards, the first of equal keys wins
        }
        for (int i = 0; i < count; ++i) {
            const MenuItem& item = m_items.at(i);
            if (isSlot(item.parent)) {
                m_children[std::size_t(item.parent)].insert(i);
            }
            m_linksTo[item.copyKey].insert(i);
        }
    }

    void run(const QString& key)
    {
        struct Pending
        {
            QString key;
            bool removesChildren;
        };
        // An explicit stack, not recursion: a branch may be thousands of levels deep.
        std::vector<Pending> pending;
        pending.push_back({ key, m_items.at(indexOf(key)).childCount > 0 });
        while (!pending.empty()) {
            const int index = indexOf(pending.back().key);
            if (pending.back().removesChildren) {
                const std::set<int>& children = m_children[std::size_t(index)];
                if (!children.empty()) {
                    const MenuItem& child = m_items.at(*children.begin());
                    pending.push_back({ child.key, child.childCount > 0 });
                    continue;
                }
            }
            pending.pop_back();
            removeSingle(index);
        }
    }

private:
    bool isSlot(int index) const { return index >= 0 && index < int(m_children.size()); }

    int indexOf(const QString& key) const
    {
        const auto found = m_indexOfKey.constFind(key);
        if (found == m_indexOfKey.constEnd()) {
            throw noSuchItem(deleteItemTreeSource);
        }
        return found.value();
    }

    /// Removes the item at `index`, whose children are already gone, by moving the last item into
    /// its slot.
    void removeSingle(int index)
    {
        const int last = int(m_items.size()) - 1;

        // The children of the last item follow it into the freed slot. When the removed item is itself
        // a child of the last item it stays under its old parent: re-parenting it to its own slot
        // would make it its own parent, and the parent would keep counting a child that is gone.
        if (m_items.at(last).childCount > 0 && last != index) {
            std::set<int>& lastChildren = m_children[std::size_t(last)];
            std::set<int>& indexChildren = m_children[std::size_t(index)];
            const qint16 newParent = Int16::checked(index, deleteItemTreeSource);
            for (auto child = lastChildren.begin(); child != lastChildren.end();) {
                if (*child == index) {
                    ++child;
                    continue;
                }
                m_items[*child].parent = newParent;
                indexChildren.insert(*child);
                child = lastChildren.erase(child);
            }
        }

        // Links to the removed item are switched off; the linking items keep the commands they hold.
        const QString removedKey = m_items.at(index).key;
        const QSet<int> linking = m_linksTo.take(removedKey);
        if (!linking.isEmpty()) {
            const QString noLink = QStringLiteral("-1");
            QSet<int>& unlinked = m_linksTo[noLink];
            for (const int k : linking) {
                MenuItem& item = m_items[k];
                item.copyKey = noLink;
                item.copiesCommands = false;
                unlinked.insert(k);
            }
        }

        const qint16 parent = m_items.at(index).parent;
        if (parent != -1) {
            if (parent < 0 || parent > last) {
                throw noSuchItem(deleteItemTreeSource);
            }
            MenuItem& parentItem = m_items[parent];
            parentItem.childCount = Int16::decremented(parentItem.childCount, deleteItemTreeSource);
            m_children[std::size_t(parent)].erase(index);
        }
        forgetLink(m_items.at(index).copyKey, index);
        m_indexOfKey.remove(removedKey);

        if (index != last) {
            const MenuItem moved = m_items.at(last);
            if (isSlot(moved.parent)) {
                std::set<int>& siblings = m_children[std::size_t(moved.parent)];
                siblings.erase(last);
                siblings.insert(index);
            }
            forgetLink(moved.copyKey, last);
            m_linksTo[moved.copyKey].insert(index);
            m_indexOfKey.insert(moved.key, index);
            m_items[index] = moved;
        }

        if (last < 1) {
            resetToFreshItem(m_items[0]);
        } else {
            m_items.removeLast();
        }
    }

    void forgetLink(const QString& copyKey, int index)
    {
        const auto found = m_linksTo.find(copyKey);
        if (found != m_linksTo.end()) {
            found.value().remove(index);
        }
    }

    MenuItemArray& m_items;
    QHash<QString, int> m_indexOfKey;
    /// For each slot, the slots of the items whose parent it is.
    std::vector<std::set<int>> m_children;
    /// For each copyKey, the slots of the items that bear it.
    QHash<QString, QSet<int>> m_linksTo;
};

} // namespace

void deleteItemTree(MenuDocument& document, const QString& key)
{
    // The key may live inside the array that is about to change.
    const QString removedKey = key;
    Int16::checked(document.items.size(), deleteItemTreeSource);
    BranchRemoval removal(document);
    removal.run(removedKey);
}

void removeItemBranch(MenuDocument& document, const QString& key)
{
    const QString removedKey = key;
    auto& items = document.items;
    const qint16 selected = findItemByKey(document, removedKey);
    if (selected < 0) {
        throw noSuchItem(removeItemBranchSource);
    }
    if (items.size() >= 2) {
        // The siblings after the removed item move up one place.
        const qint16 parent = items.at(selected).parent;
        const qint16 order = items.at(selected).siblingOrder;
        for (qsizetype i = 0; i < items.size(); ++i) {
            const MenuItem& item = items.at(i);
            if (item.parent == parent && item.siblingOrder > order) {
                items[i].siblingOrder = Int16::decremented(item.siblingOrder, removeItemBranchSource);
            }
        }
        deleteItemTree(document, removedKey);
    } else {
        // The only item of a menu is reset in place rather than removed. This is decided before the
        // removal: when deleting leaves one item standing, that item is a survivor and stays as it is.
        resetToFreshItem(items[0]);
    }
    normalizeCopyLinks(document);
}

TreeUpdate deleteSelectedItem(EditContext& context)
{
    context.editing.snapshotNextLabelEdit = true;
    const QString key = context.selected.key;
    const bool onlyItem = context.document.items.size() == 1;
    removeItemBranch(context.document, key);

    TreeUpdate update;
    if (onlyItem) {
        // The tree names the fresh item with a capital I until it is next rebuilt; the document and
        // the saved file hold "New item 1". Both spellings are the menu's own.
        update.setNodeText(key, QStringLiteral("New Item 1"));
    }
    update.removeNode(key)
        .showItemCount()
        .addNodeWhenOnlyRoot(QStringLiteral("E0"), QStringLiteral("New Item 1"))
        .recolour()
        .clickFirstItemNode();
    return update;
}
