#include "itemtree.h"

#include "app/itemtreemodel.h"
#include "app/paintingsuspended.h"
#include "app/plaintooltip.h"
#include "app/shapechange.h"
#include "app/shapedtextdelegate.h"
#include "app/treebranchstyle.h"
#include "app/treerows.h"
#include "model/menudocument.h"
#include "treeview/hidemode.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFont>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QToolTip>

#include <algorithm>
#include <utility>

ItemTree::ItemTree(QWidget* parent)
    : QTreeView(parent)
    , m_model(new ItemTreeModel(this))
    , m_rows(*this, *m_model, [this] { scheduleDelayedItemsLayout(); })
{
    setModel(m_model);
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
    TreeBranchStyle::installOn(this);
    // Every Undo and scroll paints the same captions again: each is shaped once, not on every paint.
    setItemDelegate(new ShapedTextDelegate(this));
    // The nesting of submenus must be visible at a glance: the style's own indentation and expand
    // markers, on the root too. A narrower indentation leaves the markers as dots.
    resetIndentation();
    setRootIsDecorated(true);
    updateFonts();
    m_model->setBeforeRemoval(
        [this](const TreeNode* above, int first, int last) { beforeBranchesGo(above, first, last); });
    m_rows.listen(*m_model);
    connect(this, &QTreeView::collapsed, this, &ItemTree::onCollapsed);
    connect(this, &QTreeView::expanded, this, &ItemTree::onExpanded);
}

ItemTree::~ItemTree()
{
    // What the view signals while it goes must not reach the window any more, nor what the model
    // tells of removals reach the rows, which go before the model.
    disconnect(this, nullptr, nullptr, nullptr);
    m_model->setBeforeRemoval({});
    m_model->setAfterRemoval({});
}

NodeStyle ItemTree::styleOf(const QModelIndex& node) const
{
    const TreeNode* found = treeNode(node);
    return found != nullptr ? found->style : NodeStyle();
}

QModelIndex ItemTree::addNode(const QString& parentKey, const QString& key, const QString& text)
{
    const ShapeChange changing(m_shapeChanges);
    m_model->nodes().documentChanged();
    return m_model->indexOf(m_model->nodes().addNode(parentKey, key, text, document()));
}

void ItemTree::addNodes(const QList<NewNode>& nodes)
{
    const ShapeChange changing(m_shapeChanges);
    NodeTree& tree = m_model->nodes();
    tree.documentChanged();
    const std::vector<TreeNode*> made = tree.addNodes(nodes, document());
    // Copies arrive expanded like the rest of the tree, down to the same depth, and so does the node
    // they were added to.
    std::vector<TreeNode*> toExpand;
    for (TreeNode* node : made) {
        TreeNode* parent = node->parent;
        if (parent != nullptr && !parent->expanded && NodeTree::depthOf(parent) < expandedLevels) {
            tree.setExpandedMark(parent, true);
            toExpand.push_back(parent);
        }
        if (!node->children.empty() && !node->expanded && NodeTree::depthOf(node) < expandedLevels) {
            tree.setExpandedMark(node, true);
            toExpand.push_back(node);
        }
    }
    m_rows.expand(toExpand);
}

void ItemTree::removeNode(const QModelIndex& node)
{
    TreeNode* found = treeNode(node);
    if (found == nullptr) {
        return;
    }
    if (found->parent == nullptr) {
        clearNodes(); // the root goes with everything
        return;
    }
    {
        const ShapeChange changing(m_shapeChanges);
        m_model->nodes().removeNode(found);
    }
    forgetGoneNodes();
}

void ItemTree::moveNode(const QModelIndex& node, const QModelIndex& parentNode, int row)
{
    TreeNode* moving = treeNode(node);
    TreeNode* parent = treeNode(parentNode);
    if (moving == nullptr || parent == nullptr || NodeTree::isWithin(parent, moving)) {
        return; // a node cannot move into its own branch
    }
    withExpandedStateAside([this, moving, parent, row] { m_model->nodes().moveNode(moving, parent, row); });
}

QModelIndex ItemTree::moveAmongSiblings(const QModelIndex& node, int offset)
{
    TreeNode* moving = treeNode(node);
    if (moving == nullptr || moving->parent == nullptr) {
        return node;
    }
    const int newRow = moving->row + offset;
    if (newRow < 0 || newRow >= int(moving->parent->children.size())) {
        return node;
    }
    const TreeNode* other = moving->parent->children[size_t(newRow)];
    TreeNode* result = nullptr;
    if (moving->children.empty() && other->children.empty()) {
        result = m_model->nodes().moveAmongSiblings(moving, offset);
    } else {
        withExpandedStateAside(
            [this, moving, offset, &result] { result = m_model->nodes().moveAmongSiblings(moving, offset); });
    }
    return m_model->indexOf(result);
}

void ItemTree::setNodeText(const QModelIndex& node, const QString& text)
{
    m_model->nodes().documentChanged();
    m_model->nodes().setText(treeNode(node), text, document());
}

void ItemTree::setNodeColour(const QModelIndex& node, NodeStyle::Colour colour)
{
    m_model->nodes().setColour(treeNode(node), colour);
}

void ItemTree::clearNodes()
{
    const ShapeChange changing(m_shapeChanges);
    // Nodes that go are collapsed on the way; that is not the user collapsing the root.
    const QSignalBlocker noCollapseSignals(this);
    m_model->nodes().clear();
    forgetGoneNodes();
}

void ItemTree::forgetGoneNodes()
{
    const NodeTree& tree = m_model->nodes();
    if (!m_editingKey.isEmpty() && tree.nodeByKey(m_editingKey) == nullptr) {
        m_editingKey.clear(); // an edit whose node goes is dropped with it
        m_labelCommitted = false;
    }
    if (!m_pressKey.isEmpty() && tree.nodeByKey(m_pressKey) == nullptr) {
        m_pressKey.clear();
    }
    if (!m_model->highlightedKey().isEmpty() && tree.nodeByKey(m_model->highlightedKey()) == nullptr) {
        m_model->setHighlightedKey(QString());
    }
}

void ItemTree::beforeBranchesGo(const TreeNode* parent, int first, int last)
{
    const std::vector<const TreeNode*> going = NodeTree::branchesOf(parent, first, last);
    // The rows leave as a change of layout, after which the view would drop an editor without
    // closing it and stay in its editing state, refusing every later edit. The edit is closed here,
    // unreported, as one whose node goes.
    const TreeNode* edited = m_model->nodes().nodeByKey(m_editingKey);
    if (edited != nullptr && std::find(going.begin(), going.end(), edited) != going.end()) {
        for (QLineEdit* editor : viewport()->findChildren<QLineEdit*>(Qt::FindDirectChildrenOnly)) {
            closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
        }
    }
    m_rows.nodesAboutToGo(parent, first, last, going);
}

void ItemTree::withExpandedStateAside(const std::function<void()>& change)
{
    const ShapeChange changing(m_shapeChanges);
    // The view remembers every expanded node, and moving rows makes the model walk from
    // each remembered node up to the top: on a menu thousands of levels deep that costs far more than
    // the change itself, even for a single leaf. So the expanded state is set aside for the change and
    // given back afterwards, and the view lays the tree out once. The nodes keep their marks, as it is
    // not the user collapsing them.
    {
        const QSignalBlocker noCollapseSignals(this);
        collapseAll();
    }
    change();
    m_rows.expandMarked();
}

void ItemTree::doItemsLayout()
{
    if (!m_rows.layOut([this](const QModelIndex& index) { return indexRowSizeHint(index); })) {
        QTreeView::doItemsLayout();
        return;
    }
    // The rest of the view's own layout, past its rows.
    QAbstractItemView::doItemsLayout();
    header()->doItemsLayout();
}

void ItemTree::rowsInserted(const QModelIndex& parent, int start, int end)
{
    if (!m_rows.rowsInserted(parent, start, end)) {
        QTreeView::rowsInserted(parent, start, end);
        return;
    }
    // The rest of the view's own insertion, past its rows, and what it does after expanding a node.
    QAbstractItemView::rowsInserted(parent, start, end);
    updateGeometries();
    viewport()->update();
}

QString ItemTree::fullPath(const QModelIndex& node) const
{
    const TreeNode* found = treeNode(node);
    return found != nullptr ? m_model->nodes().fullPath(found, document()) : QString();
}

void ItemTree::generate()
{
    // The rebuild always ends with painting on: opening a menu file suspends it before the file is
    // read and relies on the first rebuild to resume it.
    const PaintingSuspended suspended(this, true);
    const ShapeChange changing(m_shapeChanges);
    m_editingKey.clear();
    m_labelCommitted = false;
    m_pressKey.clear();
    m_model->setHighlightedKey(QString());
    {
        const QSignalBlocker noCollapseSignals(this);
        m_model->nodes().generate(document());
    }
    m_rows.expandMarked();
}

void ItemTree::regenerate()
{
    const NodeTree& tree = m_model->nodes();
    if (tree.root() == nullptr || tree.shownHideMode() != document().hideMode || !m_editingKey.isEmpty()) {
        generate();
        return;
    }
    // As after a rebuild: painting on at the end (which paints every row again: the document is its
    // own "before", so texts that changed without a change of shape, as a Replace makes, are not told
    // apart), nothing pressed, highlighted or selected, the view at its left edge (the first item is
    // shown afterwards, which brings it to the top). A sync that cannot plan the tree changes nothing.
    const PaintingSuspended suspended(this, true);
    syncTo(&document());
    m_labelCommitted = false;
    m_pressKey.clear();
    m_model->setHighlightedKey(QString());
    selectionModel()->reset(); // no current node and no selection, without a word, as a rebuild
    horizontalScrollBar()->setValue(0);
}

void ItemTree::syncTo(const MenuDocument* before)
{
    const PaintingSuspended suspended(this, updatesEnabled());
    const ShapeChange changing(m_shapeChanges);
    // Undoing a rename or a link choice changes no row, and undoing a Delete inserts one branch:
    // the expanded state is set aside (see withExpandedStateAside) only once rows are about to move,
    // or once insertions grow many, as each insertion among rows visits every expanded node.
    bool setAside = false;
    int insertions = 0;
    m_model->setBeforeShapeChange([this, &setAside, &insertions](bool rowsMove) {
        constexpr int insertionsInPlace = 8;
        if (!setAside && (rowsMove || ++insertions > insertionsInPlace)) {
            setAside = true;
            const QSignalBlocker noCollapseSignals(this);
            collapseAll();
        }
    });
    m_rows.limitRemovalsInPlace(8);
    const auto hearNothingMore = qScopeGuard([this] {
        m_model->setBeforeShapeChange({});
        m_rows.limitRemovalsInPlace(-1);
    });
    std::vector<TreeNode*> toCollapse;
    const std::vector<TreeNode*> toExpand = m_model->nodes().syncTo(document(), before, &toCollapse);
    if (setAside) {
        m_rows.expandMarked();
    } else {
        // The view kept its expanded nodes; those whose mark the tree took back are closed too.
        m_rows.collapse(toCollapse);
    }
    forgetGoneNodes();
    m_rows.expand(toExpand);
}

void ItemTree::showRootText(int hideMode)
{
    m_model->nodes().setText(m_model->nodes().root(), HideMode::rootText(hideMode), document());
}

void ItemTree::colorize()
{
    m_model->nodes().colorize(document());
}

void ItemTree::documentChanged()
{
    m_model->nodes().documentChanged();
}

void ItemTree::setDropHighlight(const QModelIndex& node)
{
    m_model->setHighlightedKey(keyOf(node));
}

QModelIndex ItemTree::dropHighlight() const
{
    return nodeByKey(m_model->highlightedKey());
}

QString ItemTree::toolTipOf(const QModelIndex& node) const
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
        return QTreeView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex node = indexAt(help->pos());
    const QString text = toolTipOf(node);
    if (text.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        // The tip stays while the pointer is on the same node and goes when it leaves it.
        QToolTip::showText(help->globalPos(), plainToolTip(text), viewport(), visualRect(node));
    }
    return true;
}

void ItemTree::changeEvent(QEvent* event)
{
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        updateFonts();
    }
}

void ItemTree::updateFonts()
{
    QFont bold = font();
    bold.setBold(true);
    m_model->setBoldFont(bold);
    QColor colour = palette().color(QPalette::Highlight);
    colour.setAlpha(90);
    m_model->setHighlightBrush(QBrush(colour));
}

void ItemTree::mousePressEvent(QMouseEvent* event)
{
    m_pressPos = event->position().toPoint();
    m_pressButton = event->button();
    m_pressKey = keyOf(indexAt(m_pressPos));
    QTreeView::mousePressEvent(event);
}

void ItemTree::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (!m_pressKey.isEmpty() && (event->buttons() & m_pressButton) != 0 && !isEditingLabel()
        && (position - m_pressPos).manhattanLength() >= QApplication::startDragDistance()) {
        const QModelIndex dragged = nodeByKey(std::exchange(m_pressKey, QString()));
        if (dragged.isValid()) {
            Q_EMIT dragStartRequested(dragged, m_pressButton);
        }
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void ItemTree::mouseReleaseEvent(QMouseEvent* event)
{
    // A right button pressed and released on a node without dragging it is a right click: its
    // context menu. A right-button drag has cleared the key when it started.
    const QString clickedKey = std::exchange(m_pressKey, QString());
    QTreeView::mouseReleaseEvent(event);
    if (event->button() == Qt::RightButton && m_pressButton == Qt::RightButton && !clickedKey.isEmpty()
        && clickedKey == keyOf(indexAt(event->position().toPoint()))) {
        Q_EMIT contextMenuRequested(nodeByKey(clickedKey), event->globalPosition().toPoint());
    }
}

void ItemTree::contextMenuEvent(QContextMenuEvent* event)
{
    // The mouse's context menu comes with the release of a right click (see mouseReleaseEvent), so
    // that a right-button drag can start from the press; the keyboard's is opened by keyPressEvent,
    // and a request the window system makes of the same key is not a second one.
    event->accept();
}

void ItemTree::requestMenuAtCurrentNode()
{
    if (!currentIndex().isValid()) {
        return;
    }
    scrollTo(currentIndex());
    const QRect row = visualRect(currentIndex());
    Q_EMIT contextMenuRequested(currentIndex(), viewport()->mapToGlobal(QPoint(row.left(), row.bottom())));
}

void ItemTree::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Menu || (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)) {
        event->accept();
        requestMenuAtCurrentNode();
        return;
    }
    // Left on the open root collapses it, which the root never is: its first item is shown instead,
    // as collapsing it by any other way does. The view would otherwise put the selection back on the
    // root once the first item was shown.
    const TreeNode* current = treeNode(currentIndex());
    if (event->key() == Qt::Key_Left && event->modifiers() == Qt::NoModifier && current != nullptr
        && current == m_model->nodes().root()) {
        event->accept();
        Q_EMIT rootCollapsed();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void ItemTree::dragEnterEvent(QDragEnterEvent* event)
{
    if (!event->mimeData()->hasFormat(dragFormat())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    Q_EMIT nodeDraggedOver(indexAt(event->position().toPoint()));
}

void ItemTree::dragMoveEvent(QDragMoveEvent* event)
{
    if (!event->mimeData()->hasFormat(dragFormat())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    const QPoint position = event->position().toPoint();
    Q_EMIT nodeDraggedOver(indexAt(position));
    // Near the top or the bottom the tree scrolls, so that every node can be reached.
    const int margin = autoScrollMargin();
    const QRect area = viewport()->rect();
    if (position.y() < area.top() + margin || position.y() > area.bottom() - margin) {
        startAutoScroll();
    }
}

void ItemTree::dragLeaveEvent(QDragLeaveEvent* event)
{
    setDropHighlight(QModelIndex());
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
    const QModelIndex node = indexAt(event->position().toPoint());
    Q_EMIT nodeDropped(node, viewport()->mapToGlobal(event->position().toPoint()));
}

bool ItemTree::startLabelEdit(const QModelIndex& node)
{
    const QString key = keyOf(node);
    if (key.isEmpty() || key == NodeTree::rootKey()) {
        return false;
    }
    scrollTo(node);
    QTreeView::edit(node);
    return isEditingLabel();
}

bool ItemTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    // The root belongs to no item and is never editable; only item nodes carry the editable flag.
    const QString key = keyOf(index);
    const bool opened = QTreeView::edit(index, trigger, event);
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
    QTreeView::commitData(editor);
    if (!m_editingKey.isEmpty()) {
        const QModelIndex node = nodeByKey(m_editingKey);
        if (node.isValid()) {
            m_labelCommitted = true;
            m_committedText = textOf(node);
        }
    }
}

void ItemTree::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    QTreeView::closeEditor(editor, hint);
    if (m_editingKey.isEmpty()) {
        return;
    }
    // The edit is reported only once the editor is gone, so that whatever the report changes in the
    // tree cannot pull the node from under an open editor. An editor closed because the tree changes
    // shape under it is dropped with its node, unreported: the change that closes it is under way.
    const QString key = std::exchange(m_editingKey, QString());
    if (m_shapeChanges > 0) {
        m_labelCommitted = false;
        return;
    }
    if (std::exchange(m_labelCommitted, false)) {
        Q_EMIT labelEditCommitted(key, std::exchange(m_committedText, QString()));
    } else {
        Q_EMIT labelEditCancelled(key);
    }
}

void ItemTree::onCollapsed(const QModelIndex& index)
{
    TreeNode* node = treeNode(index);
    if (node == nullptr) {
        return;
    }
    if (node == m_model->nodes().root()) {
        expand(index);
        Q_EMIT rootCollapsed();
        return;
    }
    m_model->nodes().setExpandedMark(node, false);
}

void ItemTree::onExpanded(const QModelIndex& index)
{
    if (TreeNode* node = treeNode(index)) {
        m_model->nodes().setExpandedMark(node, true);
    }
}
