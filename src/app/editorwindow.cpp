#include "editorwindow.h"

#include "app/applicationstate.h"
#include "app/mainwindow.h"
#include "app/userprompts.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/itemtree.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

QString rootKey()
{
    return QStringLiteral("Root");
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

/// Whether `copyKey` names a link target at all: "-1" (never chosen) and the empty key of a newly
/// created item both mean that the item has no target.
bool hasLinkTarget(const QString& copyKey)
{
    return !copyKey.isEmpty() && copyKey != QLatin1String("-1");
}

} // namespace

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
}

EditorWindow::~EditorWindow() = default;

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

    // The copy-command link: the check box switches it, the field names the target item and the
    // button starts choosing a target in the tree. Setting a link by hand is not available yet, so
    // the check box and the button only show the link.
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

MenuDocument& EditorWindow::document()
{
    return m_main.state().document(m_documentIndex);
}

const MenuDocument& EditorWindow::document() const
{
    return m_main.state().document(m_documentIndex);
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

void EditorWindow::generateTree(int modeChange)
{
    BusyNotice notice(*this, QStringLiteral("Generating tree ..."));
    FlagScope selecting(m_selectingNode);
    m_shownByMove = nullptr;
    m_lstMenu->generate(document(), modeChange);
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
    state.setLastNodeIndex(Int16::checked(nodeIndex, "lstMenu_NodeClick"));

    const MenuDocument& menu = document();
    const int itemIndex = itemIndexOf(menu, m_lstMenu->keyOf(node), "lstMenu_NodeClick");
    const MenuItem& item = menu.items.at(itemIndex);
    m_main.setStatusPanelText(6,
                              QStringLiteral("(") + QString::number(item.siblingOrder) + QStringLiteral(" ; ")
                                  + QString::number(item.childCount) + QStringLiteral(")"));
    m_main.setStatusPanelText(2, QString::number(itemIndex));
    m_nodeClicked = true;
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
    if (!node || m_lstMenu->keyOf(node) == rootKey()) {
        return;
    }
    const MenuDocument& menu = document();
    const MenuItem& item = menu.items.at(itemIndexOf(menu, m_lstMenu->keyOf(node), "SelectItem"));
    if (!item.copiesCommands) {
        m_txtItemIndexCopy->setText(hasLinkTarget(item.copyKey) ? QString::number(findItemByKey(menu, item.copyKey))
                                                                : QString());
        m_chkCopyCommand->setChecked(false);
    } else {
        m_txtItemIndexCopy->setText(QString::number(findItemByKey(menu, item.copyKey)));
        m_chkCopyCommand->setChecked(true);
    }
    chkCopyCommand_Click();
}

void EditorWindow::chkCopyCommand_Click()
{
    if (m_chkCopyCommand->isChecked() && m_txtItemIndexCopy->text().isEmpty()) {
        m_chkCopyCommand->setChecked(false);
        MessageRequest request;
        request.text = QStringLiteral("Select an item to copy command before !");
        request.icon = MessageRequest::Icon::Exclamation;
        m_main.prompts().showMessage(request);
        return;
    }
    QTreeWidgetItem* node = m_lstMenu->currentItem();
    if (!node) {
        return;
    }
    MenuDocument& menu = document();
    const int itemIndex = itemIndexOf(menu, m_lstMenu->keyOf(node), "chkCopyCommand_Click");
    m_lstCommand->clear();
    if (!m_chkCopyCommand->isChecked()) {
        MenuItem& item = menu.items[itemIndex];
        item.copiesCommands = false;
        if (item.hasOwnCommands()) {
            node->setForeground(0, QColor(128, 0, 0));
        }
        m_lstCommand->setEnabled(true);
        m_txtItemIndexCopy->setEnabled(false);
        fillCommands(menu, itemIndex);
    } else {
        m_lstCommand->setEnabled(false);
        m_txtItemIndexCopy->setEnabled(true);
        menu.items[itemIndex].copiesCommands = true;
        // A link that names no item (which deleting items never leaves behind) shows no commands.
        const int target = findItemByKey(menu, menu.items.at(itemIndex).copyKey);
        if (target >= 0) {
            fillCommands(menu, target);
        }
    }
    if (!m_nodeClicked) {
        ColorizeMenu();
    }
}

void EditorWindow::fillCommands(const MenuDocument& menu, int itemIndex)
{
    const QList<Command>& commands = menu.items.at(itemIndex).commands;
    for (qsizetype slot = 1; slot < commands.size(); ++slot) {
        m_lstCommand->addItem(commands.at(slot).extension + QLatin1Char('=') + commands.at(slot).command);
    }
}

void EditorWindow::showNoItem()
{
    m_lblPath->clear();
    m_lstCommand->clear();
    m_txtItemIndexCopy->clear();
    m_chkCopyCommand->setChecked(false);
}

void EditorWindow::onCurrentNodeChanged(QTreeWidgetItem* current)
{
    // Moving through the tree with the keyboard shows the item like a click does; the window's own
    // changes of the current node (rebuilds, selecting after a click) do not.
    if (m_selectingNode || !current || m_cmdChangeCopy->isChecked()) {
        return;
    }
    try {
        lstMenu_NodeClick(current);
    } catch (const RunTimeError& error) {
        m_main.showRunTimeError(error);
    }
    m_shownByMove = current;
}

void EditorWindow::onNodeClicked(QTreeWidgetItem* node)
{
    if (node == m_shownByMove) {
        // The press of this click already moved to the node and showed it.
        m_shownByMove = nullptr;
        return;
    }
    try {
        lstMenu_NodeClick(node);
    } catch (const RunTimeError& error) {
        m_main.showRunTimeError(error);
    }
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
