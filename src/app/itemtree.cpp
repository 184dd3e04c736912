#include "itemtree.h"

#include "app/plaintooltip.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"
#include "treeview/nodestyle.h"
#include "treeview/treeplan.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFont>
#include <QHelpEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QToolTip>
#include <QVariant>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

const int kKeyRole = Qt::UserRole;

QString rootKey()
{
    return QStringLiteral("Root");
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

/// A node of the item tree. Its place among its siblings can be given by a number of its own, so
/// that a node moves among its siblings by sorting them: the view then keeps every expanded state and
/// nothing leaves the tree.
class TreeNode final : public QTreeWidgetItem
{
public:
    int place = 0;

    bool operator<(const QTreeWidgetItem& other) const override
    {
        return place < static_cast<const TreeNode&>(other).place;
    }
};

/// `top` and everything below it, parents before children, without recursion: a menu can nest
/// tens of thousands of levels deep.
std::vector<QTreeWidgetItem*> subtreeInPreOrder(QTreeWidgetItem* top)
{
    std::vector<QTreeWidgetItem*> result;
    std::vector<QTreeWidgetItem*> stack { top };
    while (!stack.empty()) {
        QTreeWidgetItem* current = stack.back();
        stack.pop_back();
        result.push_back(current);
        for (int c = current->childCount() - 1; c >= 0; --c) {
            stack.push_back(current->child(c));
        }
    }
    return result;
}

/// Deletes a subtree that is no longer part of any tree widget. Deleting the top item alone would
/// delete its descendants recursively, one stack frame per level, which a deep menu can overflow;
/// so the items are unlinked from the bottom up first (each takeChildren then only touches leaves)
/// and deleted one by one.
void deleteDetachedSubtree(QTreeWidgetItem* top)
{
    const std::vector<QTreeWidgetItem*> items = subtreeInPreOrder(top);
    for (auto it = items.rbegin(); it != items.rend(); ++it) {
        (*it)->takeChildren();
    }
    for (QTreeWidgetItem* item : items) {
        delete item;
    }
}

/// Not bold means the tree's own font, so a node follows later font changes of the tree.
void applyStyle(QTreeWidgetItem* node, const NodeStyle& style, const QFont& boldFont)
{
    node->setForeground(0, QBrush(colourOf(style.colour)));
    if (style.bold) {
        node->setFont(0, boldFont);
    } else {
        node->setData(0, Qt::FontRole, QVariant());
    }
}

/// Suspends painting of a widget until the end of a scope, also when an error leaves it early.
class PaintingSuspended
{
public:
    /// Painting is set to `enabledAfter` at the end of the scope.
    PaintingSuspended(QWidget* widget, bool enabledAfter)
        : m_widget(widget)
        , m_enabledAfter(enabledAfter)
    {
        m_widget->setUpdatesEnabled(false);
    }
    ~PaintingSuspended() { m_widget->setUpdatesEnabled(m_enabledAfter); }
    PaintingSuspended(const PaintingSuspended&) = delete;
    PaintingSuspended& operator=(const PaintingSuspended&) = delete;

private:
    QWidget* m_widget;
    bool m_enabledAfter;
};

} // namespace

ItemTree::ItemTree(QWidget* parent)
    : QTreeWidget(parent)
{
    setColumnCount(1);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // Every row is one line of text; letting the view assume so keeps layout of large menus fast.
    setUniformRowHeights(true);
    // Labels are edited through Rename (F2) and after New Item only, never by a click, so that a
    // click always selects and a drag always drags.
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Nodes are dragged by the tree itself, with either button, and dropped on another node of this
    // tree or of another window's.
    setDragEnabled(false);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    // The nesting of submenus must be visible at a glance: the style's own indentation and expand
    // markers, on the root too. A narrower indentation leaves the markers as dots.
    resetIndentation();
    setRootIsDecorated(true);
    connect(this, &QTreeWidget::itemCollapsed, this, &ItemTree::onItemCollapsed);
}

ItemTree::~ItemTree()
{
    // The base class would delete the nodes recursively; a deep menu needs the flat teardown.
    clearNodes();
}

int ItemTree::nodeCount() const
{
    return int(m_nodes.size());
}

QTreeWidgetItem* ItemTree::node(int index) const
{
    if (index < 1 || index > m_nodes.size()) {
        return nullptr;
    }
    return m_nodes.at(index - 1);
}

int ItemTree::indexOfNode(const QTreeWidgetItem* node) const
{
    const auto it = m_index.constFind(node);
    return it == m_index.constEnd() ? 0 : it.value() + 1;
}

QTreeWidgetItem* ItemTree::nodeByKey(const QString& key) const
{
    return m_byKey.value(key, nullptr);
}

QString ItemTree::keyOf(const QTreeWidgetItem* node) const
{
    if (node == nullptr || !m_index.contains(node)) {
        return QString();
    }
    return node->data(0, kKeyRole).toString();
}

QTreeWidgetItem* ItemTree::addNode(const QString& parentKey, const QString& key, const QString& text)
{
    QTreeWidgetItem* parentNode = nullptr;
    if (!parentKey.isEmpty()) {
        parentNode = nodeByKey(parentKey);
        if (parentNode == nullptr) {
            return nullptr;
        }
    }
    if (!key.isEmpty() && m_byKey.contains(key)) {
        return nullptr;
    }
    auto* created = new TreeNode;
    created->setText(0, text);
    created->setData(0, kKeyRole, key);
    if (key != rootKey()) {
        created->setFlags(created->flags() | Qt::ItemIsEditable);
    }
    if (parentNode != nullptr) {
        parentNode->addChild(created);
    } else {
        addTopLevelItem(created);
    }
    registerNode(created, key);
    return created;
}

void ItemTree::addNodes(const QList<NewNode>& nodes)
{
    // Nodes whose parent is new hang on it while it is not in the tree yet; a node whose parent is
    // in the tree starts a branch that joins the tree once it is complete.
    QHash<QString, QTreeWidgetItem*> created;
    std::vector<std::pair<QTreeWidgetItem*, QTreeWidgetItem*>> branches; // (parent in the tree, top)
    for (const NewNode& node : nodes) {
        if (node.key.isEmpty() || m_byKey.contains(node.key)) {
            continue; // the tree keeps one node per key, as addNode does
        }
        QTreeWidgetItem* newParent = created.value(node.parentKey, nullptr);
        QTreeWidgetItem* treeParent = newParent != nullptr ? nullptr : nodeByKey(node.parentKey);
        if (newParent == nullptr && treeParent == nullptr) {
            continue;
        }
        auto* item = new TreeNode;
        item->setText(0, node.text);
        item->setData(0, kKeyRole, node.key);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        if (newParent != nullptr) {
            newParent->addChild(item);
        } else {
            branches.emplace_back(treeParent, item);
        }
        registerNode(item, node.key);
        created.insert(node.key, item);
    }
    for (const auto& [treeParent, top] : branches) {
        treeParent->addChild(top);
    }
}

void ItemTree::forgetNodes(const std::vector<QTreeWidgetItem*>& nodes)
{
    for (QTreeWidgetItem* removed : nodes) {
        const QString key = removed->data(0, kKeyRole).toString();
        if (m_byKey.value(key, nullptr) == removed) {
            m_byKey.remove(key);
        }
        if (key == m_editingKey) {
            m_editingKey.clear(); // an edit whose node goes is dropped with it
            m_labelCommitted = false;
        }
        if (removed == m_pressNode) {
            m_pressNode = nullptr;
        }
        if (removed == m_dropHighlight) {
            m_dropHighlight = nullptr;
        }
        m_index.remove(removed);
    }
}

void ItemTree::withExpandedStateAside(const std::function<void()>& change)
{
    // The view remembers every expanded node, and removing rows makes the model walk from each
    // remembered node up to the top: on a menu thousands of levels deep that costs far more than the
    // change itself, even for a single leaf. So the expanded state is set aside for the change and
    // given back afterwards, children before their parents, so that the view lays the tree out once.
    // Nodes collapsed and expanded on the way are not the user doing so.
    const QSignalBlocker noCollapseSignals(this);
    std::vector<QTreeWidgetItem*> expanded;
    for (QTreeWidgetItem* node : std::as_const(m_nodes)) {
        if (node->isExpanded()) {
            expanded.push_back(node);
        }
    }
    collapseAll();
    change();
    for (auto it = expanded.rbegin(); it != expanded.rend(); ++it) {
        if (m_index.contains(*it)) {
            (*it)->setExpanded(true);
        }
    }
}

void ItemTree::removeNode(QTreeWidgetItem* node)
{
    if (node == nullptr || !m_index.contains(node)) {
        return;
    }
    const std::vector<QTreeWidgetItem*> subtree = subtreeInPreOrder(node);
    forgetNodes(subtree);
    m_nodes.removeIf([this](QTreeWidgetItem* candidate) { return !m_index.contains(candidate); });
    renumber();
    withExpandedStateAside([this, node] {
        if (QTreeWidgetItem* parentNode = node->parent()) {
            parentNode->takeChild(parentNode->indexOfChild(node));
        } else {
            takeTopLevelItem(indexOfTopLevelItem(node));
        }
    });
    deleteDetachedSubtree(node);
}

void ItemTree::moveNode(QTreeWidgetItem* node, QTreeWidgetItem* parentNode, int row)
{
    if (node == nullptr || parentNode == nullptr || !m_index.contains(node) || !m_index.contains(parentNode)) {
        return;
    }
    for (const QTreeWidgetItem* ancestor = parentNode; ancestor != nullptr; ancestor = ancestor->parent()) {
        if (ancestor == node) {
            return; // a node cannot move into its own branch
        }
    }
    withExpandedStateAside([node, parentNode, row] {
        if (QTreeWidgetItem* oldParent = node->parent()) {
            oldParent->takeChild(oldParent->indexOfChild(node));
        }
        parentNode->insertChild(std::clamp(row, 0, parentNode->childCount()), node);
    });
}

QTreeWidgetItem* ItemTree::moveAmongSiblings(QTreeWidgetItem* node, int offset)
{
    QTreeWidgetItem* parentNode = node != nullptr ? node->parent() : nullptr;
    if (parentNode == nullptr || !m_index.contains(node)) {
        return node;
    }
    const int row = parentNode->indexOfChild(node);
    const int newRow = row + offset;
    if (newRow < 0 || newRow >= parentNode->childCount()) {
        return node;
    }
    QTreeWidgetItem* other = parentNode->child(newRow);
    if (node->childCount() > 0 || other->childCount() > 0) {
        // A branch moves by sorting its siblings into their new order: no row leaves the tree, so
        // the model need not look at every expanded node, and every node keeps its state.
        for (int c = 0; c < parentNode->childCount(); ++c) {
            static_cast<TreeNode*>(parentNode->child(c))->place = c;
        }
        static_cast<TreeNode*>(node)->place = newRow;
        static_cast<TreeNode*>(other)->place = row;
        parentNode->sortChildren(0, Qt::AscendingOrder);
        return node;
    }
    // Two leaves trade everything they show and their places in the collection, so that every key
    // keeps its node number.
    const int nodeSlot = m_index.value(node);
    const int otherSlot = m_index.value(other);
    const QString nodeKey = keyOf(node);
    const QString otherKey = keyOf(other);
    for (const int role : { int(Qt::DisplayRole), kKeyRole, int(Qt::ForegroundRole), int(Qt::FontRole),
                            int(Qt::BackgroundRole), int(Qt::ToolTipRole) }) {
        const QVariant nodeValue = node->data(0, role);
        node->setData(0, role, other->data(0, role));
        other->setData(0, role, nodeValue);
    }
    m_nodes[nodeSlot] = other;
    m_nodes[otherSlot] = node;
    m_index.insert(other, nodeSlot);
    m_index.insert(node, otherSlot);
    m_byKey.insert(nodeKey, other);
    m_byKey.insert(otherKey, node);
    if (m_dropHighlight == node || m_dropHighlight == other) {
        m_dropHighlight = m_dropHighlight == node ? other : node;
    }
    return other;
}

void ItemTree::setDropHighlight(QTreeWidgetItem* node)
{
    if (node == m_dropHighlight) {
        return;
    }
    if (m_dropHighlight != nullptr) {
        m_dropHighlight->setData(0, Qt::BackgroundRole, QVariant());
    }
    m_dropHighlight = node != nullptr && m_index.contains(node) ? node : nullptr;
    if (m_dropHighlight != nullptr) {
        QColor colour = palette().color(QPalette::Highlight);
        colour.setAlpha(90);
        m_dropHighlight->setBackground(0, QBrush(colour));
    }
}

QString ItemTree::toolTipOf(const QTreeWidgetItem* node) const
{
    const QString key = keyOf(node);
    if (key.isEmpty() || !m_toolTipSource) {
        return QString();
    }
    return m_toolTipSource(key);
}

bool ItemTree::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QTreeWidget::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    QTreeWidgetItem* node = itemAt(help->pos());
    const QString text = toolTipOf(node);
    if (text.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        // The tip stays while the pointer is on the same node and goes when it leaves it.
        QToolTip::showText(help->globalPos(), plainToolTip(text), viewport(), visualItemRect(node));
    }
    return true;
}

void ItemTree::mousePressEvent(QMouseEvent* event)
{
    m_pressPos = event->position().toPoint();
    m_pressButton = event->button();
    m_pressNode = itemAt(m_pressPos);
    QTreeWidget::mousePressEvent(event);
}

void ItemTree::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (m_pressNode != nullptr && (event->buttons() & m_pressButton) != 0 && !isEditingLabel()
        && (position - m_pressPos).manhattanLength() >= QApplication::startDragDistance()) {
        QTreeWidgetItem* dragged = std::exchange(m_pressNode, nullptr);
        Q_EMIT dragStartRequested(dragged, m_pressButton);
        return;
    }
    QTreeWidget::mouseMoveEvent(event);
}

void ItemTree::mouseReleaseEvent(QMouseEvent* event)
{
    m_pressNode = nullptr;
    QTreeWidget::mouseReleaseEvent(event);
}

void ItemTree::dragEnterEvent(QDragEnterEvent* event)
{
    if (!event->mimeData()->hasFormat(dragFormat())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    Q_EMIT nodeDraggedOver(itemAt(event->position().toPoint()));
}

void ItemTree::dragMoveEvent(QDragMoveEvent* event)
{
    if (!event->mimeData()->hasFormat(dragFormat())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    const QPoint position = event->position().toPoint();
    Q_EMIT nodeDraggedOver(itemAt(position));
    // Near the top or the bottom the tree scrolls, so that every node can be reached.
    const int margin = autoScrollMargin();
    const QRect area = viewport()->rect();
    if (position.y() < area.top() + margin || position.y() > area.bottom() - margin) {
        startAutoScroll();
    }
}

void ItemTree::dragLeaveEvent(QDragLeaveEvent* event)
{
    setDropHighlight(nullptr);
    stopAutoScroll();
    event->accept();
}

void ItemTree::dropEvent(QDropEvent* event)
{
    stopAutoScroll();
    if (!event->mimeData()->hasFormat(dragFormat())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    QTreeWidgetItem* node = itemAt(event->position().toPoint());
    Q_EMIT nodeDropped(node, viewport()->mapToGlobal(event->position().toPoint()));
}

void ItemTree::clearNodes()
{
    // Nodes that go are collapsed on the way; that is not the user collapsing the root.
    const QSignalBlocker noCollapseSignals(this);
    // An edit, a press or a highlight whose node goes is dropped with it.
    m_editingKey.clear();
    m_labelCommitted = false;
    m_pressNode = nullptr;
    m_dropHighlight = nullptr;
    // Dropping the expanded state first spares the model from adjusting one remembered index per
    // expanded submenu while the nodes go.
    collapseAll();
    std::vector<QTreeWidgetItem*> tops;
    for (int t = topLevelItemCount() - 1; t >= 0; --t) {
        tops.push_back(takeTopLevelItem(t));
    }
    m_nodes.clear();
    m_byKey.clear();
    m_index.clear();
    for (QTreeWidgetItem* top : tops) {
        deleteDetachedSubtree(top);
    }
}

QString ItemTree::fullPath(const QTreeWidgetItem* node) const
{
    if (node == nullptr || !m_index.contains(node)) {
        return QString();
    }
    QStringList texts;
    for (const QTreeWidgetItem* current = node; current != nullptr; current = current->parent()) {
        texts.prepend(current->text(0));
    }
    return texts.join(QLatin1Char('\\'));
}

void ItemTree::generate(const MenuDocument& document)
{
    // The rebuild always ends with painting on: opening a menu file suspends it before the file is
    // read and relies on the first rebuild to resume it.
    const PaintingSuspended suspended(this, true);
    clearNodes();
    const QList<PlannedNode> plan = planTree(document, document.hideMode);

    // The nodes are linked to each other before the root joins the widget, so the view lays the
    // tree out once instead of once per node.
    const QFont bold = boldFont();
    auto* root = new TreeNode;
    root->setText(0, QStringLiteral("KELV"));
    root->setData(0, kKeyRole, rootKey());
    registerNode(root, rootKey());
    applyStyle(root, NodeStyle::forRoot(), bold);
    m_nodes.reserve(plan.size() + 1);
    std::vector<int> levels { 0 }; // aligned with m_nodes
    levels.reserve(size_t(plan.size()) + 1);
    for (const PlannedNode& planned : plan) {
        QTreeWidgetItem* parentNode = m_byKey.value(planned.parentKey, nullptr);
        if (parentNode == nullptr || m_byKey.contains(planned.key)) {
            continue; // the tree refuses the node, as addNode would
        }
        auto* created = new TreeNode;
        created->setText(0, planned.caption);
        created->setData(0, kKeyRole, planned.key);
        created->setFlags(created->flags() | Qt::ItemIsEditable);
        parentNode->addChild(created);
        levels.push_back(levels[size_t(m_index.value(parentNode))] + 1);
        registerNode(created, planned.key);
        applyStyle(created, NodeStyle::forItem(document.items.at(planned.itemIndex)), bold);
    }
    addTopLevelItem(root);
    // Deepest submenus first: while their parents are still collapsed the view only notes each one,
    // and expanding the root last lays the whole tree out once.
    for (int n = int(m_nodes.size()) - 1; n >= 0; --n) {
        QTreeWidgetItem* current = m_nodes.at(n);
        if (levels[size_t(n)] < expandedLevels && current->childCount() > 0) {
            current->setExpanded(true);
        }
    }
}

void ItemTree::showRootText(int hideMode)
{
    if (QTreeWidgetItem* root = node(1)) {
        root->setText(0, HideMode::rootText(hideMode));
    }
}

void ItemTree::colorize(const MenuDocument& document)
{
    const PaintingSuspended suspended(this, updatesEnabled());
    const QFont bold = boldFont();
    // The first item bearing a key wins, as with every other lookup from a node key.
    QHash<QString, int> itemOfKey;
    itemOfKey.reserve(document.items.size());
    for (int i = int(document.items.size()) - 1; i >= 0; --i) {
        itemOfKey.insert(document.items.at(i).key, i);
    }
    for (QTreeWidgetItem* node : std::as_const(m_nodes)) {
        const QString key = node->data(0, kKeyRole).toString();
        if (key == rootKey()) {
            continue;
        }
        // Resetting to black and then applying the submenu and command rows ends in the item's
        // style; it is applied in one step so each node changes at most once.
        const auto it = itemOfKey.constFind(key);
        applyStyle(node, it == itemOfKey.constEnd() ? NodeStyle() : NodeStyle::forItem(document.items.at(it.value())),
                   bold);
    }
}

void ItemTree::setNodeColour(QTreeWidgetItem* node, NodeStyle::Colour colour)
{
    if (node != nullptr) {
        node->setForeground(0, QBrush(colourOf(colour)));
    }
}

bool ItemTree::startLabelEdit(QTreeWidgetItem* node)
{
    if (node == nullptr || keyOf(node).isEmpty() || keyOf(node) == rootKey()) {
        return false;
    }
    scrollToItem(node);
    editItem(node, 0);
    return isEditingLabel();
}

bool ItemTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    // The root belongs to no item and is never editable; only item nodes carry the editable flag.
    const QString key = keyOf(itemFromIndex(index));
    const bool opened = QTreeWidget::edit(index, trigger, event);
    if (opened && !key.isEmpty() && state() == QAbstractItemView::EditingState && m_editingKey != key) {
        m_editingKey = key;
        m_labelCommitted = false;
        m_committedText.clear();
        Q_EMIT labelEditStarted(key);
    }
    return opened;
}

void ItemTree::commitData(QWidget* editor)
{
    QTreeWidget::commitData(editor);
    if (!m_editingKey.isEmpty()) {
        if (QTreeWidgetItem* node = nodeByKey(m_editingKey)) {
            m_labelCommitted = true;
            m_committedText = node->text(0);
        }
    }
}

void ItemTree::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    QTreeWidget::closeEditor(editor, hint);
    if (m_editingKey.isEmpty()) {
        return;
    }
    // The edit is reported only once the editor is gone, so that whatever the report changes in the
    // tree cannot pull the node from under an open editor.
    const QString key = std::exchange(m_editingKey, QString());
    if (std::exchange(m_labelCommitted, false)) {
        Q_EMIT labelEditCommitted(key, std::exchange(m_committedText, QString()));
    } else {
        Q_EMIT labelEditCancelled(key);
    }
}

void ItemTree::onItemCollapsed(QTreeWidgetItem* node)
{
    if (keyOf(node) == rootKey()) {
        node->setExpanded(true);
        Q_EMIT rootCollapsed();
    }
}

QFont ItemTree::boldFont() const
{
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

void ItemTree::registerNode(QTreeWidgetItem* node, const QString& key)
{
    m_index.insert(node, int(m_nodes.size()));
    m_nodes.append(node);
    if (!key.isEmpty()) {
        m_byKey.insert(key, node);
    }
}

void ItemTree::renumber()
{
    for (int i = 0; i < m_nodes.size(); ++i) {
        m_index.insert(m_nodes.at(i), i);
    }
}
