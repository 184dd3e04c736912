#include "editorwindow.h"

#include "app/busynoticeframe.h"
#include "app/editorwindowhost.h"
#include "app/filechangebar.h"
#include "app/findbar.h"
#include "app/flagscope.h"
#include "app/itemsidepanel.h"
#include "app/itemtree.h"
#include "app/linktargetclicks.h"
#include "app/nodedraghandler.h"
#include "app/treeupdateplayer.h"
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

#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

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

} // namespace

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
    connect(m_itemPanel, &ItemSidePanel::linkBoxClicked, this, &EditorWindow::chkCopyCommand_Click);
    connect(m_itemPanel, &ItemSidePanel::chooseTargetToggled, this, &EditorWindow::cmdChangeCopy_Click);
    connect(m_itemPanel, &ItemSidePanel::moveUpClicked, this, &EditorWindow::cmdUp_Click);
    connect(m_itemPanel, &ItemSidePanel::moveDownClicked, this, &EditorWindow::cmdDown_Click);
    connect(m_itemPanel, &ItemSidePanel::commandEditRequested, this, [this] { m_host.editSelectedCommand(); });
    connect(m_itemPanel, &ItemSidePanel::commandAddRequested, this, [this] { m_host.addCommand(); });
    connect(m_itemPanel, &ItemSidePanel::commandRemoveRequested, this, [this] { m_host.removeSelectedCommand(); });
    connect(m_lstMenu, &ItemTree::contextMenuRequested, this, &EditorWindow::showTreeMenu);
    connect(m_itemPanel, &ItemSidePanel::commandMenuRequested, this,
            [this](const QPoint& globalPos) { m_host.popupCommandMenu(globalPos); });
    // Following the link: the target becomes the selected item.
    connect(m_itemPanel, &ItemSidePanel::followLinkRequested, this,
            [this] { m_host.session().run(m_documentIndex, EditOperations::followLink); });
    m_itemPanel->setLinkTargetToolTipSource([this] { return linkTargetToolTip(); });
    m_dragHandler = new NodeDragHandler(
        m_host, m_lstMenu, m_documentIndex, [this] { return isChoosingLinkTarget(); },
        [this](const QModelIndex& node) { clickFromUser(node); }, this);
    connect(m_lstMenu, &ItemTree::dragStartRequested, m_dragHandler, &NodeDragHandler::startDrag);
    connect(m_lstMenu, &ItemTree::nodeDraggedOver, m_dragHandler, &NodeDragHandler::draggedOver);
    connect(m_lstMenu, &ItemTree::nodeDropped, this, &EditorWindow::lstMenu_OLEDragDrop);
    m_linkTargetClicks = new LinkTargetClicks(
        m_lstMenu, [this] { return isChoosingLinkTarget(); }, [this](const QModelIndex& node) { clickFromUser(node); });
    m_lstMenu->setToolTipSource([this](const QString& key) {
        const MenuDocument& menu = document();
        return ToolTipTexts::forNode(menu, findItemByKey(menu, key));
    });
    m_host.attachTree(m_lstMenu);
}

EditorWindow::~EditorWindow()
{
    // The tree goes after this window; what it signals or hears on the way must not reach the window.
    disconnect(m_lstMenu, nullptr, this, nullptr);
    delete m_linkTargetClicks;
}

void EditorWindow::buildLayout()
{
    m_lstMenu = new ItemTree(this);
    m_lstMenu->setObjectName(QStringLiteral("lstMenu"));
    m_lstMenu->setDocumentSource([this]() -> const MenuDocument& { return document(); });
    m_lstMenu->setHeaderHidden(true);

    m_itemPanel = new ItemSidePanel(this);

    // The find bar sits above the tree, hidden until Find asks for it.
    auto* treeSide = new QWidget(this);
    treeSide->setObjectName(QStringLiteral("pnlTree"));
    m_findBar = new FindBar([this]() -> const MenuDocument& { return document(); }, treeSide);
    connect(m_findBar, &FindBar::matchChosen, this, &EditorWindow::showFoundItem);
    connect(m_findBar, &FindBar::closed, this, [this] { m_lstMenu->setFocus(Qt::OtherFocusReason); });
    auto* treeLayout = new QVBoxLayout(treeSide);
    treeLayout->setContentsMargins(0, 0, 0, 0);
    treeLayout->setSpacing(0);
    treeLayout->addWidget(m_fileChangeBar = new FileChangeBar(treeSide));
    treeLayout->addWidget(m_findBar);
    treeLayout->addWidget(m_lstMenu, 1);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("splEditor"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(treeSide);
    splitter->addWidget(m_itemPanel);
    // The two sides keep about 45 : 55 of the width as the window is resized or tiled, so that a
    // narrow window still shows the captions of the tree.
    splitter->setStretchFactor(0, 9);
    splitter->setStretchFactor(1, 11);
    splitter->setSizes({ 288, 352 });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(splitter);

    m_frm01 = new BusyNoticeFrame(this);

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
    return m_itemPanel->isChoosing();
}

void EditorWindow::showBusyNotice(const QString& text)
{
    m_frm01->showNotice(text);
}

void EditorWindow::hideBusyNotice()
{
    m_frm01->hide();
}

void EditorWindow::generateTree()
{
    BusyNotice notice(*this, QStringLiteral("Generating tree ..."));
    {
        FlagScope selecting(m_selectingNode);
        m_shownByMove.clear();
        m_lstMenu->regenerate();
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
    m_findBar->followMenu();
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
    const int itemIndex = requireItemByKey(menu, m_lstMenu->keyOf(node), "lstMenu_NodeClick");
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
    m_itemPanel->showPath(m_lstMenu->fullPath(node));
    if (node.isValid() && m_lstMenu->keyOf(node) != SelectedNode::rootKey()) {
        const MenuDocument& menu = document();
        m_itemPanel->showItem(itemPanel(menu, requireItemByKey(menu, m_lstMenu->keyOf(node), "SelectItem")));
        if (!windowState().nodeClicked) {
            ColorizeMenu();
        }
    }
    updateLinkControls();
    m_host.selectionChanged(m_documentIndex);
}

void EditorWindow::updateLinkControls()
{
    m_itemPanel->updateControls(selectedNode().isItem(), isChoosingLinkTarget());
}

void EditorWindow::chkCopyCommand_Click()
{
    EditArguments arguments;
    arguments.checked = m_itemPanel->isLinkChecked();
    if (!m_host.session().run(m_documentIndex, EditOperations::switchLink, arguments)) {
        // Whatever did not happen, the box shows the item as it stands.
        SelectItem();
    }
}

void EditorWindow::cmdChangeCopy_Click()
{
    const bool choosing = isChoosingLinkTarget();
    windowState().linkTargetChoice = choosing;
    m_itemPanel->showChoosingColour(choosing);
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

void EditorWindow::showTreeMenu(const QModelIndex& node, const QPoint& globalPos)
{
    if (isChoosingLinkTarget() || !node.isValid()) {
        return; // a click chooses the link's target meanwhile
    }
    // The node is selected and shown first, as a click on it does; the menu acts on it. A click on
    // the root shows nothing, but the root is selected, as the view selects it for a click.
    if (m_lstMenu->currentIndex() != node) {
        if (m_lstMenu->indexOfNode(node) == 1) {
            FlagScope selecting(m_selectingNode);
            selectNode(node);
        } else {
            clickFromUser(node);
        }
    }
    m_host.selectionChanged(m_documentIndex);
    m_host.popupTreeMenu(globalPos);
}

void EditorWindow::lstMenu_OLEDragDrop(const QModelIndex& node, const QPoint& globalPos)
{
    m_dragHandler->dropped(node, globalPos);
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
    m_itemPanel->showNothing();
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
    TreeUpdatePlayer(*this).play(update);
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

void EditorWindow::selectNode(const QModelIndex& node)
{
    m_lstMenu->selectionModel()->setCurrentIndex(node, QItemSelectionModel::ClearAndSelect);
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
    return m_itemPanel->commandToolTip(row);
}

int EditorWindow::selectedCommandIndex() const
{
    return m_itemPanel->selectedCommandIndex();
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
