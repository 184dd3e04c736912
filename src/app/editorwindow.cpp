#include "editorwindow.h"

#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/applicationstate.h"
#include "core/editingsession.h"
#include "editing/itemcreation.h"
#include "editing/itempanel.h"
#include "editing/linkediting.h"
#include "editing/treeupdate.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
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

} // namespace

QColor EditorWindow::choosingColour()
{
    return QColor(168, 227, 176);
}

EditorWindow::EditorWindow(MainWindow& mainWindow, qint16 documentIndex, QWidget* parent)
    : QWidget(parent)
    , m_main(mainWindow)
    , m_documentIndex(documentIndex)
{
    setObjectName(QStringLiteral("frmEditor"));
    setWindowTitle(defaultCaption());
    buildLayout();

    connect(m_lstMenu, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* current, QTreeWidgetItem*) { onCurrentNodeChanged(current); });
    connect(m_lstMenu, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* node, int) { onNodeClicked(node); });
    connect(m_lstMenu, &ItemTree::labelEditStarted, this, &EditorWindow::onLabelEditStarted);
    connect(m_lstMenu, &ItemTree::labelEditCommitted, this, &EditorWindow::onLabelEditCommitted);
    connect(m_lstMenu, &ItemTree::rootCollapsed, this, &EditorWindow::onRootCollapsed);
    // Only the user's clicks count: the box is set from the document whenever an item is shown.
    connect(m_chkCopyCommand, &QCheckBox::clicked, this, &EditorWindow::chkCopyCommand_Click);
    connect(m_cmdChangeCopy, &QPushButton::toggled, this, &EditorWindow::cmdChangeCopy_Click);
    m_txtItemIndexCopy->installEventFilter(this);
    m_lstMenu->viewport()->installEventFilter(this);
    m_main.attachEditor(*this);
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
    auto* linkLayout = new QHBoxLayout(linkBox);
    linkLayout->addWidget(m_chkCopyCommand);
    linkLayout->addWidget(m_txtItemIndexCopy);
    linkLayout->addWidget(m_cmdChangeCopy);
    linkLayout->addStretch(1);

    // Moving the selected item among its siblings comes later; the buttons are there but off.
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

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("splEditor"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(m_lstMenu);
    splitter->addWidget(side);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({ 260, 380 });

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

const MenuDocument& EditorWindow::document() const
{
    return m_main.state().document(m_documentIndex);
}

WindowEditingState& EditorWindow::windowState() const
{
    return m_main.state().window(m_documentIndex);
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
    FlagScope selecting(m_selectingNode);
    m_shownByMove = nullptr;
    m_lstMenu->generate(document());
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
    m_lstMenu->colorize(document());
}

void EditorWindow::lstMenu_NodeClick(QTreeWidgetItem* node)
{
    m_shownByMove = nullptr;
    const int nodeIndex = m_lstMenu->indexOfNode(node);
    if (nodeIndex <= 1) {
        return; // the root node, or no node of this tree
    }
    ApplicationState& state = m_main.state();
    if (isChoosingLinkTarget()) {
        EditArguments arguments;
        arguments.sourceKey = nodeKey(state.lastNodeIndex());
        arguments.targetKey = m_lstMenu->keyOf(node);
        m_main.session().run(m_documentIndex, EditOperations::chooseLinkTarget, arguments);
        return;
    }
    state.setLastNodeIndex(Int16::checked(nodeIndex, "lstMenu_NodeClick"));

    const MenuDocument& menu = document();
    const int itemIndex = itemIndexOf(menu, m_lstMenu->keyOf(node), "lstMenu_NodeClick");
    const MenuItem& item = menu.items.at(itemIndex);
    m_main.setStatusPanelText(6,
                              QStringLiteral("(") + QString::number(item.siblingOrder) + QStringLiteral(" ; ")
                                  + QString::number(item.childCount) + QStringLiteral(")"));
    m_main.setStatusPanelText(2, QString::number(itemIndex));
    windowState().nodeClicked = true;
    {
        FlagScope selecting(m_selectingNode);
        m_lstMenu->setCurrentItem(node);
        node->setSelected(true);
    }
    SelectItem();
}

void EditorWindow::SelectItem()
{
    QTreeWidgetItem* node = m_lstMenu->currentItem();
    m_lblPath->setText(node ? m_lstMenu->fullPath(node) : QString());
    m_lstCommand->clear();
    if (node && m_lstMenu->keyOf(node) != rootKey()) {
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
    m_main.selectionChanged(m_documentIndex);
}

void EditorWindow::updateLinkControls()
{
    const bool itemShown = selectedNode().isItem();
    const bool choosing = isChoosingLinkTarget();
    const bool linked = m_chkCopyCommand->isChecked();
    m_chkCopyCommand->setEnabled(itemShown && !choosing);
    m_cmdChangeCopy->setEnabled(itemShown || choosing);
    m_lstCommand->setEnabled(!linked && !choosing);
    m_txtItemIndexCopy->setEnabled(itemShown && linked);
}

void EditorWindow::chkCopyCommand_Click()
{
    EditArguments arguments;
    arguments.checked = m_chkCopyCommand->isChecked();
    if (!m_main.session().run(m_documentIndex, EditOperations::switchLink, arguments)) {
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
    m_main.updateMenus();
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

void EditorWindow::showNoItem()
{
    m_lblPath->clear();
    m_lstCommand->clear();
    m_txtItemIndexCopy->clear();
    m_chkCopyCommand->setChecked(false);
    updateLinkControls();
    m_main.selectionChanged(m_documentIndex);
}

SelectedNode EditorWindow::selectedNode() const
{
    SelectedNode selected;
    QTreeWidgetItem* node = m_lstMenu->currentItem();
    selected.key = m_lstMenu->keyOf(node);
    if (!selected.key.isEmpty() && node->parent() != nullptr) {
        selected.parentKey = m_lstMenu->keyOf(node->parent());
    }
    return selected;
}

QString EditorWindow::nodeKey(int nodeIndex) const
{
    return m_lstMenu->keyOf(m_lstMenu->node(nodeIndex));
}

void EditorWindow::applyUpdate(const TreeUpdate& update)
{
    for (const TreeStep& step : update.steps()) {
        switch (step.kind) {
        case TreeStep::Kind::AddNode:
            m_lstMenu->addNode(step.parentKey, step.key, step.text);
            break;
        case TreeStep::Kind::RemoveNode: {
            FlagScope selecting(m_selectingNode);
            m_shownByMove = nullptr;
            m_lstMenu->removeNode(m_lstMenu->nodeByKey(step.key));
            break;
        }
        case TreeStep::Kind::SetNodeText:
            if (QTreeWidgetItem* node = m_lstMenu->nodeByKey(step.key)) {
                node->setText(0, step.text);
            }
            break;
        case TreeStep::Kind::SetNodeColour:
            ItemTree::setNodeColour(m_lstMenu->nodeByKey(step.key), step.colour);
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
            m_main.regenerateTree(m_documentIndex);
            break;
        case TreeStep::Kind::ShowItemCount:
            m_main.showItemCount(int(document().items.size()));
            break;
        case TreeStep::Kind::SelectNode:
            if (QTreeWidgetItem* node = m_lstMenu->nodeByKey(step.key)) {
                FlagScope selecting(m_selectingNode);
                m_lstMenu->setCurrentItem(node);
                node->setSelected(true);
            }
            break;
        case TreeStep::Kind::ClickNode:
            // A node that is not in the tree (a hidden target) cannot be clicked: nothing happens.
            if (QTreeWidgetItem* node = m_lstMenu->nodeByKey(step.key)) {
                lstMenu_NodeClick(node);
            }
            break;
        case TreeStep::Kind::ClickFirstItemNode:
            if (QTreeWidgetItem* node = m_lstMenu->node(2)) {
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
            m_main.updateMenus();
            break;
        }
        case TreeStep::Kind::FocusTree:
            m_lstMenu->setFocus();
            break;
        case TreeStep::Kind::ShowMessage:
            m_main.showPlainMessage(step.text);
            break;
        case TreeStep::Kind::ShowRefusal:
            m_main.showRefusal(step.text);
            break;
        }
    }
}

void EditorWindow::onCurrentNodeChanged(QTreeWidgetItem* current)
{
    // Moving through the tree with the keyboard shows the item like a click does; the window's own
    // changes of the current node (rebuilds, selecting after a click) do not.
    if (m_selectingNode || !current || isChoosingLinkTarget()) {
        return;
    }
    clickFromUser(current);
    m_shownByMove = current;
}

void EditorWindow::onNodeClicked(QTreeWidgetItem* node)
{
    if (node == m_shownByMove) {
        // The press of this click already moved to the node and showed it.
        m_shownByMove = nullptr;
        return;
    }
    clickFromUser(node);
}

void EditorWindow::clickFromUser(QTreeWidgetItem* node)
{
    try {
        lstMenu_NodeClick(node);
    } catch (const RunTimeError& error) {
        m_main.showRunTimeError(error);
    }
    m_main.selectionChanged(m_documentIndex);
}

void EditorWindow::onLabelEditStarted(const QString& key)
{
    SelectedNode node;
    node.key = key;
    m_main.session().runOn(m_documentIndex, node, EditOperations::beginLabelEdit);
}

void EditorWindow::onLabelEditCommitted(const QString& key, const QString& text)
{
    // The edit ends on its own node, even when a click elsewhere is what ended it.
    SelectedNode node;
    node.key = key;
    EditArguments arguments;
    arguments.text = text;
    m_main.session().runOn(m_documentIndex, node, EditOperations::storeLabelEdit, arguments);
}

void EditorWindow::onRootCollapsed()
{
    // The root stays open; its first item is selected and shown instead.
    if (QTreeWidgetItem* first = m_lstMenu->node(2)) {
        clickFromUser(first);
    }
}

bool EditorWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_txtItemIndexCopy && event->type() == QEvent::MouseButtonDblClick) {
        // Following the link: the target becomes the selected item.
        m_main.session().run(m_documentIndex, EditOperations::followLink);
        return true;
    }
    if (watched == m_lstMenu->viewport() && isChoosingLinkTarget()) {
        // While a target is chosen, a click picks the node under the pointer and the selection
        // stays on the item whose link is being set.
        switch (event->type()) {
        case QEvent::MouseButtonPress: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton) {
                if (QTreeWidgetItem* node = m_lstMenu->itemAt(mouse->position().toPoint())) {
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
    return QWidget::eventFilter(watched, event);
}

bool EditorWindow::closeWindow()
{
    auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget());
    return frame ? frame->close() : close();
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (!m_main.confirmCloseEditor(m_documentIndex)) {
        event->ignore();
        return;
    }
    m_main.editorClosed(m_documentIndex);
    event->accept();
}
