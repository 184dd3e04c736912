#include "treerows.h"

#include "app/itemtreemodel.h"

#include <QAccessible>
#include <QSignalBlocker>
#include <QTreeView>
#include <QtWidgets/private/qtreeview_p.h>

#include <cstdint>
#include <utility>
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

/// The row of a node, as the view's own layout makes it, but for whether it is expanded and how
/// many rows lie below it. No row is hidden, so a node has visible children exactly when it has
/// children.
QTreeViewItem rowOf(const ItemTreeModel& model, const TreeNode* node, int parentRow, uint level, bool moreSiblings)
{
    QTreeViewItem row;
    row.index = model.indexOf(node);
    row.parentItem = parentRow;
    row.level = level & 0xFFFFU; // a menu nests at most 32,767 levels
    row.hasChildren = !node->children.empty();
    row.hasMoreSiblings = moreSiblings;
    return row;
}

/// Assistive tools count the rows: when their number changed, they are told to read the tree again.
void tellAssistiveTools(QTreeView& view)
{
#if QT_CONFIG(accessibility)
    if (QAccessible::isActive()) {
        QAccessibleTableModelChangeEvent event(&view, QAccessibleTableModelChangeEvent::ModelReset);
        QAccessible::updateAccessibility(&event);
    }
#else
    Q_UNUSED(view);
#endif
}

/// Whether row `row` shows `node`.
bool shows(const QTreeViewItem& row, const ItemTreeModel& model, const TreeNode* node)
{
    return model.nodeOf(row.index) == node;
}

/// The row after row `row` and the rows below it.
int nextSiblingRow(const QList<QTreeViewItem>& rows, int row)
{
    return row + 1 + int(rows[row].total);
}

} // namespace

TreeRows::TreeRows(QTreeView& view, const ItemTreeModel& model, std::function<void()> scheduleLayout)
    : m_view(view)
    , m_model(model)
    , m_scheduleLayout(std::move(scheduleLayout))
{
}

void TreeRows::listen(ItemTreeModel& model)
{
    model.setAfterRemoval([this] {
        if (!takeOutRowsToGo()) {
            m_scheduleLayout();
        }
    });
    QObject::connect(&model, &QAbstractItemModel::layoutChanged, &m_view, [this] { layoutChanged(); });
}

bool TreeRows::applies(const QTreeView& view, const ItemTreeModel& model)
{
    const QTreeViewPrivate* d = privateOf(view);
    return view.model() == &model && !view.rootIndex().isValid() && d->hiddenIndexes.isEmpty()
        && d->spanningIndexes.isEmpty();
}

bool TreeRows::isLayoutDue() const
{
    return privateOf(m_view)->delayedPendingLayout;
}

bool TreeRows::layOut(const RowHeight& rowHeight)
{
    ++m_layouts;
    if (!applies()) {
        return false;
    }
    QTreeViewPrivate* d = privateOf(m_view);
    if (d->hasRemovedItems) {
        // As the view does: its memory of expanded nodes forgets those whose rows went.
        d->hasRemovedItems = false;
        d->expandedIndexes.removeIf([](const QPersistentModelIndex& index) { return !index.isValid(); });
    }
    QList<QTreeViewItem>& rows = d->viewItems;
    const qsizetype rowsBefore = rows.size();
    rows.clear();
    const TreeNode* root = m_model.nodes().root();
    if (root != nullptr) {
        if (d->uniformRowHeights) {
            d->defaultItemHeight = rowHeight(m_model.indexOf(root));
        }
        const std::vector<const TreeNode*> expanded = expandedNodes(*d, m_model);
        rows.reserve(m_model.nodes().nodeCount());
        // Rows in the order they are shown: a node, then, when it is expanded, its children's rows.
        struct OpenRow
        {
            int row;
            const TreeNode* node;
            size_t nextChild;
        };
        std::vector<OpenRow> open;
        rows.append(rowOf(m_model, root, -1, 0, false));
        rows.back().expanded = isIn(expanded, root);
        if (rows.back().expanded) {
            open.push_back({ 0, root, 0 });
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
            const bool more = parent.nextChild < children.size();
            rows.append(rowOf(m_model, child, parent.row, rows[parent.row].level + 1, more));
            rows.back().expanded = isIn(expanded, child);
            if (rows.back().expanded) {
                open.push_back({ int(rows.size() - 1), child, 0 }); // `parent` is not used past this point
            }
        }
    }
    if (rows.size() != rowsBefore) {
        tellAssistiveTools(m_view);
    }
    return true;
}

void TreeRows::nodesAboutToGo(const TreeNode* parent, int first, int last, const std::vector<const TreeNode*>& going)
{
    QTreeViewPrivate* d = privateOf(m_view);
    // The view cleans its memory of expanded nodes only after rows were removed as such; nodes that
    // leave with a change of layout would stay in it, and every later layout would wade through them.
    for (const TreeNode* node : going) {
        const QModelIndex index = m_model.indexOf(node);
        if (d->isPersistent(index)) {
            d->expandedIndexes.remove(index);
        }
    }
    m_toGo.reset();
    RowsToGo found;
    if (m_removalsInPlaceLeft == 0 || isLayoutDue() || !applies() || !findRowsToGo(parent, first, last, found)) {
        m_scheduleLayout();
        return;
    }
    if (m_removalsInPlaceLeft > 0) {
        --m_removalsInPlaceLeft;
    }
    m_toGo = found;
}

bool TreeRows::findRowsToGo(const TreeNode* parent, int first, int last, RowsToGo& found) const
{
    const QTreeViewPrivate* d = privateOf(m_view);
    const QList<QTreeViewItem>& rows = d->viewItems;
    found.parent = parent;
    found.first = first;
    found.firstNode = parent->children[size_t(first)];
    found.layouts = m_layouts;
    found.parentRow = d->viewIndex(m_model.indexOf(parent));
    if (found.parentRow < 0 || !rows[found.parentRow].expanded) {
        found.shown = false;
        return true; // none of the rows is shown
    }
    found.shown = true;
    const int end = nextSiblingRow(rows, found.parentRow);
    int row = found.parentRow + 1;
    for (int child = 0; child <= last; ++child) {
        if (row >= end || !shows(rows[row], m_model, parent->children[size_t(child)])) {
            return false;
        }
        if (child == first) {
            found.firstRow = row;
        }
        if (child == first - 1) {
            found.previousRow = row;
        }
        row = nextSiblingRow(rows, row);
    }
    found.rowCount = row - found.firstRow;
    return true;
}

bool TreeRows::takeOutRowsToGo()
{
    if (!m_toGo) {
        return false;
    }
    const RowsToGo toGo = *m_toGo;
    m_toGo.reset();
    QTreeViewPrivate* d = privateOf(m_view);
    const TreeNode* parent = toGo.parent;
    if (toGo.layouts != m_layouts || isLayoutDue()) {
        return false; // the rows no longer stand as they were found
    }
    if (!toGo.shown) {
        if (toGo.parentRow >= 0) {
            d->viewItems[toGo.parentRow].hasChildren = !parent->children.empty();
        }
    } else {
        // The later siblings moved up; their rows follow the ones that go.
        if (toGo.firstRow + toGo.rowCount > d->viewItems.size()
            || !shows(d->viewItems[toGo.firstRow], m_model, toGo.firstNode)
            || !reindexSiblings(parent, size_t(toGo.first), toGo.firstRow + toGo.rowCount)) {
            return false;
        }
        d->removeViewItems(toGo.firstRow, toGo.rowCount);
        addToTotals(toGo.parentRow, -toGo.rowCount);
        if (toGo.previousRow >= 0 && size_t(toGo.first) == parent->children.size()) {
            d->viewItems[toGo.previousRow].hasMoreSiblings = false;
        }
        d->viewItems[toGo.parentRow].hasChildren = !parent->children.empty();
    }
    m_changedInPlace = true;
    m_layoutsAtChange = m_layouts;
    return true;
}

void TreeRows::layoutChanged()
{
    if (!m_changedInPlace) {
        return;
    }
    m_changedInPlace = false;
    if (m_layouts == m_layoutsAtChange) {
        // Unless something asked for the rows meanwhile and they were all laid out again, the view's
        // due layout is called off: the item view's part of a layout does just that, and sets the
        // scroll bars for the rows and moves an open label editor with its row. The header's layout,
        // which a full layout also runs, is not missed: the one column's header is hidden and keeps
        // its size.
        m_view.QAbstractItemView::doItemsLayout();
    }
}

bool TreeRows::rowsInserted(const QModelIndex& parentIndex, int first, int last)
{
    if (isLayoutDue() || !applies()) {
        return false;
    }
    QTreeViewPrivate* d = privateOf(m_view);
    const TreeNode* parent = m_model.nodeOf(parentIndex);
    if (parent == nullptr || last >= int(parent->children.size())) {
        return false;
    }
    const int parentRow = d->viewIndex(parentIndex);
    if (parentRow < 0 || !d->viewItems[parentRow].expanded) {
        return false; // the view only notes that the parent now has children
    }
    QList<QTreeViewItem>& rows = d->viewItems;
    const int end = nextSiblingRow(rows, parentRow);
    int row = parentRow + 1;
    int previousRow = -1;
    for (int child = 0; child < first; ++child) {
        if (row >= end || !shows(rows[row], m_model, parent->children[size_t(child)])) {
            return false;
        }
        previousRow = row;
        row = nextSiblingRow(rows, row);
    }
    const int count = last - first + 1;
    if (!reindexSiblings(parent, size_t(last) + 1, row)) {
        return false;
    }
    d->insertViewItems(row, count, QTreeViewItem());
    const uint level = rows[parentRow].level + 1;
    for (int child = first; child <= last; ++child) {
        // A node just made has no persistent index yet, so the view cannot hold it expanded.
        const bool more = size_t(child) + 1 < parent->children.size();
        rows[row + child - first] = rowOf(m_model, parent->children[size_t(child)], parentRow, level, more);
    }
    if (previousRow >= 0) {
        rows[previousRow].hasMoreSiblings = true;
    }
    rows[parentRow].hasChildren = true;
    addToTotals(parentRow, count);
    tellAssistiveTools(m_view);
    return true;
}

bool TreeRows::reindexSiblings(const TreeNode* parent, size_t firstChild, int row)
{
    QList<QTreeViewItem>& rows = privateOf(m_view)->viewItems;
    const auto& children = parent->children;
    // Checked first, so that a row that is not its node's changes nothing.
    int next = row;
    for (size_t child = firstChild; child < children.size(); ++child) {
        if (next >= rows.size() || !shows(rows[next], m_model, children[child])) {
            return false;
        }
        next = nextSiblingRow(rows, next);
    }
    for (size_t child = firstChild; child < children.size(); ++child) {
        rows[row].index = m_model.indexOf(children[child]);
        row = nextSiblingRow(rows, row);
    }
    return true;
}

void TreeRows::addToTotals(int row, int delta)
{
    QList<QTreeViewItem>& rows = privateOf(m_view)->viewItems;
    for (; row >= 0; row = rows[row].parentItem) {
        rows[row].total = uint(int(rows[row].total) + delta) & 0xFFFFFFFU;
    }
}

void TreeRows::expand(const std::vector<TreeNode*>& nodes)
{
    if (nodes.empty()) {
        return;
    }
    // With a layout due, expanding only notes each node, and the layout then runs once.
    constexpr size_t fewNodes = 8;
    if (nodes.size() > fewNodes || isLayoutDue()) {
        m_scheduleLayout();
    }
    setExpandedAtOnce(nodes, true);
}

void TreeRows::collapse(const std::vector<TreeNode*>& nodes)
{
    setExpandedAtOnce(nodes, false);
}

void TreeRows::setExpandedAtOnce(const std::vector<TreeNode*>& nodes, bool expanded)
{
    const QSignalBlocker noSignals(&m_view);
    // Nodes the program opens or closes do so at once, even where the style animates what the user
    // opens and closes.
    const bool animated = m_view.isAnimated();
    m_view.setAnimated(false);
    for (const TreeNode* node : nodes) {
        m_view.setExpanded(m_model.indexOf(node), expanded);
    }
    m_view.setAnimated(animated);
}

void TreeRows::expandMarked()
{
    std::vector<TreeNode*> marked;
    const NodeTree& tree = m_model.nodes();
    for (int n = 1; n <= tree.nodeCount(); ++n) {
        TreeNode* node = tree.node(n);
        if (node->expanded) {
            marked.push_back(node); // a node without children now keeps its mark for the ones to come
        }
    }
    expand(marked);
}
