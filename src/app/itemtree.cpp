#include "itemtree.h"

#include "model/menudocument.h"
#include "treeview/hidemode.h"
#include "treeview/nodestyle.h"
#include "treeview/treeplan.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QSignalBlocker>
#include <QVariant>

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
    auto* created = new QTreeWidgetItem;
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

void ItemTree::removeNode(QTreeWidgetItem* node)
{
    if (node == nullptr || !m_index.contains(node)) {
        return;
    }
    const std::vector<QTreeWidgetItem*> subtree = subtreeInPreOrder(node);
    for (QTreeWidgetItem* removed : subtree) {
        const QString key = removed->data(0, kKeyRole).toString();
        if (m_byKey.value(key, nullptr) == removed) {
            m_byKey.remove(key);
        }
        if (key == m_editingKey) {
            m_editingKey.clear(); // an edit whose node goes is dropped with it
            m_labelCommitted = false;
        }
        m_index.remove(removed);
    }
    m_nodes.removeIf([this](QTreeWidgetItem* candidate) { return !m_index.contains(candidate); });
    renumber();

    // The view remembers every expanded node, and removing rows makes the model walk from each
    // remembered node up to the top: on a menu thousands of levels deep that costs far more than the
    // removal itself, even for a single leaf. So the expanded state is set aside for the removal and
    // given back afterwards, children before their parents, so that the view lays the tree out once.
    const QSignalBlocker noCollapseSignals(this);
    std::vector<QTreeWidgetItem*> expanded;
    for (QTreeWidgetItem* remaining : std::as_const(m_nodes)) {
        if (remaining->isExpanded()) {
            expanded.push_back(remaining);
        }
    }
    collapseAll();
    if (QTreeWidgetItem* parentNode = node->parent()) {
        parentNode->takeChild(parentNode->indexOfChild(node));
    } else {
        takeTopLevelItem(indexOfTopLevelItem(node));
    }
    deleteDetachedSubtree(node);
    for (auto it = expanded.rbegin(); it != expanded.rend(); ++it) {
        (*it)->setExpanded(true);
    }
}

void ItemTree::clearNodes()
{
    // Nodes that go are collapsed on the way; that is not the user collapsing the root.
    const QSignalBlocker noCollapseSignals(this);
    // An edit whose node goes is dropped with it.
    m_editingKey.clear();
    m_labelCommitted = false;
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
    auto* root = new QTreeWidgetItem;
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
        auto* created = new QTreeWidgetItem;
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

    setIndentation(2);
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
