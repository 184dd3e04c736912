#include "mainwindow.h"

#include "app/commandmenu.h"
#include "app/diskchangewatch.h"
#include "app/draganddrop.h"
#include "app/edithistory.h"
#include "app/editmenu.h"
#include "app/editorarea.h"
#include "app/editorwindow.h"
#include "app/findbar.h"
#include "app/helpmenu.h"
#include "app/mainstatusbar.h"
#include "app/menufiles.h"
#include "app/messageboxes.h"
#include "app/optionsdialog.h"
#include "app/problemspanel.h"
#include "app/recentfilesmenu.h"
#include "app/recoverycopies.h"
#include "app/replacedialog.h"
#include "core/editmenustate.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"
#include "core/statuspanels.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/hidemode.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>

namespace {

/// The folder for the files the editor writes beside itself (Recent.ini, the autosave files): the
/// program's folder, or the per-user folder when the program is installed where the user cannot
/// write.
QString writableFolder(const QString& programFolder)
{
    return ProgramFolder::isWritableFolder(programFolder) ? programFolder : ProgramFolder::writablePath();
}

QAction* addEntry(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* entry = menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

void addSeparator(QMenu* menu, const QString& name)
{
    menu->addSeparator()->setObjectName(name);
}

} // namespace

MainWindow::MainWindow(UserPrompts& prompts, OptionsStore& optionsStore, const QString& programFolder,
                       const QString& recoveryFolder, QWidget* parent)
    : QMainWindow(parent)
    , m_optionsStore(optionsStore)
    , m_programFolder(programFolder)
    , m_messages(std::make_unique<MessageBoxes>(prompts))
    , m_recovery(std::make_unique<RecoveryCopies>(m_state, *m_messages, recoveryFolder,
                                                  [this](qint16 index) { return m_files->captionOf(index); }))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("KELV Menu Editor"));
    setAcceptDrops(true);

    const QString folder = writableFolder(programFolder);
    // Every change reaches the menus, and the recovery copy of every menu it changed.
    m_history = new EditHistory(
        m_state, *m_messages, *this, folder,
        [this] {
            updateMenus();
            m_recovery->documentsChanged();
        },
        this);
    m_dragAndDrop = new DragAndDrop(m_state, this);
    m_commandMenu = new CommandMenu(*this, this);
    buildMenus();
    m_statusBar = std::make_unique<MainStatusBar>(statusBar());
    m_files = std::make_unique<MenuFiles>(m_state, *m_messages, *m_editors, *m_recent, *this);
    connect(m_recent, &RecentFilesMenu::openRequested, this,
            [this](const QString& path) { openMenu(path, QFileInfo(path).fileName()); });
    connect(m_editors, &EditorArea::editorActivated, this, &MainWindow::editorActivated);
    m_diskWatch = new DiskChangeWatch(
        m_state, m_history->session(), *m_messages,
        [this](qint16 index) { return editor(index) != nullptr ? editor(index)->fileChangeBar() : nullptr; }, this);

    m_recent->load();
    m_state.setOptions(m_optionsStore.loadOptions());
    m_editMenu->copyCommandDupEntry()->setChecked(m_state.options().copyCommandDup);
    // Until a file is chosen, the dialogs start where the newest menu of the last session lies.
    if (!m_recent->newestFile().isEmpty()) {
        m_files->noteFolderUsed(m_recent->newestFile());
    }
    updateMenus();
    fitIntoScreen();
}

MainWindow::~MainWindow()
{
    // The editor windows go before the parts they reach through this window.
    m_editors->deleteAllEditors();
}

void MainWindow::fitIntoScreen()
{
    // A comfortable size on a usual screen, but never more than the screen has room for: at a large
    // scale factor the screen holds far fewer logical pixels. A tenth is left for the frame the
    // window manager adds and for panels beside the work area.
    const QRect available = screen()->availableGeometry();
    const QSize room = available.size() * 9 / 10;
    resize(QSize(1000, 700).boundedTo(room).expandedTo(minimumSizeHint()));
    move(available.left() + (available.width() - width()) / 2, available.top() + (available.height() - height()) / 2);
}

void MainWindow::buildMenus()
{
    auto namedMenu = [this](const QString& name, const QString& caption) {
        QMenu* menu = menuBar()->addMenu(caption);
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        return menu;
    };
    // File
    m_mnuFile = namedMenu(QStringLiteral("mnuFile"), QStringLiteral("&File"));
    QAction* mnuNew = addEntry(m_mnuFile, QStringLiteral("mnuNew"), QStringLiteral("&New"));
    mnuNew->setShortcut(QKeySequence::New);
    connect(mnuNew, &QAction::triggered, this, &MainWindow::mnuNew_Click);
    QAction* mnuOpen = addEntry(m_mnuFile, QStringLiteral("mnuOpen"), QStringLiteral("&Open"));
    mnuOpen->setShortcut(QKeySequence::Open);
    connect(mnuOpen, &QAction::triggered, this, &MainWindow::mnuOpen_Click);
    addSeparator(m_mnuFile, QStringLiteral("Tire01"));
    m_mnuSave = addEntry(m_mnuFile, QStringLiteral("mnuSave"), QStringLiteral("&Save"));
    m_mnuSave->setShortcut(QKeySequence::Save);
    m_mnuSave->setEnabled(false);
    connect(m_mnuSave, &QAction::triggered, this, &MainWindow::mnuSave_Click);
    m_mnuSaveAs = addEntry(m_mnuFile, QStringLiteral("mnuSaveAs"), QStringLiteral("Save &as ..."));
    m_mnuSaveAs->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    connect(m_mnuSaveAs, &QAction::triggered, this, &MainWindow::mnuSaveAs_Click);
    m_mnuClose = addEntry(m_mnuFile, QStringLiteral("mnuClose"), QStringLiteral("&Close"));
    m_mnuClose->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
    connect(m_mnuClose, &QAction::triggered, this, &MainWindow::mnuClose_Click);
    addSeparator(m_mnuFile, QStringLiteral("Tire11"));
    QAction* mnuOptions = addEntry(m_mnuFile, QStringLiteral("mnuOptions"), QStringLiteral("O&ptions"));
    connect(mnuOptions, &QAction::triggered, this, &MainWindow::showOptions);
    addSeparator(m_mnuFile, QStringLiteral("Tire02"));
    m_recent = new RecentFilesMenu(m_mnuFile, writableFolder(m_programFolder), this);
    QAction* mnuQuit = addEntry(m_mnuFile, QStringLiteral("mnuQuit"), QStringLiteral("&Quit"));
    mnuQuit->setShortcut(QKeySequence::Quit);
    if (mnuQuit->shortcut().isEmpty()) {
        mnuQuit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    }
    connect(mnuQuit, &QAction::triggered, this, &MainWindow::mnuQuit_Click);
    connect(m_mnuFile, &QMenu::aboutToShow, this, &MainWindow::updateSaveEntry);

    // Edit
    m_mnuEdit = namedMenu(QStringLiteral("mnuEdit"), QStringLiteral("&Edit"));
    m_editMenu = new EditMenu(m_mnuEdit, *this, m_history->session());
    m_history->setEntries(m_editMenu->undoEntry(), m_editMenu->redoEntry());

    // View: the Problems panel of the active menu, docked at the bottom and hidden at first.
    m_problemsPanel = new ProblemsPanel(
        [this](qint16 index) { return m_state.editor(index) != nullptr ? &m_state.document(index) : nullptr; }, this);
    addDockWidget(Qt::BottomDockWidgetArea, m_problemsPanel);
    m_problemsPanel->hide();
    connect(m_problemsPanel, &ProblemsPanel::itemRequested, this, [this](qint16 index, const QString& key) {
        if (EditorWindow* shown = editor(index)) {
            shown->showFoundItem(key);
        }
    });
    QMenu* mnuView = namedMenu(QStringLiteral("mnuView"), QStringLiteral("&View"));
    QAction* mnuProblems = m_problemsPanel->toggleViewAction();
    mnuProblems->setObjectName(QStringLiteral("mnuProblems"));
    mnuProblems->setText(QStringLiteral("&Problems"));
    mnuView->addAction(mnuProblems);

    // Window
    m_mnuWindow = namedMenu(QStringLiteral("mnuWindow"), QStringLiteral("&Window"));
    m_editors = new EditorArea(*this, m_state, *this, m_mnuWindow, m_mnuClose->shortcut());

    // Help
    m_mnuH = namedMenu(QStringLiteral("mnuH"), QStringLiteral("&Help"));
    new HelpMenu(m_mnuH, prompts(), m_programFolder, this);
}

UserPrompts& MainWindow::prompts()
{
    return m_messages->prompts();
}

EditingSession& MainWindow::session()
{
    return m_history->session();
}

UndoManager& MainWindow::undoManager()
{
    return m_history->undoManager();
}

// ---- Files and windows -------------------------------------------------------------------------

void MainWindow::openCommandLineMenu(const QString& commandLine)
{
    m_files->openCommandLineMenu(commandLine, m_programFolder);
}

void MainWindow::offerRecovery(RecoveryPrompt& prompt)
{
    m_recovery->offerLeftCopies(
        prompt, [this](const RecoveryCopy& copy) { return m_files->openRecoveredMenu(m_recovery->store(), copy); });
}

void MainWindow::mnuNew_Click()
{
    m_files->mnuNew_Click();
}

void MainWindow::mnuOpen_Click()
{
    m_files->mnuOpen_Click();
}

qint16 MainWindow::openMenu(const QString& path, const QString& fileTitle)
{
    return m_files->openMenu(path, fileTitle);
}

void MainWindow::mnuSave_Click()
{
    m_files->mnuSave_Click();
}

void MainWindow::mnuSaveAs_Click()
{
    m_files->mnuSaveAs_Click();
}

void MainWindow::mnuClose_Click()
{
    if (EditorWindow* active = activeEditor()) {
        active->closeWindow();
    }
}

void MainWindow::mnuQuit_Click()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!m_state.isQuitting() && !m_files->confirmQuit()) {
        event->ignore();
        return;
    }
    m_editors->closeAllEditors();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    if (!event->mimeData()->hasUrls()) {
        return;
    }
    event->acceptProposedAction();
    m_files->openDroppedFiles(event->mimeData()->urls());
}

QString MainWindow::activeDocumentTag() const
{
    const qint16 index = m_state.activeDocumentIndex();
    return index == 0 ? QString() : QString::number(index);
}

EditorWindow* MainWindow::editor(qint16 index) const
{
    return m_editors->editor(index);
}

void MainWindow::editorActivated(qint16 index)
{
    m_state.setActiveDocumentIndex(index);
    updateMenus();
    // The panels belong to the window now active: its selected item and its item count.
    showActiveStatus();
    m_diskWatch->follow(index);
}

void MainWindow::documentShown(qint16 index)
{
    m_recovery->documentShown(index);
}

bool MainWindow::confirmCloseEditor(qint16 index)
{
    return m_files->confirmCloseEditor(index);
}

void MainWindow::editorClosed(qint16 index)
{
    m_recovery->documentClosed(index);
    m_editors->editorClosed(index);
    m_state.clearEditor(index);
    if (m_state.activeDocumentIndex() == index) {
        // The area activates the next editor window, if any, once this one is gone; until then, and
        // for good after the last one, nothing is shown of a window that is no longer there.
        m_state.setActiveDocumentIndex(0);
        showActiveStatus();
    }
    updateMenus();
}

void MainWindow::savedStateChanged()
{
    updateSaveEntry();
    updateUnsavedMarks();
    m_recovery->documentsChanged();
    m_diskWatch->documentsSaved();
}

// ---- Tree display and status bar --------------------------------------------------------------

void MainWindow::regenerateTree(qint16 index)
{
    if (EditorWindow* shown = editor(index)) {
        shown->generateTree();
        showTreeState(index);
    }
}

void MainWindow::showRestoredState(qint16 index, const MenuDocument& before)
{
    if (EditorWindow* shown = editor(index)) {
        shown->showRestoredState(before);
        showTreeState(index);
    }
}

void MainWindow::showTreeState(qint16 index)
{
    if (index == m_state.activeDocumentIndex()) {
        updateHideMarks();
        showItemCount(int(m_state.document(index).items.size()));
    }
}

void MainWindow::setStatusPanelText(int panel, const QString& text)
{
    m_statusBar->setPanelText(panel, text);
}

void MainWindow::showItemCount(int count)
{
    m_statusBar->showItemCount(count);
}

void MainWindow::showActiveStatus()
{
    StatusPanels panels;
    if (const EditorWindow* active = activeEditor()) {
        panels = StatusPanels::of(active->document(), active->selectedNode().key);
    }
    m_statusBar->show(panels);
}

// ---- Menus ------------------------------------------------------------------------------------

void MainWindow::updateSaveEntry()
{
    const qint16 index = m_state.activeDocumentIndex();
    bool enabled = false;
    if (m_state.editor(index)) {
        const MenuDocument& document = m_state.document(index);
        enabled = !document.filePath.isEmpty() && !document.saved;
    }
    m_mnuSave->setEnabled(enabled && !m_state.anyLinkTargetChoice());
}

void MainWindow::updateUnsavedMarks()
{
    for (const qint16 index : m_state.openDocumentIndexes()) {
        // Qt announces a mark set again to the window's frame, which lays its title out anew.
        const bool unsaved = !m_state.document(index).saved;
        if (editor(index)->isWindowModified() != unsaved) {
            editor(index)->setWindowModified(unsaved);
        }
    }
}

void MainWindow::updateHideMarks()
{
    const qint16 index = m_state.activeDocumentIndex();
    const int hideMode = m_state.editor(index) ? m_state.document(index).hideMode : 0;
    m_editMenu->showHideMarks(HideMode::marksFor(hideMode));
}

void MainWindow::updateMenus()
{
    const qint16 index = m_state.activeDocumentIndex();
    const EditorView* view = m_state.editor(index);
    EditMenuState::Input input;
    input.editorActive = view != nullptr;
    input.editorOpen = !m_state.openDocumentIndexes().isEmpty();
    const SelectedNode selected = view != nullptr ? view->selectedNode() : SelectedNode();
    input.itemSelected = selected.isItem();
    input.rootSelected = selected.isRoot();
    input.choosingLinkTarget = m_state.anyLinkTargetChoice();
    input.clipboardFilled = m_state.editing().clipboardItem.has_value();
    const EditMenuState state = EditMenuState::decide(input);

    for (QMenu* menu : { m_mnuFile, m_mnuEdit, m_mnuWindow, m_mnuH }) {
        menu->menuAction()->setEnabled(state.menus);
    }
    // A menu that is off keeps its entries' shortcuts working, so the entries go off with it.
    for (QMenu* menu : { m_mnuFile, m_mnuWindow, m_mnuH }) {
        const QList<QAction*> entries = menu->actions();
        for (QAction* entry : entries) {
            entry->setEnabled(state.menus);
        }
    }
    m_mnuSaveAs->setEnabled(state.windowEntries);
    m_mnuClose->setEnabled(state.windowEntries);
    for (QAction* entry : m_editors->arrangeEntries()) {
        entry->setEnabled(state.arrangeEntries);
    }
    updateSaveEntry();
    updateUnsavedMarks();
    if (state.menus) {
        m_history->updateEntries(view != nullptr ? index : qint16(0));
    }
    m_editMenu->apply(state);
    m_commandMenu->apply(state);
    // The panel checks the menu again only when it changed, so following every update is cheap.
    m_problemsPanel->follow(view != nullptr ? index : qint16(0));
    updateHideMarks();
    m_editors->setHintVisible(!input.editorOpen);
}

void MainWindow::selectionChanged(qint16 index)
{
    if (index == m_state.activeDocumentIndex()) {
        updateMenus();
    }
}

void MainWindow::attachTree(QWidget* tree)
{
    m_editMenu->attachTo(tree);
}

// ---- History ----------------------------------------------------------------------------------

void MainWindow::mnuUndo_Click()
{
    m_history->mnuUndo_Click();
}

void MainWindow::mnuRedo_Click()
{
    m_history->mnuRedo_Click();
}

// ---- Commands, drag and drop, dialogs ---------------------------------------------------------

const MenuDocument* MainWindow::activeDocument() const
{
    return activeEditor() != nullptr ? &activeEditor()->document() : nullptr;
}

SelectedNode MainWindow::activeSelectedNode() const
{
    return activeEditor() != nullptr ? activeEditor()->selectedNode() : SelectedNode();
}

int MainWindow::activeCommandSlot() const
{
    return activeEditor() != nullptr ? activeEditor()->selectedCommandIndex() + 1 : 0;
}

void MainWindow::editSelectedCommand()
{
    m_commandMenu->mnuEditCommand_Click();
}

void MainWindow::addCommand()
{
    m_commandMenu->mnuAddCommand_Click();
}

void MainWindow::removeSelectedCommand()
{
    m_commandMenu->mnuRemoveCommand_Click();
}

void MainWindow::popupCommandMenu(const QPoint& globalPos)
{
    m_dragAndDrop->popupMenu(m_commandMenu->menu(), globalPos);
}

void MainWindow::popupTreeMenu(const QPoint& globalPos)
{
    m_dragAndDrop->popupMenu(m_editMenu->treeMenu(), globalPos);
}

void MainWindow::execDrag(QDrag* drag)
{
    m_dragAndDrop->execDrag(drag);
}

void MainWindow::setDragExecutor(std::function<void(QDrag*)> executor)
{
    m_dragAndDrop->setDragExecutor(std::move(executor));
}

void MainWindow::popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo,
                               const QPoint& globalPos)
{
    m_dragAndDrop->popupDropMenu(targetText, parentText, nextToo, globalPos);
}

void MainWindow::setMenuPopup(std::function<void(QMenu*, const QPoint&)> popup)
{
    m_dragAndDrop->setMenuPopup(std::move(popup));
}

void MainWindow::showRunTimeError(const RunTimeError& error)
{
    m_messages->showRunTimeError(error);
}

void MainWindow::showRefusal(const QString& text)
{
    m_messages->showRefusal(text);
}

void MainWindow::showPlainMessage(const QString& text)
{
    m_messages->showPlain(text);
}

void MainWindow::showReplaceDialog()
{
    // Made once and kept: its texts and check box stay as the user left them.
    if (m_frmReplace == nullptr) {
        m_frmReplace = new ReplaceDialog(m_history->session(), this);
    }
    m_frmReplace->show();
    m_frmReplace->raise();
    m_frmReplace->activateWindow();
}

void MainWindow::openFindBar()
{
    if (EditorWindow* active = activeEditor()) {
        active->openFindBar();
    }
}

void MainWindow::toggleCopyCommandDup(bool checked)
{
    Options options = m_state.options();
    options.copyCommandDup = checked;
    m_state.setOptions(options);
    m_optionsStore.saveOptions(options);
}

void MainWindow::showOptions()
{
    OptionsDialog dialog(m_optionsStore, m_state.options(), this);
    dialog.exec();
    m_state.setOptions(dialog.options());
}
