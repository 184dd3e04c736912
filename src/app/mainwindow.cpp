#include "mainwindow.h"

#include "app/commandmenu.h"
#include "app/desktophelpsystem.h"
#include "app/editmenu.h"
#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/optionsdialog.h"
#include "app/problemspanel.h"
#include "app/replacedialog.h"
#include "core/aboutinfo.h"
#include "core/accesskeys.h"
#include "core/commandlinemenu.h"
#include "core/documentfile.h"
#include "core/editmenustate.h"
#include "core/helplauncher.h"
#include "core/languageconfig.h"
#include "core/newmenudocument.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"
#include "core/statuspanels.h"
#include "core/userprompts.h"
#include "history/editingoperation.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/hidemode.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPalette>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>

namespace {

QString fileDialogTitle()
{
    return QStringLiteral("Select a menu file ...");
}

QString fileDialogFilter()
{
    return QStringLiteral("Menu File (*.ini)");
}

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

/// What the empty area says while no menu is open.
QString noMenuHint()
{
    return QStringLiteral("No menu is open.\n\nOpen a menu with %1, or drop .ini files here.")
        .arg(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText));
}

/// The folder for the files the editor writes beside itself (Recent.ini, the autosave files): the
/// program's folder, or the per-user folder when the program is installed where the user cannot
/// write.
QString writableFolder(const QString& programFolder)
{
    return ProgramFolder::isWritableFolder(programFolder) ? programFolder : ProgramFolder::writablePath();
}

} // namespace

MainWindow::MainWindow(UserPrompts& prompts, OptionsStore& optionsStore, const QString& programFolder, QWidget* parent)
    : QMainWindow(parent)
    , m_prompts(prompts)
    , m_optionsStore(optionsStore)
    , m_programFolder(programFolder)
    , m_writableFolder(writableFolder(programFolder))
    , m_recent(m_writableFolder)
    , m_undoManager(m_state.documents(), m_state.histories(), m_writableFolder, *this)
    , m_undoErrorReport([this](const QString& text) { showCritical(text); }, contactLines(),
                        [this] { mnuUndo_Click(); })
    , m_undoController(m_state.documents(), m_undoManager, m_undoErrorReport, *this)
    , m_session(m_state, *this)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("KELV Menu Editor"));
    setAcceptDrops(true);

    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setObjectName(QStringLiteral("mdiArea"));
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &MainWindow::onSubWindowActivated);

    // With no menu open the area says how to get one; the label lets clicks and drops through.
    m_lblNoMenu = new QLabel(noMenuHint(), m_mdiArea->viewport());
    m_lblNoMenu->setObjectName(QStringLiteral("lblNoMenu"));
    m_lblNoMenu->setAlignment(Qt::AlignCenter);
    m_lblNoMenu->setWordWrap(true);
    m_lblNoMenu->setAttribute(Qt::WA_TransparentForMouseEvents);
    QFont hintFont = m_lblNoMenu->font();
    if (hintFont.pointSizeF() > 0) {
        hintFont.setPointSizeF(hintFont.pointSizeF() * 1.2);
    }
    m_lblNoMenu->setFont(hintFont);
    QPalette hintPalette = m_lblNoMenu->palette();
    hintPalette.setColor(QPalette::WindowText, hintPalette.color(QPalette::Light));
    m_lblNoMenu->setPalette(hintPalette);
    m_mdiArea->viewport()->installEventFilter(this);

    // The autosave file of an edit is written on a second thread; its result is collected soon after.
    m_autosaveCheck = new QTimer(this);
    m_autosaveCheck->setSingleShot(true);
    m_autosaveCheck->setInterval(20);
    connect(m_autosaveCheck, &QTimer::timeout, this, &MainWindow::checkAutosave);

    buildMenus();
    buildStatusBar();

    m_state.setOptions(m_optionsStore.loadOptions());
    m_editMenu->copyCommandDupEntry()->setChecked(m_state.options().copyCommandDup);
    m_recent.loadRecentList();
    syncRecentEntries();
    // Until a file is chosen, the dialogs start where the newest menu of the last session lies.
    if (m_recent.entry(0).visible) {
        noteFolderUsed(m_recent.entry(0).caption);
    }
    updateMenus();

    fitIntoScreen();
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

QRect MainWindow::editorArea()
{
    // Before the main window is first shown its layout has not run yet; running it now gives the area
    // the size it will have. The viewport itself only follows once the area is shown, but it is the
    // area's whole inside as long as no window sticks out of it.
    if (!m_mdiArea->isVisible()) {
        layout()->activate();
        return QRect(QPoint(0, 0), m_mdiArea->contentsRect().size());
    }
    return m_mdiArea->viewport()->rect();
}

MainWindow::~MainWindow()
{
    // The editor windows go after this object; their going must not reach it any more.
    disconnect(m_mdiArea, nullptr, this, nullptr);
    const QList<QMdiSubWindow*> windows = m_mdiArea->subWindowList();
    for (QMdiSubWindow* window : windows) {
        delete window;
    }
}

QAction* MainWindow::addEntry(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* entry = menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

void MainWindow::addSeparator(QMenu* menu, const QString& name)
{
    QAction* separator = menu->addSeparator();
    separator->setObjectName(name);
}

void MainWindow::buildMenus()
{
    auto namedMenu = [this](QMenu* parentMenu, const QString& name, const QString& caption) {
        QMenu* menu = parentMenu ? parentMenu->addMenu(caption) : menuBar()->addMenu(caption);
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        return menu;
    };
    // Entries whose commands are not available yet stay visible but disabled.
    // File
    m_mnuFile = namedMenu(nullptr, QStringLiteral("mnuFile"), QStringLiteral("&File"));
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
    for (int entry = 0; entry < RecentFileList::EntryCount; ++entry) {
        QAction* recent = addEntry(m_mnuFile, QStringLiteral("mnuRecent") + QString::number(entry), QString());
        recent->setVisible(false);
        connect(recent, &QAction::triggered, this, [this, entry]() { openRecent(entry); });
        m_mnuRecent.append(recent);
    }
    addSeparator(m_mnuFile, QStringLiteral("Tire03"));
    m_tire03 = m_mnuFile->actions().constLast();
    m_tire03->setVisible(false);
    QAction* mnuQuit = addEntry(m_mnuFile, QStringLiteral("mnuQuit"), QStringLiteral("&Quit"));
    mnuQuit->setShortcut(QKeySequence::Quit);
    if (mnuQuit->shortcut().isEmpty()) {
        mnuQuit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    }
    connect(mnuQuit, &QAction::triggered, this, &MainWindow::mnuQuit_Click);
    connect(m_mnuFile, &QMenu::aboutToShow, this, &MainWindow::updateSaveEntry);

    // Edit
    m_mnuEdit = namedMenu(nullptr, QStringLiteral("mnuEdit"), QStringLiteral("&Edit"));
    m_editMenu = new EditMenu(m_mnuEdit, *this, m_session);

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
    QMenu* mnuView = namedMenu(nullptr, QStringLiteral("mnuView"), QStringLiteral("&View"));
    QAction* mnuProblems = m_problemsPanel->toggleViewAction();
    mnuProblems->setObjectName(QStringLiteral("mnuProblems"));
    mnuProblems->setText(QStringLiteral("&Problems"));
    mnuView->addAction(mnuProblems);

    // Window
    m_mnuWindow = namedMenu(nullptr, QStringLiteral("mnuWindow"), QStringLiteral("&Window"));
    QAction* mnuCascade = addEntry(m_mnuWindow, QStringLiteral("mnuCascade"), QStringLiteral("&Cascade"));
    m_arrangeEntries.append(mnuCascade);
    connect(mnuCascade, &QAction::triggered, m_mdiArea, &QMdiArea::cascadeSubWindows);
    QAction* mnuHorizontal = addEntry(m_mnuWindow, QStringLiteral("mnuHorizontal"), QStringLiteral("Tile &Hozizontal"));
    connect(mnuHorizontal, &QAction::triggered, this, [this]() { tileWindows(Qt::Horizontal); });
    m_arrangeEntries.append(mnuHorizontal);
    QAction* mnuVertical = addEntry(m_mnuWindow, QStringLiteral("mnuVertical"), QStringLiteral("Tile &Vertical"));
    connect(mnuVertical, &QAction::triggered, this, [this]() { tileWindows(Qt::Vertical); });
    m_arrangeEntries.append(mnuVertical);
    addSeparator(m_mnuWindow, QStringLiteral("Tire09"));
    QAction* designEntry = addEntry(m_mnuWindow, QStringLiteral("mnuWindowName0"), QStringLiteral("window1"));
    designEntry->setData(0);
    designEntry->setVisible(false);
    m_mnuWindowName.append(designEntry);

    // Help
    m_mnuH = namedMenu(nullptr, QStringLiteral("mnuH"), QStringLiteral("&Help"));
    QAction* mnuHelp = addEntry(m_mnuH, QStringLiteral("mnuHelp"), QStringLiteral("&Help"));
    mnuHelp->setShortcut(QKeySequence(Qt::Key_F1));
    connect(mnuHelp, &QAction::triggered, this, &MainWindow::showHelp);
    QAction* mnuAbout = addEntry(m_mnuH, QStringLiteral("mnuAbout"), QStringLiteral("&About"));
    connect(mnuAbout, &QAction::triggered, this, &MainWindow::showAbout);
    // The toolkit's licence asks for its own About box to be reachable.
    QAction* mnuAboutQt = addEntry(m_mnuH, QStringLiteral("mnuAboutQt"), QStringLiteral("About &Qt"));
    mnuAboutQt->setMenuRole(QAction::AboutQtRole);
    connect(mnuAboutQt, &QAction::triggered, qApp, &QApplication::aboutQt);

    // Pop-up menus of the editor windows: the command list's menu and the menu shown when a tree
    // node is dropped on another. Both come with the commands they belong to.
    m_commandMenu = new CommandMenu(*this, this);

    m_mnuNodes = new QMenu(this);
    m_mnuNodes->setObjectName(QStringLiteral("mnuNodes"));
    m_mnuNodesInsertSub
        = namedMenu(m_mnuNodes, QStringLiteral("mnuNodesInsertSub"), QStringLiteral("Insert as &subitem of"));
    m_mnuNodesInsertNext
        = namedMenu(m_mnuNodes, QStringLiteral("mnuNodesInsertNext"), QStringLiteral("Insert &next to"));
    // The entries only note the choice; the drop goes on once the menu has closed.
    const auto addDropChoice = [this](QMenu* menu, const QString& name, bool asChild, bool copy) {
        QAction* entry = addEntry(menu, name, copy ? QStringLiteral("&Copy") : QStringLiteral("&Move"));
        connect(entry, &QAction::triggered, this, [this, asChild, copy] {
            DragState& drag = m_state.editing().drag;
            drag.dropAsChild = asChild;
            drag.dropAsSibling = !asChild;
            drag.dropCopy = copy;
            drag.dropCancelled = false;
        });
    };
    addDropChoice(m_mnuNodesInsertSub, QStringLiteral("mnuItemCopy"), true, true);
    addDropChoice(m_mnuNodesInsertSub, QStringLiteral("mnuItemMove"), true, false);
    addDropChoice(m_mnuNodesInsertNext, QStringLiteral("mnuNextItemCopy"), false, true);
    addDropChoice(m_mnuNodesInsertNext, QStringLiteral("mnuNextItemMove"), false, false);
}

void MainWindow::buildStatusBar()
{
    // Panels 2, 4 and 6 hold the selected item's index, the item count and the selected item's
    // place among its siblings with its number of children; 1, 3 and 5 caption them.
    const QStringList texts = { tr("Item index:"), QString(),       tr("Item count:"),
                                QString(),         tr("Position:"), StatusPanels::designPosition() };
    for (int panel = 0; panel < texts.size(); ++panel) {
        auto* label = new QLabel(texts.at(panel), this);
        label->setObjectName(QStringLiteral("pnl") + QString::number(panel + 1));
        if (panel % 2 == 1) {
            label->setFrameShape(QFrame::Panel);
            label->setFrameShadow(QFrame::Sunken);
            label->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("(0000 ; 0000)")) + 12);
        }
        statusBar()->addWidget(label);
        m_panels.append(label);
    }
}

void MainWindow::setStatusPanelText(int panel, const QString& text)
{
    if (panel >= 1 && panel <= m_panels.size()) {
        m_panels.at(panel - 1)->setText(text);
    }
}

void MainWindow::showItemCount(int count)
{
    setStatusPanelText(4, QString::number(count));
}

void MainWindow::showActiveStatus()
{
    StatusPanels panels;
    if (const EditorWindow* active = activeEditor()) {
        panels = StatusPanels::of(active->document(), active->selectedNode().key);
    }
    setStatusPanelText(2, panels.itemIndex);
    setStatusPanelText(4, panels.itemCount);
    setStatusPanelText(6, panels.position);
}

QString MainWindow::activeDocumentTag() const
{
    const qint16 index = m_state.activeDocumentIndex();
    return index == 0 ? QString() : QString::number(index);
}

void MainWindow::showCritical(const QString& text, const QString& details)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.details = details;
    m_prompts.showMessage(request);
}

void MainWindow::showRunTimeError(const RunTimeError& error)
{
    showCritical(error.report());
}

QString MainWindow::missingFileMessage(const QString& path)
{
    return QStringLiteral("An error occured while opening the file !") + lineEnd() + lineEnd()
        + QStringLiteral("This file does not exist :") + lineEnd() + QStringLiteral("    ") + path;
}

QString MainWindow::openErrorMessage()
{
    const QStringList lines = { QStringLiteral("An error occured while opening the file !"),
                                QString(),
                                QStringLiteral("This is not a valid KELV Menu file"),
                                QString(),
                                QStringLiteral("Contact the developer for further information :"),
                                contactLines() };
    return lines.join(lineEnd());
}

// ---- Documents and editor windows -----------------------------------------------------------

EditorWindow* MainWindow::editor(qint16 index) const
{
    return dynamic_cast<EditorWindow*>(m_state.editor(index));
}

QMdiSubWindow* MainWindow::frameOf(const EditorWindow* editor) const
{
    return editor ? qobject_cast<QMdiSubWindow*>(editor->parentWidget()) : nullptr;
}

EditorWindow* MainWindow::createEditor(qint16 index)
{
    auto* editor = new EditorWindow(*this, index);
    QMdiSubWindow* frame = m_mdiArea->addSubWindow(editor);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    // The frame's own Close entry may carry File > Close's key; a key on two entries does nothing.
    if (QMenu* systemMenu = frame->systemMenu()) {
        const QList<QAction*> entries = systemMenu->actions();
        for (QAction* entry : entries) {
            QList<QKeySequence> keys = entry->shortcuts();
            if (keys.removeAll(m_mnuClose->shortcut()) > 0) {
                entry->setShortcuts(keys);
            }
        }
    }
    m_state.setEditor(index, editor);

    QAction* entry = addEntry(m_mnuWindow, QStringLiteral("mnuWindowName") + QString::number(index), QString());
    entry->setData(index);
    entry->setVisible(false);
    connect(entry, &QAction::triggered, this, [this, index]() { activateEditor(index); });
    m_mnuWindowName.append(entry);

    const QRect area = editorArea();
    if (m_state.openDocumentIndexes().size() == 1) {
        // The first menu gets the whole area (its title bar still showing its name and unsaved mark).
        frame->setGeometry(area);
    } else {
        // Later ones take two thirds of it, placed by the area where they cover the others least.
        frame->resize((area.size() * 2 / 3).expandedTo(frame->minimumSizeHint()));
    }
    frame->show();
    activateEditor(index);
    return editor;
}

void MainWindow::discardNewestEditor(qint16 index, QMdiSubWindow* previousWindow, qint16 previousIndex)
{
    EditorWindow* editor = this->editor(index);
    m_state.clearEditor(index);
    if (QMdiSubWindow* frame = frameOf(editor)) {
        m_mdiArea->removeSubWindow(frame);
        delete frame;
    }
    delete m_mnuWindowName.takeLast();
    m_state.removeLastDocumentSlot();

    if (previousWindow && m_mdiArea->subWindowList().contains(previousWindow)) {
        m_mdiArea->setActiveSubWindow(previousWindow);
    }
    m_state.setActiveDocumentIndex(m_state.editor(previousIndex) ? previousIndex : 0);
    if (m_state.activeDocumentIndex() != 0) {
        editorActivated(m_state.activeDocumentIndex());
    } else {
        updateMenus();
    }
}

void MainWindow::activateEditor(qint16 index)
{
    QMdiSubWindow* frame = frameOf(editor(index));
    if (!frame) {
        return;
    }
    if (frame->isMinimized()) {
        frame->showNormal();
    }
    m_mdiArea->setActiveSubWindow(frame);
    editorActivated(index);
}

void MainWindow::onSubWindowActivated(QMdiSubWindow* window)
{
    // A null window only means that the main window itself lost the focus; the active document
    // stays until another editor window is activated or the active one closes.
    auto* editor = window ? qobject_cast<EditorWindow*>(window->widget()) : nullptr;
    if (editor && this->editor(editor->documentIndex()) == editor) {
        editorActivated(editor->documentIndex());
    }
}

void MainWindow::editorActivated(qint16 index)
{
    m_state.setActiveDocumentIndex(index);
    updateMenus();
    // The panels belong to the window now active: its selected item and its item count.
    showActiveStatus();
}

void MainWindow::setEditorCaption(qint16 index, const QString& caption)
{
    if (EditorWindow* editor = this->editor(index)) {
        editor->setCaption(caption);
    }
    if (index >= 1 && index < m_mnuWindowName.size()) {
        m_mnuWindowName.at(index)->setText(AccessKeys::onFirstLetter(caption));
        m_mnuWindowName.at(index)->setVisible(true);
    }
}

void MainWindow::editorClosed(qint16 index)
{
    if (index >= 1 && index < m_mnuWindowName.size()) {
        m_mnuWindowName.at(index)->setVisible(false);
    }
    m_state.clearEditor(index);
    if (m_state.activeDocumentIndex() == index) {
        // The area activates the next editor window, if any, once this one is gone; until then, and
        // for good after the last one, nothing is shown of a window that is no longer there.
        m_state.setActiveDocumentIndex(0);
        showActiveStatus();
    }
    updateMenus();
}

void MainWindow::regenerateTree(qint16 index)
{
    EditorWindow* editor = this->editor(index);
    if (!editor) {
        return;
    }
    editor->generateTree();
    showTreeState(index);
}

void MainWindow::showRestoredState(qint16 index, const MenuDocument& before)
{
    EditorWindow* editor = this->editor(index);
    if (!editor) {
        return;
    }
    editor->showRestoredState(before);
    showTreeState(index);
}

void MainWindow::showTreeState(qint16 index)
{
    if (index == m_state.activeDocumentIndex()) {
        updateHideMarks();
        showItemCount(int(m_state.document(index).items.size()));
    }
}

// ---- File commands ----------------------------------------------------------------------------

void MainWindow::openCommandLineMenu(const QString& commandLine)
{
    const QString path = menuPathFromCommandLine(commandLine, m_programFolder);
    if (!path.isEmpty()) {
        openMenu(path, QFileInfo(path).fileName());
    }
}

void MainWindow::mnuNew_Click()
{
    const qint16 index = m_state.appendDocumentSlot();
    m_state.document(index) = newMenuDocument(index);
    const QString caption = QStringLiteral("New menu ") + QString::number(m_state.editorsCreated() + 1);
    createEditor(index);
    m_state.noteEditorCreated();
    try {
        regenerateTree(index);
    } catch (const RunTimeError& error) {
        showRunTimeError(error);
    }
    setEditorCaption(index, caption);
}

void MainWindow::mnuOpen_Click()
{
    const QString path
        = m_prompts.askOpenFileName(fileDialogTitle(), fileDialogFilter(), dialogFolder(activeDocumentIndex()));
    if (!path.isEmpty()) {
        noteFolderUsed(path);
        openMenu(path, QFileInfo(path).fileName());
    }
}

qint16 MainWindow::openMenu(const QString& path, const QString& fileTitle)
{
    QMdiSubWindow* previousWindow = m_mdiArea->activeSubWindow();
    const qint16 previousIndex = m_state.activeDocumentIndex();

    const qint16 index = m_state.appendDocumentSlot();
    EditorWindow* editor = createEditor(index);
    editor->showBusyNotice(QStringLiteral("Loading..."));
    editor->tree()->setUpdatesEnabled(false);

    MenuReadResult result;
    try {
        result = openMenuDocument(path, m_state.options(), index, m_state.document(index));
    } catch (const RunTimeError& error) {
        result.code = MenuReadResult::Failed;
        result.errorNumber = error.number();
    }
    if (!result.ok()) {
        // The message keeps its fixed text; the precise reason is there for whoever asks for it.
        QString text = openErrorMessage();
        if (result.code == MenuReadResult::NotAMenuFile) {
            text = notMenuFileMessage();
        } else if (result.fileMissing()) {
            text = missingFileMessage(path);
        }
        showCritical(text, readFailureText(path, result));
        discardNewestEditor(index, previousWindow, previousIndex);
        return 0;
    }

    editor->tree()->setUpdatesEnabled(true);
    editor->hideBusyNotice();
    m_state.noteEditorCreated();
    activateEditor(index);
    try {
        regenerateTree(index);
    } catch (const RunTimeError& error) {
        showRunTimeError(error);
    }
    setEditorCaption(index, fileTitle);
    noteFolderUsed(path);
    m_recent.addRecentFile(path);
    syncRecentEntries();
    return index;
}

bool MainWindow::writeDocument(qint16 index, const QString& path)
{
    QList<SaveProblem> problems;
    try {
        problems = saveMenuDocument(m_state.document(index), path);
    } catch (const RunTimeError& error) {
        // The writer leaves the old file as it was; the document stays unsaved, so nothing is lost.
        showRunTimeError(error);
        return false;
    }
    if (!problems.isEmpty()) {
        showRefusal(saveRefusalMessage(problems));
        return false;
    }
    updateSaveEntry();
    updateUnsavedMarks();
    return true;
}

bool MainWindow::refuseUnsavable(qint16 index)
{
    const QList<SaveProblem> problems = documentSaveProblems(m_state.document(index));
    if (problems.isEmpty()) {
        return false;
    }
    showRefusal(saveRefusalMessage(problems));
    return true;
}

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
        editor(index)->setWindowModified(!m_state.document(index).saved);
    }
}

void MainWindow::mnuSave_Click()
{
    const qint16 index = m_state.activeDocumentIndex();
    if (!m_state.editor(index)) {
        return;
    }
    const QString path = m_state.document(index).filePath;
    if (!path.isEmpty()) {
        writeDocument(index, path);
    }
}

void MainWindow::mnuSaveAs_Click()
{
    const qint16 index = m_state.activeDocumentIndex();
    if (!m_state.editor(index)) {
        return;
    }
    // A menu that cannot be saved is refused before the user picks a name for it.
    if (refuseUnsavable(index)) {
        return;
    }
    const QString path = m_prompts.askSaveFileName(fileDialogTitle(), fileDialogFilter(), dialogFolder(index));
    if (path.isEmpty()) {
        return;
    }
    noteFolderUsed(path);
    if (writeDocument(index, path)) {
        setEditorCaption(index, QFileInfo(path).fileName());
    }
}

QString MainWindow::dialogFolder(qint16 index) const
{
    // The folder of the menu the dialog is for, where it has a file; else the one used last.
    if (m_state.editor(index) && !m_state.document(index).filePath.isEmpty()) {
        return QFileInfo(m_state.document(index).filePath).absolutePath();
    }
    return m_lastFolder;
}

void MainWindow::noteFolderUsed(const QString& filePath)
{
    m_lastFolder = QFileInfo(filePath).absolutePath();
}

void MainWindow::mnuClose_Click()
{
    if (EditorWindow* active = activeEditor()) {
        active->closeWindow();
    }
}

bool MainWindow::saveForClosing(qint16 index)
{
    QString path = m_state.document(index).filePath;
    if (path.isEmpty()) {
        if (refuseUnsavable(index)) {
            return false;
        }
        path = m_prompts.askSaveFileName(fileDialogTitle(), fileDialogFilter(), dialogFolder(index));
        if (path.isEmpty()) {
            return true; // no name given: nothing is written
        }
        noteFolderUsed(path);
    }
    return writeDocument(index, path);
}

bool MainWindow::confirmCloseEditor(qint16 index)
{
    if (m_state.isQuitting() || !m_state.documents().isDocumentIndex(index) || m_state.document(index).saved) {
        return true;
    }
    MessageRequest request;
    request.text = QStringLiteral("Do you want to save changes ?");
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNoCancel;
    switch (m_prompts.showMessage(request)) {
    case UserPrompts::Answer::Yes:
        // A failed write keeps the window open, so the changes are not lost.
        return saveForClosing(index);
    case UserPrompts::Answer::No:
        return true;
    case UserPrompts::Answer::Cancel:
    case UserPrompts::Answer::Ok:
        break;
    }
    return false;
}

bool MainWindow::confirmQuit()
{
    QList<qint16> unsaved;
    for (const qint16 index : m_state.openDocumentIndexes()) {
        if (!m_state.document(index).saved) {
            unsaved.append(index);
        }
    }
    if (!unsaved.isEmpty()) {
        QString text = QStringLiteral("Do you want to save changes on file : ");
        for (const qint16 index : unsaved) {
            text += lineEnd() + QStringLiteral("    ") + editor(index)->caption();
        }
        MessageRequest request;
        request.text = text;
        request.icon = MessageRequest::Icon::Question;
        request.buttons = MessageRequest::Buttons::YesNoCancel;
        const UserPrompts::Answer answer = m_prompts.showMessage(request);
        if (answer != UserPrompts::Answer::Yes && answer != UserPrompts::Answer::No) {
            return false;
        }
        if (answer == UserPrompts::Answer::Yes) {
            // All or none: a menu that cannot be saved stops quitting before anything is written.
            QList<UnsavableDocument> unsavable;
            for (const qint16 index : unsaved) {
                const QList<SaveProblem> problems = documentSaveProblems(m_state.document(index));
                if (!problems.isEmpty()) {
                    unsavable.append(UnsavableDocument { editor(index)->caption(), problems });
                }
            }
            if (!unsavable.isEmpty()) {
                showRefusal(saveRefusalMessage(unsavable));
                return false;
            }
            for (const qint16 index : unsaved) {
                // A document that cannot be written stops quitting rather than being lost.
                if (!saveForClosing(index)) {
                    return false;
                }
            }
        }
    }
    m_state.setQuitting(true);
    return true;
}

void MainWindow::mnuQuit_Click()
{
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!m_state.isQuitting() && !confirmQuit()) {
        event->ignore();
        return;
    }
    m_mdiArea->closeAllSubWindows();
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
    const QList<QUrl> urls = event->mimeData()->urls();
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) {
            continue;
        }
        const QString path = url.toLocalFile();
        const QFileInfo file(path);
        if (file.exists() && path.right(4).toLower() == QLatin1String(".ini")) {
            openMenu(path, file.fileName());
        }
    }
}

// ---- Undo and redo -----------------------------------------------------------------------------

void MainWindow::mnuUndo_Click()
{
    m_undoController.mnuUndo_Click();
    updateSaveEntry();
    updateUnsavedMarks();
}

void MainWindow::mnuRedo_Click()
{
    m_undoController.mnuRedo_Click();
    updateSaveEntry();
    updateUnsavedMarks();
    watchAutosave();
}

void MainWindow::watchAutosave()
{
    if (m_undoManager.isAutosavePending() && !m_autosaveCheck->isActive()) {
        m_autosaveCheck->start();
    }
}

void MainWindow::checkAutosave()
{
    if (!m_undoManager.isAutosavePending()) {
        return;
    }
    if (!m_undoManager.isAutosaveFinished()) {
        m_autosaveCheck->start();
        return;
    }
    // A file that could not be written fails the edit that recorded its state: it is reported, and
    // undoing brings back the state before that edit.
    runGuarded([this] { m_undoManager.completeAutosave(); });
}

void MainWindow::recordSnapshot(qint16 index)
{
    m_undoManager.saveUndoState(index, true);
}

bool MainWindow::runGuarded(const std::function<void()>& operation)
{
    const bool completed = runEditingOperation(m_undoErrorReport, operation);
    // Every recorded edit marks the document unsaved and an undone failure may mark it saved
    // again; Save (and Ctrl+S) follows at once, as does every entry that depends on the selection.
    updateMenus();
    watchAutosave();
    return completed;
}

bool MainWindow::runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded)
{
    const bool completed = runCatchingErrors(operation, [this, &recorded](const RunTimeError& error) {
        m_undoErrorReport.show(error, [this, &recorded] {
            for (auto index = recorded.crbegin(); index != recorded.crend(); ++index) {
                m_undoController.undoDocument(*index);
            }
        });
    });
    updateMenus();
    watchAutosave();
    return completed;
}

bool MainWindow::runReporting(const std::function<void()>& operation)
{
    const bool completed
        = runCatchingErrors(operation, [this](const RunTimeError& error) { showCritical(error.report()); });
    updateMenus();
    watchAutosave();
    return completed;
}

void MainWindow::showRefusal(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    m_prompts.showMessage(request);
}

void MainWindow::showPlainMessage(const QString& text)
{
    MessageRequest request;
    request.text = text;
    m_prompts.showMessage(request);
}

void MainWindow::setUndoEnabled(bool enabled)
{
    m_editMenu->undoEntry()->setEnabled(enabled);
}

void MainWindow::setRedoEnabled(bool enabled)
{
    m_editMenu->redoEntry()->setEnabled(enabled);
}

// ---- Tree display -----------------------------------------------------------------------------

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
    input.itemSelected = view != nullptr && view->selectedNode().isItem();
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
    for (QAction* entry : std::as_const(m_arrangeEntries)) {
        entry->setEnabled(state.arrangeEntries);
    }
    updateSaveEntry();
    updateUnsavedMarks();
    if (state.menus) {
        m_undoManager.updateMenu(view != nullptr ? index : qint16(0));
    }
    m_editMenu->apply(state);
    m_commandMenu->apply(state);
    // The panel checks the menu again only when it changed, so following every update is cheap.
    m_problemsPanel->follow(view != nullptr ? index : qint16(0));
    updateHideMarks();
    m_lblNoMenu->setVisible(!input.editorOpen);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_mdiArea->viewport() && event->type() == QEvent::Resize) {
        m_lblNoMenu->setGeometry(m_mdiArea->viewport()->rect());
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::selectionChanged(qint16 index)
{
    if (index == m_state.activeDocumentIndex()) {
        updateMenus();
    }
}

void MainWindow::attachEditor(EditorWindow& editor)
{
    m_editMenu->attachTo(editor.tree());
}

void MainWindow::showReplaceDialog()
{
    // Made once and kept: its texts and check box stay as the user left them.
    if (m_frmReplace == nullptr) {
        m_frmReplace = new ReplaceDialog(m_session, this);
    }
    m_frmReplace->show();
    m_frmReplace->raise();
    m_frmReplace->activateWindow();
}

void MainWindow::execDrag(QDrag* drag)
{
    if (m_dragExecutor) {
        m_dragExecutor(drag);
    } else {
        drag->exec(Qt::CopyAction | Qt::MoveAction);
    }
    drag->deleteLater();
}

void MainWindow::popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo,
                               const QPoint& globalPos)
{
    // The captions are the nodes' texts, shown as written.
    m_mnuNodesInsertSub->setTitle(AccessKeys::onFirstLetter(targetText));
    if (nextToo) {
        m_mnuNodesInsertNext->setTitle(AccessKeys::onFirstLetter(parentText));
    }
    m_mnuNodesInsertNext->menuAction()->setVisible(nextToo);
    popupMenu(m_mnuNodes, globalPos);
}

void MainWindow::popupMenu(QMenu* menu, const QPoint& globalPos)
{
    if (m_menuPopup) {
        m_menuPopup(menu, globalPos);
    } else {
        menu->exec(globalPos);
    }
}

// ---- Window menu ------------------------------------------------------------------------------

void MainWindow::tileWindows(Qt::Orientation orientation)
{
    QList<QMdiSubWindow*> windows;
    const QList<QMdiSubWindow*> all = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    for (QMdiSubWindow* window : all) {
        if (window->isVisible() && !window->isMinimized()) {
            windows.append(window);
        }
    }
    if (windows.isEmpty()) {
        return;
    }
    const QRect area = m_mdiArea->viewport()->rect();
    const int count = int(windows.size());
    // Horizontal tiling stacks the windows one above the other, each as wide as the area;
    // vertical tiling puts them side by side, each as high as the area.
    const int total = orientation == Qt::Horizontal ? area.height() : area.width();
    int start = 0;
    for (int position = 0; position < count; ++position) {
        const int end = total * (position + 1) / count;
        QMdiSubWindow* window = windows.at(position);
        if (window->isMaximized()) {
            window->showNormal();
        }
        if (orientation == Qt::Horizontal) {
            window->setGeometry(0, start, area.width(), end - start);
        } else {
            window->setGeometry(start, 0, end - start, area.height());
        }
        start = end;
    }
}

// ---- Recent files, options, help --------------------------------------------------------------

void MainWindow::syncRecentEntries()
{
    for (int entry = 0; entry < m_mnuRecent.size(); ++entry) {
        const RecentFileList::Entry recent = m_recent.entry(entry);
        m_mnuRecent.at(entry)->setText(AccessKeys::onFileName(recent.caption));
        m_mnuRecent.at(entry)->setVisible(recent.visible);
    }
    m_tire03->setVisible(m_recent.separatorVisible());
}

void MainWindow::openRecent(int entry)
{
    const QString path = m_recent.entry(entry).caption;
    if (!path.isEmpty()) {
        openMenu(path, QFileInfo(path).fileName());
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

void MainWindow::showHelp()
{
    DesktopHelpSystem system;
    HelpLauncher launcher(system, m_prompts);
    const LanguageConfig language(m_programFolder);
    launcher.showHelp(language.helpFilePath(), language.htmlGuidePath());
}

void MainWindow::showAbout()
{
    MessageRequest request;
    request.text = aboutText();
    request.icon = MessageRequest::Icon::Information;
    m_prompts.showMessage(request);
}
