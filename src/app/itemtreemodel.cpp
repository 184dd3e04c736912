#include "itemtreemodel.h"

#include "model/menudocument.h"

#include <QColor>

namespace {

// A node's id is its address mixed: each step (an odd multiplier, a shift of more than half the bits
// folded back) is undone exactly, so every node keeps an id of its own, and the high bits of the
// product, which depend on every bit of the address, reach the low ones.
constexpr quint64 kSpread = 0x9E3779B97F4A7C15ULL;
constexpr quint64 kSpreadInverse = 0xF1DE83E19937733DULL;
constexpr int kFold = 33;

quint64 fold(quint64 value)
{
    return value ^ (value >> kFold); // its own inverse, as the shift exceeds half the bits
}

quintptr idOf(const TreeNode* node)
{
    if constexpr (sizeof(quintptr) < sizeof(quint64)) {
        return quintptr(node); // too few bits to mix and undo
    }
    return quintptr(fold(fold(quint64(quintptr(node))) * kSpread));
}

TreeNode* nodeOfId(quintptr id)
{
    if constexpr (sizeof(quintptr) < sizeof(quint64)) {
        return reinterpret_cast<TreeNode*>(id);
    }
    return reinterpret_cast<TreeNode*>(quintptr(fold(fold(quint64(id)) * kSpreadInverse)));
}

QColor colourOf(NodeStyle::Colour colour)
{
    switch (colour) {
    case NodeStyle::Colour::Navy:
        return QColor(0, 0, 128);
    case NodeStyle::Colour::Maroon:
        return QColor(128, 0, 0);
    case NodeStyle::Colour::Black:
        break;
    }
    return QColor(0, 0, 0);
}

/// A removal that changes the indexes of more nodes than this looks at every persistent index
/// instead of at those nodes.
constexpr size_t kFewChangedIndexes = 256;

const MenuDocument& noDocument()
{
    static const MenuDocument empty;
    return empty;
}

} // namespace

ItemTreeModel::ItemTreeModel(QObject* parent)
    : QAbstractItemModel(parent)
{
    m_tree.setObserver(this);
}

ItemTreeModel::~ItemTreeModel()
{
    m_tree.setObserver(nullptr);
}

const MenuDocument& ItemTreeModel::document() const
{
    return m_documentSource ? m_documentSource() : noDocument();
}

QModelIndex ItemTreeModel::indexOf(const TreeNode* node) const
{
    if (node == nullptr) {
        return QModelIndex();
    }
    return createIndex(node->row, 0, idOf(node));
}

TreeNode* ItemTreeModel::nodeOf(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != this) {
        return nullptr;
    }
    return nodeOfId(index.internalId());
}

void ItemTreeModel::setHighlightedKey(const QString& key)
{
    if (key == m_highlightedKey) {
        return;
    }
    const QModelIndex before = indexOf(m_tree.nodeByKey(m_highlightedKey));
    m_highlightedKey = key;
    if (before.isValid()) {
        Q_EMIT dataChanged(before, before, { Qt::BackgroundRole });
    }
    const QModelIndex after = indexOf(m_tree.nodeByKey(key));
    if (after.isValid()) {
        Q_EMIT dataChanged(after, after, { Qt::BackgroundRole });
    }
}

QModelIndex ItemTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column != 0 || row < 0) {
        return QModelIndex();
    }
    if (!parent.isValid()) {
        TreeNode* root = m_tree.root();
        return row == 0 && root != nullptr ? indexOf(root) : QModelIndex();
    }
    const TreeNode* parentNode = nodeOf(parent);
    if (parentNode == nullptr || row >= int(parentNode->children.size())) {
        return QModelIndex();
    }
    return indexOf(parentNode->children[size_t(row)]);
}

QModelIndex ItemTreeModel::parent(const QModelIndex& child) const
{
    const TreeNode* node = nodeOf(child);
    return node != nullptr ? indexOf(node->parent) : QModelIndex();
}

int ItemTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid()) {
        return m_tree.root() != nullptr ? 1 : 0;
    }
    if (parent.column() != 0) {
        return 0;
    }
    const TreeNode* node = nodeOf(parent);
    return node != nullptr ? int(node->children.size()) : 0;
}

int ItemTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool ItemTreeModel::hasChildren(const QModelIndex& parent) const
{
    return rowCount(parent) > 0;
}

QVariant ItemTreeModel::data(const QModelIndex& index, int role) const
{
    const TreeNode* node = nodeOf(index);
    if (node == nullptr) {
        return QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_tree.textOf(node, document());
    case Qt::ForegroundRole:
        return QBrush(colourOf(node->style.colour));
    case Qt::FontRole:
        // Not bold means the view's own font, so a node follows later font changes of the view.
        return node->style.bold ? QVariant(m_boldFont) : QVariant();
    case Qt::BackgroundRole:
        return !m_highlightedKey.isEmpty() && node->key == m_highlightedKey ? QVariant(m_highlightBrush) : QVariant();
    default:
        break;
    }
    return QVariant();
}

bool ItemTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    TreeNode* node = nodeOf(index);
    if (node == nullptr || role != Qt::EditRole || node == m_tree.root()) {
        return false;
    }
    // The node keeps the text the user typed; the editor then stores it as the item's caption.
    m_tree.setText(node, value.toString(), document());
    return true;
}

Qt::ItemFlags ItemTreeModel::flags(const QModelIndex& index) const
{
    const TreeNode* node = nodeOf(index);
    if (node == nullptr) {
        return Qt::NoItemFlags;
    }
    // The root belongs to no item and is never editable.
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (node != m_tree.root()) {
        result |= Qt::ItemIsEditable;
    }
    return result;
}

void ItemTreeModel::nodesAboutToBeInserted(const TreeNode* parent, int first, int last)
{
    if (m_beforeShapeChange) {
        m_beforeShapeChange(false);
    }
    beginInsertRows(indexOf(parent), first, last);
}

void ItemTreeModel::nodesInserted()
{
    endInsertRows();
}

void ItemTreeModel::nodesAboutToBeRemoved(const TreeNode* parent, int first, int last)
{
    if (m_beforeRemoval) {
        m_beforeRemoval(parent, first, last);
    }
    noteIndexesTheRemovalChanges(parent, first, last);
    // Rows leave as a change of layout, not as a removal of rows: before a removal the item model
    // walks from every persistent index (the view keeps one per expanded node) up to the top to
    // find those below the rows that go, which on a menu thousands of levels deep costs far more
    // than the change itself, even for a single leaf. Here only the indexes that change are told,
    // and a node knows whether it went. The view takes out the rows (see setAfterRemoval) or lays
    // them all out again.
    Q_EMIT layoutAboutToBeChanged();
}

void ItemTreeModel::noteIndexesTheRemovalChanges(const TreeNode* parent, int first, int last)
{
    m_changedByRemoval.clear();
    m_removalChangesMany = false;
    // Only the rows that go, everything below them, and the siblings after them, which move up, get
    // other indexes: an index names its row and its node, not its parent's row.
    const auto& children = parent->children;
    size_t noted = children.size() - size_t(first);
    std::vector<const TreeNode*> pending;
    if (noted <= kFewChangedIndexes) {
        for (size_t r = size_t(first); r < children.size(); ++r) {
            m_changedByRemoval.emplace_back(children[r], indexOf(children[r]));
        }
        pending.assign(children.begin() + first, children.begin() + last + 1);
    }
    while (!pending.empty() && noted <= kFewChangedIndexes) {
        const TreeNode* node = pending.back();
        pending.pop_back();
        noted += node->children.size();
        if (noted > kFewChangedIndexes) {
            break;
        }
        for (const TreeNode* child : node->children) {
            m_changedByRemoval.emplace_back(child, indexOf(child));
            pending.push_back(child);
        }
    }
    if (noted > kFewChangedIndexes) {
        // Past a few, the persistent indexes are likely the fewer: a view keeps one for each
        // expanded node and a handful more, and a menu with long lists of siblings has few open.
        m_removalChangesMany = true;
        m_changedByRemoval.clear();
    }
}

void ItemTreeModel::nodesRemoved()
{
    QModelIndexList from;
    QModelIndexList to;
    const auto noteChange = [this, &from, &to](const TreeNode* node, const QModelIndex& before) {
        const QModelIndex now = node == nullptr || node->ordinal < 0 ? QModelIndex() : indexOf(node);
        if (now != before) {
            from.append(before);
            to.append(now);
        }
    };
    if (m_removalChangesMany) {
        const QModelIndexList persistent = persistentIndexList();
        for (const QModelIndex& index : persistent) {
            noteChange(nodeOf(index), index);
        }
    } else {
        for (const auto& [node, before] : m_changedByRemoval) {
            noteChange(node, before);
        }
    }
    m_changedByRemoval.clear();
    changePersistentIndexList(from, to);
    if (m_afterRemoval) {
        m_afterRemoval();
    }
    Q_EMIT layoutChanged();
}

void ItemTreeModel::nodeAboutToBeMoved(const TreeNode* parent, int row, const TreeNode* newParent, int newRow)
{
    if (m_beforeShapeChange) {
        m_beforeShapeChange(true);
    }
    // An item model counts the destination among the rows as they are before the move.
    const int destination = parent == newParent && newRow > row ? newRow + 1 : newRow;
    beginMoveRows(indexOf(parent), row, row, indexOf(newParent), destination);
}

void ItemTreeModel::nodeMoved()
{
    endMoveRows();
}

void ItemTreeModel::nodesChanged(const TreeNode* parent, int first, int last)
{
    const QModelIndex parentIndex = indexOf(parent);
    Q_EMIT dataChanged(index(first, 0, parentIndex), index(last, 0, parentIndex));
}

void ItemTreeModel::treeAboutToBeReset()
{
    beginResetModel();
}

void ItemTreeModel::treeReset()
{
    endResetModel();
}
