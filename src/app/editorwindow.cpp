#include "editorwindow.h"

#include "app/editorwindowhost.h"
#include "app/findbar.h"
#include "app/itemtree.h"
#include "app/plaintooltip.h"
#include "core/applicationstate.h"
#include "core/editingsession.h"
#include "core/statuspanels.h"
#include "core/tooltiptexts.h"
#include "editing/itemcreation.h"
#include "editing/itemmoving.h"
#include "editing/itempanel.h"
#include "editing/linkediting.h"
#include "editing/treeupdate.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDrag>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyle>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

QString rootKey()
{
    return SelectedNode::rootKey();
}

/// Keeps the busy notice up for the length of a scope, also when the work in it throws.
class BusyNotice
{
public:
    BusyNotice(EditorWindow& editor, const QString& text)
        : m_editor(editor)
    {
        m_editor.showBusyNotice(text);
    }
    ~BusyNotice() { m_editor.hideBusyNotice(); }
    BusyNotice(const BusyNotice&) = delete;
    BusyNotice& operator=(const BusyNotice&) = delete;

private:
    EditorWindow& m_editor;
};

/// Sets a flag for the length of a scope.
class FlagScope
{
public:
    explicit FlagScope(bool& flag)
        : m_flag(flag)
        , m_previous(flag)
    {
        m_flag = true;
    }
    ~FlagScope() { m_flag = m_previous; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
    bool m_previous;
};

/// The index of the item behind `key`; an index that names no item is a run-time error of `source`.
int itemIndexOf(const MenuDocument& document, const QString& key, const char* source)
{
    const int index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return index;
}

/// Suspends painting of a widget for the length of a scope, as it was before.
class PaintingSuspended
{
public:
    explicit PaintingSuspended(QWidget* widget)
        : m_widget(widget)
        , m_enabledBefore(widget->updatesEnabled())
    {
        m_widget->setUpdatesEnabled(false);
    }
    ~PaintingSuspended() { m_widget->setUpdatesEnabled(m_enabledBefore); }
    PaintingSuspended(const PaintingSuspended&) = delete;
    PaintingSuspended& operator=(const PaintingSuspended&) = delete;

private:
    QWidget* m_widget;
    bool m_enabledBefore;
};

} // namespace

QColor EditorWindow::choosingColour()
{
    return QColor(168, 227, 176);
}

EditorWindow::EditorWindow(EditorWindowHost& host, qint16 documentIndex, QWidget* parent)
    : QWidget(parent)
    , m_host(host)
    , m_documentIndex(documentIndex)
{
    setObjectName(QStringLiteral("frmEditor"));
    setCaption(defaultCaption());
    buildLayout();

    connect(m_lstMenu->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current, const QModelIndex&) { onCurrentNodeChanged(current); });
    connect(m_lstMenu, &QTreeView::clicked, this, &EditorWindow::onNodeClicked);
    connect(m_lstMenu, &ItemTree::labelEditStarted, this, &EditorWindow::onLabelEditStarted);
    connect(m_lstMenu, &ItemTree::labelEditCommitted, this, &EditorWindow::onLabelEditCommitted);
    connect(m_lstMenu, &ItemTree::rootCollapsed, this, &EditorWindow::onRootCollapsed);
    // Only the user's clicks count: the box is set from the document whenever an item is shown.
    connect(m_chkCopyCommand, &QCheckBox::clicked, this, &EditorWindow::chkCopyCommand_Click);
    connect(m_cmdChangeCopy, &QPushButton::toggled, this, &EditorWindow::cmdChangeCopy_Click);
    connect(m_cmdUp, &QPushButton::clicked, this, &EditorWindow::cmdUp_Click);
    connect(m_cmdDown, &QPushButton::clicked, this, &EditorWindow::cmdDown_Click);
    connect(m_lstMenu, &ItemTree::dragStartRequested, this, &EditorWindow::startNodeDrag);
    connect(m_lstMenu, &ItemTree::nodeDraggedOver, this, &EditorWindow::onNodeDraggedOver);
    connect(m_lstMenu, &ItemTree::nodeDropped, this, &EditorWindow::lstMenu_OLEDragDrop);
    // Ctrl+Up and Ctrl+Down move the selected item while the tree has the focus.
    const auto addTreeKey = [this](const QKeySequence& keys, void (EditorWindow::*handler)()) {
        auto* action = new QAction(m_lstMenu);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        m_lstMenu->addAction(action);
        connect(action, &QAction::triggered, this, handler);
    };
    addTreeKey(QKeySequence(Qt::CTRL | Qt::Key_Up), &EditorWindow::cmdUp_Click);
    addTreeKey(QKeySequence(Qt::CTRL | Qt::Key_Down), &EditorWindow::cmdDown_Click);
    m_txtItemIndexCopy->installEventFilter(this);
    m_lstMenu->viewport()->installEventFilter(this);
    m_lstCommand->viewport()->installEventFilter(this);
    m_lstMenu->setToolTipSource([this](const QString& key) {
        const MenuDocument& menu = document();
        return ToolTipTexts::forNode(menu, findItemByKey(menu, key));
    });
    m_host.attachTree(m_lstMenu);
}

EditorWindow::~EditorWindow()
{
    // The tree goes after this window; what it signals on the way must not reach the window.
    disconnect(m_lstMenu, nullptr, this, nullptr);
}

void EditorWindow::buildLayout()
{
    m_lstMenu = new ItemTree(this);
    m_lstMenu->setObjectName(QStringLiteral("lstMenu"));
    m_lstMenu->setDocumentSource([this]() -> const MenuDocument& { return document(); });
    m_lstMenu->setHeaderHidden(true);

    m_lblPath = new QLabel(this);
    m_lblPath->setObjectName(QStringLiteral("lblPath"));
    m_lblPath->setWordWrap(true);
    m_lblPath->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* commandsCaption = new QLabel(tr("Commands of the item:"), this);
    commandsCaption->setObjectName(QStringLiteral("lblCommands"));
    m_lstCommand = new QListWidget(this);
    m_lstCommand->setObjectName(QStringLiteral("lstCommand"));
    commandsCaption->setBuddy(m_lstCommand);
    // A double click edits the line; the right button's release pops the command menu up, also
    // over an empty list.
    m_lstCommand->viewport()->installEventFilter(this);
    connect(m_lstCommand, &QListWidget::itemDoubleClicked, this, [this] { m_host.editSelectedCommand(); });

    // The copy-command link: the check box switches it, the field names the target item (a double
    // click follows the link) and the button starts choosing a target in the tree.
    m_chkCopyCommand = new QCheckBox(tr("Use the commands of item"), this);
    m_chkCopyCommand->setObjectName(QStringLiteral("chkCopyCommand"));
    m_chkCopyCommand->setEnabled(false);
    m_txtItemIndexCopy = new QLineEdit(this);
    m_txtItemIndexCopy->setObjectName(QStringLiteral("txtItemIndexCopy"));
    m_txtItemIndexCopy->setReadOnly(true);
    m_txtItemIndexCopy->setEnabled(false);
    m_txtItemIndexCopy->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000000")) + 16);
    m_cmdChangeCopy = new QPushButton(tr("Choose item..."), this);
    m_cmdChangeCopy->setObjectName(QStringLiteral("cmdChangeCopy"));
    m_cmdChangeCopy->setCheckable(true);
    m_cmdChangeCopy->setEnabled(false);
    m_cmdChangeCopy->setAutoFillBackground(true);

    auto* linkBox = new QGroupBox(tr("Copy command"), this);
    linkBox->setObjectName(QStringLiteral("grpCopyCommand"));
    // The check box has a row of its own, so that the side stays narrow and leaves room for the tree
    // when windows are tiled side by side.
    auto* linkLayout = new QGridLayout(linkBox);
    linkLayout->addWidget(m_chkCopyCommand, 0, 0, 1, 3, Qt::AlignLeft);
    linkLayout->addWidget(m_txtItemIndexCopy, 1, 0);
    linkLayout->addWidget(m_cmdChangeCopy, 1, 1);
    linkLayout->setColumnStretch(2, 1);

    // Moving the selected item among its siblings.
    m_cmdUp = new QPushButton(tr("Move up"), this);
    m_cmdUp->setObjectName(QStringLiteral("cmdUp"));
    m_cmdUp->setEnabled(false);
    m_cmdDown = new QPushButton(tr("Move down"), this);
    m_cmdDown->setObjectName(QStringLiteral("cmdDown"));
    m_cmdDown->setEnabled(false);
    auto* moveLayout = new QHBoxLayout;
    moveLayout->addWidget(m_cmdUp);
    moveLayout->addWidget(m_cmdDown);
    moveLayout->addStretch(1);

    auto* side = new QWidget(this);
    side->setObjectName(QStringLiteral("pnlItem"));
    auto* sideLayout = new QVBoxLayout(side);
    sideLayout->setContentsMargins(6, 0, 0, 0);
    sideLayout->addWidget(m_lblPath);
    sideLayout->addWidget(commandsCaption);
    sideLayout->addWidget(m_lstCommand, 1);
    sideLayout->addWidget(linkBox);
    sideLayout->addLayout(moveLayout);

    // The find bar sits above the tree, hidden until Find asks for it.
    auto* treeSide = new QWidget(this);
    treeSide->setObjectName(QStringLiteral("pnlTree"));
    m_findBar = new FindBar([this]() -> const MenuDocument& { return document(); }, treeSide);
    connect(m_findBar, &FindBar::matchChosen, this, &EditorWindow::showFoundItem);
    connect(m_findBar, &FindBar::closed, this, [this] { m_lstMenu->setFocus(Qt::OtherFocusReason); });
    auto* treeLayout = new QVBoxLayout(treeSide);
    treeLayout->setContentsMargins(0, 0, 0, 0);
    treeLayout->setSpacing(0);
    treeLayout->addWidget(m_findBar);
    treeLayout->addWidget(m_lstMenu, 1);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("splEditor"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(treeSide);
    splitter->addWidget(side);
    // The two sides keep about 45 : 55 of the width as the window is resized or tiled, so that a
    // narrow window still shows the captions of the tree.
    splitter->setStretchFactor(0, 9);
    splitter->setStretchFactor(1, 11);
    splitter->setSizes({ 288, 352 });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(splitter);

    // The busy notice floats over the window, outside the layout, and is shown only during long work.
    m_frm01 = new QFrame(this);
    m_frm01->setObjectName(QStringLiteral("frm01"));
    m_frm01->setFrameShape(QFrame::Box);
    m_frm01->setAutoFillBackground(true);
    m_lblReconstruct = new QLabel(m_frm01);
    m_lblReconstruct->setObjectName(QStringLiteral("lblReconstruct"));
    m_lblReconstruct->setAlignment(Qt::AlignCenter);
    auto* noticeLayout = new QVBoxLayout(m_frm01);
    noticeLayout->setContentsMargins(24, 12, 24, 12);
    noticeLayout->addWidget(m_lblReconstruct);
    m_frm01->hide();

    resize(640, 420);
}

void EditorWindow::setCaption(const QString& caption)
{
    m_caption = caption;
    // "[*]" is where the title shows the unsaved mark; one in the caption itself is doubled so that
    // it shows as written.
    QString title = caption;
    title.replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
    setWindowTitle(title + QStringLiteral("[*]"));
}

const MenuDocument& EditorWindow::document() const
{
    return m_host.state().document(m_documentIndex);
}

WindowEditingState& EditorWindow::windowState() const
{
    return m_host.state().window(m_documentIndex);
}

bool EditorWindow::nodeClicked() const
{
    return windowState().nodeClicked;
}

bool EditorWindow::isChoosingLinkTarget() const
{
    return m_cmdChangeCopy->isChecked();
}

void EditorWindow::showBusyNotice(const QString& text)
{
    m_lblReconstruct->setText(text);
    m_frm01->adjustSize();
    placeBusyNotice();
    m_frm01->show();
    m_frm01->raise();
    // Nothing else runs while the work goes on, so the notice must be painted now.
    repaint();
}

void EditorWindow::hideBusyNotice()
{
    m_frm01->hide();
}

void EditorWindow::placeBusyNotice()
{
    const QSize size = m_frm01->size();
    m_frm01->move((width() - size.width()) / 2, (height() - size.height()) / 2);
}

void EditorWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeBusyNotice();
}

void EditorWindow::generateTree()
{
    BusyNotice notice(*this, QStringLiteral("Generating tree ..."));
    {
        FlagScope selecting(m_selectingNode);
        m_shownByMove.clear();
        m_lstMenu->generate();
    }
    showFirstItem();
}

void EditorWindow::showRestoredState(const MenuDocument& before)
{
    if (before.hideMode != document().hideMode) {
        generateTree(); // another hide mode shows another tree: it is built anew
        return;
    }
    {
        FlagScope selecting(m_selectingNode);
        m_shownByMove.clear();
        m_lstMenu->syncTo(&before);
    }
    showFirstItem();
}

void EditorWindow::showFirstItem()
{
    FlagScope selecting(m_selectingNode);
    refreshFindBar();
    // The first item is shown while the root still reads "KELV"; the root tells that items may be
    // hidden only once that is done, so the path shown right after a rebuild never carries it.
    try {
        if (m_lstMenu->nodeCount() > 1) {
            lstMenu_NodeClick(m_lstMenu->node(2));
        } else {
            showNoItem();
        }
    } catch (...) {
        m_lstMenu->showRootText(document().hideMode);
        throw;
    }
    m_lstMenu->showRootText(document().hideMode);
}

void EditorWindow::ColorizeMenu()
{
    m_lstMenu->colorize();
}

void EditorWindow::lstMenu_NodeClick(const QModelIndex& node)
{
    m_shownByMove.clear();
    const int nodeIndex = m_lstMenu->indexOfNode(node);
    if (nodeIndex <= 1) {
        return; // the root node, or no node of this tree
    }
    ApplicationState& state = m_host.state();
    if (isChoosingLinkTarget()) {
        EditArguments arguments;
        arguments.sourceKey = nodeKey(state.lastNodeIndex());
        arguments.targetKey = m_lstMenu->keyOf(node);
        m_host.session().run(m_documentIndex, EditOperations::chooseLinkTarget, arguments);
        return;
    }
    state.setLastNodeIndex(Int16::checked(nodeIndex, "lstMenu_NodeClick"));

    const MenuDocument& menu = document();
    const int itemIndex = itemIndexOf(menu, m_lstMenu->keyOf(node), "lstMenu_NodeClick");
    const MenuItem& item = menu.items.at(itemIndex);
    showStatusPanel(6, StatusPanels::positionOf(item));
    showStatusPanel(2, QString::number(itemIndex));
    windowState().nodeClicked = true;
    {
        FlagScope selecting(m_selectingNode);
        selectNode(node);
    }
    SelectItem();
}

void EditorWindow::SelectItem()
{
    const QModelIndex node = m_lstMenu->currentIndex();
    m_lblPath->setText(m_lstMenu->fullPath(node));
    m_lstCommand->clear();
    if (node.isValid() && m_lstMenu->keyOf(node) != rootKey()) {
        const MenuDocument& menu = document();
        const ItemPanel panel = itemPanel(menu, itemIndexOf(menu, m_lstMenu->keyOf(node), "SelectItem"));
        m_txtItemIndexCopy->setText(panel.linkTarget);
        m_chkCopyCommand->setChecked(panel.linked);
        m_lstCommand->addItems(panel.commandLines);
        if (!windowState().nodeClicked) {
            ColorizeMenu();
        }
    }
    updateLinkControls();
    m_host.selectionChanged(m_documentIndex);
}

void EditorWindow::updateLinkControls()
{
    const bool itemShown = selectedNode().isItem();
    const bool choosing = isChoosingLinkTarget();
    const bool linked = m_chkCopyCommand->isChecked();
    m_chkCopyCommand->setEnabled(itemShown && !choosing);
    m_cmdChangeCopy->setEnabled(itemShown || choosing);
    m_cmdUp->setEnabled(itemShown && !choosing);
    m_cmdDown->setEnabled(itemShown && !choosing);
    m_lstCommand->setEnabled(!linked && !choosing);
    m_txtItemIndexCopy->setEnabled(itemShown && linked);
}

void EditorWindow::chkCopyCommand_Click()
{
    EditArguments arguments;
    arguments.checked = m_chkCopyCommand->isChecked();
    if (!m_host.session().run(m_documentIndex, EditOperations::switchLink, arguments)) {
        // Whatever did not happen, the box shows the item as it stands.
        SelectItem();
    }
}

void EditorWindow::cmdChangeCopy_Click()
{
    const bool choosing = isChoosingLinkTarget();
    windowState().linkTargetChoice = choosing;
    showChoosingColour(choosing);
    updateLinkControls();
    if (!choosing) {
        // Leaving the choice applies the check box to the item again.
        chkCopyCommand_Click();
    }
    m_host.updateMenus();
}

void EditorWindow::cmdUp_Click()
{
    m_host.session().run(m_documentIndex, EditOperations::moveUp);
}

void EditorWindow::cmdDown_Click()
{
    m_host.session().run(m_documentIndex, EditOperations::moveDown);
}

void EditorWindow::startNodeDrag(const QModelIndex& node, Qt::MouseButton button)
{
    const QString key = m_lstMenu->keyOf(node);
    if (key.isEmpty() || key == rootKey() || isChoosingLinkTarget()) {
        return; // the root belongs to no item and cannot be dragged
    }
    DragState::Button dragButton = DragState::Button::None;
    if (button == Qt::LeftButton) {
        // A left-button drag is the drag-and-drop option's; a right-button drag is always there.
        if (m_host.state().options().dragNDrop == 0) {
            return;
        }
        dragButton = DragState::Button::Left;
    } else if (button == Qt::RightButton) {
        dragButton = DragState::Button::Right;
    } else {
        return;
    }
    // The node under the pointer becomes the selected node, and the one being dragged.
    if (m_lstMenu->currentIndex() != node) {
        clickFromUser(node);
    }
    DragState& drag = m_host.state().editing().drag;
    drag.nodeKey = key;
    drag.document = m_documentIndex;
    drag.button = dragButton;
    drag.active = true;

    auto* dragData = new QMimeData;
    dragData->setData(ItemTree::dragFormat(), (QString::number(m_documentIndex) + QLatin1Char(' ') + key).toUtf8());
    auto* nodeDrag = new QDrag(m_lstMenu);
    nodeDrag->setMimeData(dragData);
    m_host.execDrag(nodeDrag);
}

void EditorWindow::onNodeDraggedOver(const QModelIndex& node)
{
    // Only a drag this program started shows where it would land.
    m_lstMenu->setDropHighlight(m_host.state().editing().drag.active ? node : QModelIndex());
}

void EditorWindow::lstMenu_OLEDragDrop(const QModelIndex& node, const QPoint& globalPos)
{
    m_lstMenu->setDropHighlight(QModelIndex());
    ApplicationState& state = m_host.state();
    DragState& drag = state.editing().drag;
    const QString targetKey = m_lstMenu->keyOf(node);
    if (isDropIgnored(drag, state.options().dragNDrop != 0, m_documentIndex, targetKey)) {
        return;
    }
    const QString parentKey = m_lstMenu->keyOf(node.parent());
    if (drag.button == DragState::Button::Right) {
        drag.dropAsSibling = false;
        drag.dropAsChild = false;
        drag.dropCancelled = true;
        // Nothing can be placed beside the root.
        m_host.popupDropMenu(m_lstMenu->textOf(node), m_lstMenu->textOf(node.parent()), targetKey != rootKey(),
                             globalPos);
    } else {
        drag.dropAsChild = true;
        drag.dropAsSibling = false;
        drag.dropCopy = false;
        drag.dropCancelled = false;
    }
    if (drag.dropCancelled) {
        drag.active = false;
        drag.nodeKey.clear();
        return; // the menu was closed without a choice
    }
    const DropRequest request = dropRequestOf(drag, targetKey, parentKey, state.editing().copyCommandDup);
    m_host.session().runDrop(drag.document, m_documentIndex, request);
}

void EditorWindow::showChoosingColour(bool choosing)
{
    if (!choosing) {
        // The style sheet goes first: taking it away brings back the palette it was put on.
        m_cmdChangeCopy->setStyleSheet(QString());
        m_cmdChangeCopy->setPalette(QPalette());
        return;
    }
    QPalette palette = m_cmdChangeCopy->palette();
    palette.setColor(QPalette::Button, choosingColour());
    m_cmdChangeCopy->setPalette(palette);
    // Styles that draw buttons themselves take the colour from a style sheet only.
    m_cmdChangeCopy->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; }").arg(choosingColour().name()));
}

void EditorWindow::showStatusPanel(int panel, const QString& text)
{
    // The status bar tells of the active window only; a window changed while another is active (the
    // target of a drop) shows its values when it is activated.
    if (m_host.activeDocumentIndex() == m_documentIndex) {
        m_host.setStatusPanelText(panel, text);
    }
}

void EditorWindow::showNoItem()
{
    m_lblPath->clear();
    m_lstCommand->clear();
    m_txtItemIndexCopy->clear();
    m_chkCopyCommand->setChecked(false);
    updateLinkControls();
    m_host.selectionChanged(m_documentIndex);
}

SelectedNode EditorWindow::selectedNode() const
{
    SelectedNode selected;
    const QModelIndex node = m_lstMenu->currentIndex();
    selected.key = m_lstMenu->keyOf(node);
    if (!selected.key.isEmpty() && node.parent().isValid()) {
        selected.parentKey = m_lstMenu->keyOf(node.parent());
        selected.previousSiblingKey = m_lstMenu->keyOf(node.siblingAtRow(node.row() - 1));
        selected.nextSiblingKey = m_lstMenu->keyOf(node.siblingAtRow(node.row() + 1));
    }
    return selected;
}

QString EditorWindow::nodeKey(int nodeIndex) const
{
    return m_lstMenu->keyOf(m_lstMenu->node(nodeIndex));
}

void EditorWindow::applyUpdate(const TreeUpdate& update)
{
    m_lstMenu->documentChanged();
    bool busy = false;
    const auto endBusy = [this, &busy] {
        if (busy) {
            busy = false;
            m_lstMenu->setUpdatesEnabled(true);
            hideBusyNotice();
        }
    };
    try {
        const QList<TreeStep>& steps = update.steps();
        for (qsizetype s = 0; s < steps.size(); ++s) {
            const TreeStep& step = steps.at(s);
            if (step.kind == TreeStep::Kind::AddNode) {
                // The nodes of a copied branch join the tree together.
                QList<ItemTree::NewNode> added;
                for (; s < steps.size() && steps.at(s).kind == TreeStep::Kind::AddNode; ++s) {
                    added.append({ steps.at(s).parentKey, steps.at(s).key, steps.at(s).text });
                }
                --s;
                m_lstMenu->addNodes(added);
                continue;
            }
            if (step.kind == TreeStep::Kind::ShowBusy) {
                // The notice keeps the text it has; the tree stays unpainted until the work is done.
                showBusyNotice(m_lblReconstruct->text());
                m_lstMenu->setUpdatesEnabled(false);
                busy = true;
                continue;
            }
            if (step.kind == TreeStep::Kind::HideBusy) {
                endBusy();
                continue;
            }
            applyStep(step);
        }
    } catch (...) {
        endBusy();
        throw;
    }
    endBusy();
    if (!update.steps().isEmpty()) {
        refreshFindBar();
    }
}

void EditorWindow::refreshFindBar()
{
    // The find bar's matches follow the menu as it changes.
    m_findBar->menuChanged();
    if (m_findBar->isVisible()) {
        m_findBar->search();
    }
}

void EditorWindow::openFindBar()
{
    m_findBar->open();
}

void EditorWindow::showFoundItem(const QString& key)
{
    if (isChoosingLinkTarget()) {
        return; // a click would choose the link's target
    }
    const QModelIndex node = m_lstMenu->nodeByKey(key);
    if (!node.isValid()) {
        m_findBar->search();
        return;
    }
    m_lstMenu->scrollTo(node);
    clickFromUser(node);
}

void EditorWindow::moveSelectedNode(const TreeStep& step)
{
    QModelIndex node = m_lstMenu->nodeByKey(step.key);
    if (!node.isValid()) {
        return;
    }
    const bool wasCurrent = m_lstMenu->currentIndex() == node;
    FlagScope selecting(m_selectingNode);
    m_shownByMove.clear();
    {
        const PaintingSuspended suspended(m_lstMenu);
        if (step.kind == TreeStep::Kind::MoveNodeUnder) {
            m_lstMenu->moveNode(node, m_lstMenu->nodeByKey(step.parentKey), 0);
            node = m_lstMenu->nodeByKey(step.key);
        } else if (step.kind == TreeStep::Kind::MoveNodeToLastChild) {
            const QModelIndex parentNode = m_lstMenu->nodeByKey(step.parentKey);
            m_lstMenu->moveNode(node, parentNode, m_lstMenu->model()->rowCount(parentNode));
            node = m_lstMenu->nodeByKey(step.key);
        } else if (step.kind == TreeStep::Kind::MoveNodeAfter) {
            const QModelIndex sibling = m_lstMenu->nodeByKey(step.siblingKey);
            if (sibling.isValid() && sibling.parent().isValid()) {
                // The row is counted without the node itself, which may come before its new place.
                const bool earlierSibling = node.parent() == sibling.parent() && node.row() < sibling.row();
                m_lstMenu->moveNode(node, sibling.parent(), sibling.row() + (earlierSibling ? 0 : 1));
            }
            node = m_lstMenu->nodeByKey(step.key);
        } else {
            node = m_lstMenu->moveAmongSiblings(node, step.kind == TreeStep::Kind::MoveNodeUp ? -1 : 1);
        }
    }
    if (wasCurrent) {
        selectNode(node);
        m_lstMenu->scrollTo(node);
    }
}

void EditorWindow::selectNode(const QModelIndex& node)
{
    m_lstMenu->selectionModel()->setCurrentIndex(node, QItemSelectionModel::ClearAndSelect);
}

void EditorWindow::applyStep(const TreeStep& step)
{
    switch (step.kind) {
    case TreeStep::Kind::AddNode:
        m_lstMenu->addNode(step.parentKey, step.key, step.text);
        break;
    case TreeStep::Kind::RemoveNode: {
        FlagScope selecting(m_selectingNode);
        m_shownByMove.clear();
        m_lstMenu->removeNode(m_lstMenu->nodeByKey(step.key));
        break;
    }
    case TreeStep::Kind::SetNodeText:
        m_lstMenu->setNodeText(m_lstMenu->nodeByKey(step.key), step.text);
        break;
    case TreeStep::Kind::MoveNodeUp:
    case TreeStep::Kind::MoveNodeDown:
    case TreeStep::Kind::MoveNodeUnder:
    case TreeStep::Kind::MoveNodeToLastChild:
    case TreeStep::Kind::MoveNodeAfter:
        moveSelectedNode(step);
        break;
    case TreeStep::Kind::SetNodeColour:
        m_lstMenu->setNodeColour(m_lstMenu->nodeByKey(step.key), step.colour);
        break;
    case TreeStep::Kind::AddNodeWhenOnlyRoot:
        if (m_lstMenu->nodeCount() == 1) {
            m_lstMenu->addNode(step.parentKey, step.key, step.text);
        }
        break;
    case TreeStep::Kind::Recolour:
        ColorizeMenu();
        break;
    case TreeStep::Kind::Regenerate:
        m_host.regenerateTree(m_documentIndex);
        break;
    case TreeStep::Kind::ShowItemCount:
        // The item-count panel belongs to the active window (a drop may change another one).
        if (m_host.activeDocumentIndex() == m_documentIndex) {
            m_host.showItemCount(int(document().items.size()));
        }
        break;
    case TreeStep::Kind::ShowPosition: {
        const MenuDocument& menu = document();
        const MenuItem& item = menu.items.at(itemIndexOf(menu, step.key, "ShowPosition"));
        showStatusPanel(6, StatusPanels::positionOf(item));
        break;
    }
    case TreeStep::Kind::ShowBusy:
    case TreeStep::Kind::HideBusy:
        break; // carried out by applyUpdate, which knows when the work ends
    case TreeStep::Kind::SelectNode:
        if (const QModelIndex node = m_lstMenu->nodeByKey(step.key); node.isValid()) {
            FlagScope selecting(m_selectingNode);
            selectNode(node);
        }
        break;
    case TreeStep::Kind::ClickNode:
        // A node that is not in the tree (a hidden target) cannot be clicked: nothing happens.
        if (const QModelIndex node = m_lstMenu->nodeByKey(step.key); node.isValid()) {
            lstMenu_NodeClick(node);
        }
        break;
    case TreeStep::Kind::ClickFirstItemNode:
        if (const QModelIndex node = m_lstMenu->node(2); node.isValid()) {
            lstMenu_NodeClick(node);
        } else {
            showNoItem();
        }
        break;
    case TreeStep::Kind::ShowItem:
        SelectItem();
        break;
    case TreeStep::Kind::StartLabelEdit:
        m_lstMenu->setFocus();
        m_lstMenu->startLabelEdit(m_lstMenu->nodeByKey(step.key));
        break;
    case TreeStep::Kind::ToggleLinkTargetChoice:
        m_cmdChangeCopy->toggle();
        break;
    case TreeStep::Kind::EndLinkTargetChoice: {
        // The operation that ends the choice has already applied the check box.
        const QSignalBlocker blocker(m_cmdChangeCopy);
        m_cmdChangeCopy->setChecked(false);
        windowState().linkTargetChoice = false;
        showChoosingColour(false);
        updateLinkControls();
        m_host.updateMenus();
        break;
    }
    case TreeStep::Kind::FocusTree:
        m_lstMenu->setFocus();
        break;
    case TreeStep::Kind::ShowMessage:
        m_host.showPlainMessage(step.text);
        break;
    case TreeStep::Kind::ShowRefusal:
        m_host.showRefusal(step.text);
        break;
    }
}

void EditorWindow::onCurrentNodeChanged(const QModelIndex& current)
{
    // Moving through the tree with the keyboard shows the item like a click does; the window's own
    // changes of the current node (rebuilds, selecting after a click) do not.
    if (m_selectingNode || !current.isValid() || isChoosingLinkTarget()) {
        return;
    }
    clickFromUser(current);
    m_shownByMove = m_lstMenu->keyOf(current);
}

void EditorWindow::onNodeClicked(const QModelIndex& node)
{
    const QString key = m_lstMenu->keyOf(node);
    if (!key.isEmpty() && key == m_shownByMove) {
        // The press of this click already moved to the node and showed it.
        m_shownByMove.clear();
        return;
    }
    clickFromUser(node);
}

void EditorWindow::clickFromUser(const QModelIndex& node)
{
    try {
        lstMenu_NodeClick(node);
    } catch (const RunTimeError& error) {
        m_host.showRunTimeError(error);
    }
    m_host.selectionChanged(m_documentIndex);
}

void EditorWindow::onLabelEditStarted(const QString& key)
{
    SelectedNode node;
    node.key = key;
    m_host.session().runOn(m_documentIndex, node, EditOperations::beginLabelEdit);
}

void EditorWindow::onLabelEditCommitted(const QString& key, const QString& text)
{
    // The edit ends on its own node, even when a click elsewhere is what ended it.
    SelectedNode node;
    node.key = key;
    EditArguments arguments;
    arguments.text = text;
    m_host.session().runOn(m_documentIndex, node, EditOperations::storeLabelEdit, arguments);
}

void EditorWindow::onRootCollapsed()
{
    // The root stays open; its first item is selected and shown instead.
    if (const QModelIndex first = m_lstMenu->node(2); first.isValid()) {
        clickFromUser(first);
    }
}

QString EditorWindow::linkTargetToolTip() const
{
    const SelectedNode selected = selectedNode();
    if (!selected.isItem()) {
        return QString();
    }
    const MenuDocument& menu = document();
    return ToolTipTexts::forLinkTarget(menu, findItemByKey(menu, selected.key));
}

QString EditorWindow::commandToolTip(int row) const
{
    const QListWidgetItem* line = m_lstCommand->item(row);
    if (line == nullptr) {
        return QString();
    }
    // The list scrolls rather than cutting its lines short, so a line is too long when part of it
    // lies outside the visible width; the text starts a small margin in from the row's edge.
    const QRect rowRect = m_lstCommand->visualItemRect(line);
    const int margin = m_lstCommand->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_lstCommand) + 1;
    const int textRight
        = rowRect.left() + margin + m_lstCommand->fontMetrics().horizontalAdvance(line->text()) + margin;
    if (rowRect.left() >= 0 && textRight <= m_lstCommand->viewport()->width()) {
        return QString();
    }
    return ToolTipTexts::forCommandLine(line->text());
}

bool EditorWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ToolTip && (watched == m_txtItemIndexCopy || watched == m_lstCommand->viewport())) {
        const auto* help = static_cast<QHelpEvent*>(event);
        QString text;
        QRect area;
        if (watched == m_txtItemIndexCopy) {
            text = linkTargetToolTip();
        } else if (const QListWidgetItem* line = m_lstCommand->itemAt(help->pos())) {
            text = commandToolTip(m_lstCommand->row(line));
            area = m_lstCommand->visualItemRect(line);
        }
        if (text.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), plainToolTip(text), static_cast<QWidget*>(watched), area);
        }
        return true;
    }
    if (watched == m_txtItemIndexCopy && event->type() == QEvent::MouseButtonDblClick) {
        // Following the link: the target becomes the selected item.
        m_host.session().run(m_documentIndex, EditOperations::followLink);
        return true;
    }
    if (watched == m_lstMenu->viewport() && isChoosingLinkTarget()) {
        // While a target is chosen, a click picks the node under the pointer and the selection
        // stays on the item whose link is being set.
        switch (event->type()) {
        case QEvent::MouseButtonPress: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton) {
                if (const QModelIndex node = m_lstMenu->indexAt(mouse->position().toPoint()); node.isValid()) {
                    clickFromUser(node);
                }
            }
            return true;
        }
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            return true;
        default:
            break;
        }
    }
    if (watched == m_lstCommand->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton) {
            m_host.popupCommandMenu(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

int EditorWindow::selectedCommandIndex() const
{
    return m_lstCommand->count() > 0 ? m_lstCommand->currentRow() : -1;
}

bool EditorWindow::closeWindow()
{
    auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget());
    return frame ? frame->close() : close();
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (!m_host.confirmCloseEditor(m_documentIndex)) {
        event->ignore();
        return;
    }
    m_host.editorClosed(m_documentIndex);
    event->accept();
}
