#include "treerowslayout.h"

#include "app/itemtreemodel.h"

#include <QAccessible>
#include <QTreeView>
#include <QtWidgets/private/qtreeview_p.h>

#include <cstdint>
#include <vector>

namespace {

QTreeViewPrivate* privateOf(const QTreeView& view)
{
    return static_cast<QTreeViewPrivate*>(QObjectPrivate::get(const_cast<QTreeView*>(&view)));
}

/// The slot of `node` in an open-addressing table of `size` slots (a power of two): the address
/// multiplied by an odd constant, whose high bits depend on all of its bits.
size_t slotOf(const TreeNode* node, size_t size)
{
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15ULL;
    return size_t((std::uint64_t(reinterpret_cast<std::uintptr_t>(node)) * spread) >> 32) & (size - 1);
}

/// The nodes the view holds expanded, as a table of their addresses: a lookup per row costs a few
/// nanoseconds where the view's own costs three hash lookups of persistent indexes.
std::vector<const TreeNode*> expandedNodes(const QTreeViewPrivate& d, const ItemTreeModel& model)
{
    size_t size = 4;
    while (size < size_t(d.expandedIndexes.size()) * 2) {
        size *= 2; // at most half full, so that a lookup ends after a slot or two
    }
    std::vector<const TreeNode*> table(size, nullptr);
    for (const QPersistentModelIndex& index : d.expandedIndexes) {
        // An index that went with its rows no longer counts, as in the view's own lookup.
        const TreeNode* node = index.isValid() ? model.nodeOf(index) : nullptr;
        if (node == nullptr) {
            continue;
        }
        size_t slot = slotOf(node, size);
        while (table[slot] != nullptr && table[slot] != node) {
            slot = (slot + 1) & (size - 1);
        }
        table[slot] = node;
    }
    return table;
}

bool isIn(const std::vector<const TreeNode*>& table, const TreeNode* node)
{
    for (size_t slot = slotOf(node, table.size());; slot = (slot + 1) & (table.size() - 1)) {
        if (table[slot] == node) {
            return true;
        }
        if (table[slot] == nullptr) {
            return false;
        }
    }
}

} // namespace

bool TreeRowsLayout::applies(const QTreeView& view, const ItemTreeModel& model)
{
    const QTreeViewPrivate* d = privateOf(view);
    return view.model() == &model && !view.rootIndex().isValid() && d->hiddenIndexes.isEmpty()
        && d->spanningIndexes.isEmpty();
}

bool TreeRowsLayout::layOut(QTreeView& view, const ItemTreeModel& model, const RowHeight& rowHeight)
{
    if (!applies(view, model)) {
        return false;
    }
    QTreeViewPrivate* d = privateOf(view);
    if (d->hasRemovedItems) {
        // As the view does: its memory of expanded nodes forgets those whose rows went.
        d->hasRemovedItems = false;
        d->expandedIndexes.removeIf([](const QPersistentModelIndex& index) { return !index.isValid(); });
    }
    const qsizetype rowsBefore = d->viewItems.size();
    QList<QTreeViewItem>& rows = d->viewItems;
    rows.clear();
    const TreeNode* root = model.nodes().root();
    if (root != nullptr) {
        if (d->uniformRowHeights) {
            d->defaultItemHeight = rowHeight(model.indexOf(root));
        }
        const std::vector<const TreeNode*> expanded = expandedNodes(*d, model);
        rows.reserve(model.nodes().nodeCount());
        // Rows in the order they are shown: a node, then, when it is expanded, its children's rows.
        // No row is hidden, so a node has visible children exactly when it has children.
        const auto addRow = [&rows, &model, &expanded](const TreeNode* node, int parentRow, uint level, bool more) {
            QTreeViewItem row;
            row.index = model.indexOf(node);
            row.parentItem = parentRow;
            row.level = level & 0xFFFFU; // a menu nests at most 32,767 levels
            row.expanded = isIn(expanded, node);
            row.hasChildren = !node->children.empty();
            row.hasMoreSiblings = more;
            rows.append(row);
            return int(rows.size() - 1);
        };
        struct OpenRow
        {
            int row;
            const TreeNode* node;
            size_t nextChild;
        };
        std::vector<OpenRow> open;
        const int rootRow = addRow(root, -1, 0, false);
        if (rows[rootRow].expanded) {
            open.push_back({ rootRow, root, 0 });
        }
        while (!open.empty()) {
            OpenRow& parent = open.back();
            const std::vector<TreeNode*>& children = parent.node->children;
            if (parent.nextChild == children.size()) {
                rows[parent.row].total = uint(rows.size() - parent.row - 1) & 0xFFFFFFFU; // 32,768 rows at most
                open.pop_back();
                continue;
            }
            const TreeNode* child = children[parent.nextChild++];
            const int row = addRow(child, parent.row, rows[parent.row].level + 1, parent.nextChild < children.size());
            if (rows[row].expanded) {
                open.push_back({ row, child, 0 }); // `parent` is not used past this point
            }
        }
    }
#if QT_CONFIG(accessibility)
    // Assistive tools count the rows; when their number changed they read the tree again.
    if (rows.size() != rowsBefore && QAccessible::isActive()) {
        QAccessibleTableModelChangeEvent event(&view, QAccessibleTableModelChangeEvent::ModelReset);
        QAccessible::updateAccessibility(&event);
    }
#endif
    return true;
}
