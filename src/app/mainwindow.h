#pragma once

#include "core/applicationstate.h"
#include "core/editinghost.h"
#include "core/editingsession.h"
#include "core/recentfilelist.h"
#include "history/historyhost.h"
#include "history/historymenu.h"
#include "history/undocontroller.h"
#include "history/undoerrorreport.h"
#include "history/undomanager.h"

#include <functional>

#include <QList>
#include <QMainWindow>
#include <QString>

class CommandMenu;
class EditMenu;
class ProblemsPanel;
class ReplaceDialog;
class EditorWindow;
class OptionsStore;
class QAction;
class QDrag;
class QPoint;
class QRect;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QTimer;
class RunTimeError;
class UserPrompts;

/// The main window (frmMain): the menu bar, the status bar and the area that holds one editor
/// window per open menu document. Every menu command acts on the active document, the document of
/// the editor window activated last. It owns the application's state, its history and the editing
/// session through which every edit of every editor window runs; the Edit menu is an EditMenu.
///
/// Its dependencies come in from outside so that tests can answer the message boxes and dialogs
/// and keep the options, the recent list and the written files in temporary folders.
class MainWindow final : public QMainWindow, public HistoryMenu, public HistoryHost, public EditingHost
{
    Q_OBJECT

public:
    /// Loads the options from `optionsStore` and the recent list from the program's folder (or the
    /// per-user folder when the program's folder cannot be written to).
    MainWindow(UserPrompts& prompts, OptionsStore& optionsStore, const QString& programFolder,
               QWidget* parent = nullptr);
    ~MainWindow() override;

    ApplicationState& state() { return m_state; }
    const ApplicationState& state() const { return m_state; }
    UserPrompts& prompts() { return m_prompts; }
    QString programFolder() const { return m_programFolder; }

    /// Opens the menu file named on the command line, if it names one ("$exepath$" stands for the
    /// program's folder; anything not ending in "ini" is ignored).
    void openCommandLineMenu(const QString& commandLine);

    /// A new menu with one item, in a new editor window.
    void mnuNew_Click();
    /// Asks for a menu file and opens it.
    void mnuOpen_Click();
    /// Opens the menu file at `path` in a new editor window captioned `fileTitle`. On failure the
    /// user is told why and nothing is left behind: no window, no document slot. Returns the new
    /// document index, 0 on failure.
    qint16 openMenu(const QString& path, const QString& fileTitle);
    /// Writes the active document to its file.
    void mnuSave_Click();
    /// Asks for a file name and writes the active document to it.
    void mnuSaveAs_Click();
    /// Closes the active editor window, asking to save its menu first when it is not saved.
    void mnuClose_Click();
    /// Asks once about every unsaved document and ends the program (closes the main window).
    void mnuQuit_Click();

    /// Document index of the active editor window; 0 when no editor window is active.
    qint16 activeDocumentIndex() const override { return m_state.activeDocumentIndex(); }
    /// The active document index as text; empty when no editor window is active.
    QString activeDocumentTag() const;
    /// The editor window of document `index`; null when it is closed or there is none.
    EditorWindow* editor(qint16 index) const;
    EditorWindow* activeEditor() const { return editor(m_state.activeDocumentIndex()); }

    /// Rebuilds the tree of document `index` in its editor window under the document's hide mode
    /// (see EditorWindow::generateTree) and, when it is the active document, brings the Hide check
    /// marks and the item count up to date.
    void regenerateTree(qint16 index) override;
    void showRestoredState(qint16 index, const MenuDocument& before) override;
    /// Shows `count` in the item-count panel (panel 4) of the status bar.
    void showItemCount(int count) override;
    /// Shows the active editor window's selected item and item count in the status bar (panels 2, 4
    /// and 6); with no active editor window they go blank.
    void showActiveStatus();

    /// Undoes the active document's last recorded edit (also run by the error report of a failed
    /// edit). With no active editor window it goes to the error report.
    void mnuUndo_Click();
    /// Redoes the active document's last undone edit.
    void mnuRedo_Click();
    /// Collects the result of the autosave file being written, if it is done: a failed write is
    /// reported and the edit that recorded its state undone. Runs soon after every edit by itself.
    void checkAutosave();
    /// Records the undo state of every edit: each editing operation calls this before it changes
    /// document `index`.
    UndoManager& undoManager() { return m_undoManager; }
    /// The session that runs every editing operation of the editor windows.
    EditingSession& session() { return m_session; }
    /// The Edit menu.
    EditMenu& editMenu() { return *m_editMenu; }
    /// The command list's pop-up menu and the command editor it opens.
    CommandMenu& commandMenu() { return *m_commandMenu; }
    /// The Problems panel of the active menu.
    ProblemsPanel& problemsPanel() { return *m_problemsPanel; }

    // EditingHost
    void recordSnapshot(qint16 index) override;
    /// Runs one editing operation. A failure inside it (a 16-bit overflow, an index naming no item, a
    /// failed autosave write ...) ends it at once, is reported, and the active document is undone to
    /// its last recorded state. Returns whether the operation ran to its end.
    bool runGuarded(const std::function<void()>& operation) override;
    bool runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded) override;
    bool runReporting(const std::function<void()>& operation) override;
    /// The exclamation message of a refused operation.
    void showRefusal(const QString& text) override;
    /// A plain message with an OK button.
    void showPlainMessage(const QString& text);
    void setUndoEnabled(bool enabled) override;
    void setRedoEnabled(bool enabled) override;
    /// Sets the text of status-bar panel `panel` (1..6).
    void setStatusPanelText(int panel, const QString& text);
    /// Reports a run-time error of an operation to the user. Every failure of a menu command or of
    /// a click in an editor window ends up here.
    void showRunTimeError(const RunTimeError& error);
    /// Enables Save exactly when the active document has a file and is not saved.
    void updateSaveEntry();
    /// Marks the title of every editor window whose document is not saved. Runs after everything
    /// that changes whether a document is saved: every edit (through the editing session), undo and
    /// redo, saving, opening and creating.
    void updateUnsavedMarks();
    /// Sets the check marks of the three Hide entries from the active document's hide mode.
    void updateHideMarks();
    /// Brings every menu entry up to date with the active editor window: which can be used (one rule,
    /// EditMenuState), Save, Undo and Redo, and the Hide marks. While a link target is chosen the
    /// File, Edit, Window and Help menus are off. With no editor window open, the empty area shows
    /// how to open a menu.
    void updateMenus();
    /// The selected node of the editor window of document `index` has changed.
    void selectionChanged(qint16 index);
    /// A new editor window: the Edit entries whose keys belong to the tree reach its tree.
    void attachEditor(EditorWindow& editor);

    /// Runs the drag of a node until it is dropped or given up. Tests may step over the drag loop
    /// with setDragExecutor.
    void execDrag(QDrag* drag);
    void setDragExecutor(std::function<void(QDrag*)> executor) { m_dragExecutor = std::move(executor); }
    /// Shows the drop menu (mnuNodes) at `globalPos`: "Insert as subitem of" captioned `targetText`,
    /// "Insert next to" captioned `parentText` and shown only when `nextToo`. Its entries set the
    /// drop choices of the drag state; the captions stay until the next drop.
    void popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo, const QPoint& globalPos);
    /// Tests answer pop-up menus with setMenuPopup: it runs instead of the menu's own loop.
    void setMenuPopup(std::function<void(QMenu*, const QPoint&)> popup) { m_menuPopup = std::move(popup); }
    /// Pops `menu` up at `globalPos` (or hands it to the test's popup).
    void popupMenu(QMenu* menu, const QPoint& globalPos);
    /// Toggles the "CopyCommand at Duplication" option and saves the options.
    void toggleCopyCommandDup(bool checked);
    /// Shows the Replace dialog, without blocking the editor windows.
    void showReplaceDialog();

    /// The save question of an editor window that is about to close. False keeps it open.
    bool confirmCloseEditor(qint16 index);
    /// An editor window has closed: its window-menu entry goes, its document slot stays.
    void editorClosed(qint16 index);
    /// An editor window has become the active one.
    void editorActivated(qint16 index);

    /// The message shown when a menu file cannot be read for another reason than not being a menu
    /// file.
    static QString openErrorMessage();
    /// The message shown when there is no file at `path` to open.
    static QString missingFileMessage(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    void buildStatusBar();
    QAction* addEntry(QMenu* menu, const QString& name, const QString& caption);
    void addSeparator(QMenu* menu, const QString& name);

    /// Sizes the window for the screen it opens on and centres it there.
    void fitIntoScreen();
    /// The area editor windows are placed in, in the area's own coordinates.
    QRect editorArea();
    /// A new editor window for document `index`: the first one fills the area, later ones take two
    /// thirds of it.
    EditorWindow* createEditor(qint16 index);
    void discardNewestEditor(qint16 index, QMdiSubWindow* previousWindow, qint16 previousIndex);
    void activateEditor(qint16 index);
    /// After the tree of document `index` was rebuilt: the Hide marks and the item count follow
    /// when it is the active document.
    void showTreeState(qint16 index);
    void setEditorCaption(qint16 index, const QString& caption);
    QMdiSubWindow* frameOf(const EditorWindow* editor) const;
    void tileWindows(Qt::Orientation orientation);

    /// Writes document `index` to `path`; a failure, or values the file cannot hold, are shown and
    /// leave the document unsaved and the file as it was.
    bool writeDocument(qint16 index, const QString& path);
    /// When document `index` holds values its file cannot hold, shows them and returns true.
    bool refuseUnsavable(qint16 index);
    /// Saves document `index` for closing: to its file, else to a name asked for. False when the
    /// write failed or was refused, true also when the user gave no name.
    bool saveForClosing(qint16 index);
    /// The folder a file dialog for document `index` starts in: the folder of its file, or for a menu
    /// without one (or none at all) the folder used last.
    QString dialogFolder(qint16 index) const;
    /// `filePath` was chosen in a dialog, opened or written: its folder is the one used last.
    void noteFolderUsed(const QString& filePath);
    /// The quit question and the saving it asks for. False when quitting stops.
    bool confirmQuit();

    /// A critical message; `details` (the precise reason) is offered by the box on request.
    void showCritical(const QString& text, const QString& details = QString());
    /// Starts looking out for the result of an autosave file being written.
    void watchAutosave();
    void syncRecentEntries();
    void openRecent(int entry);
    void showOptions();
    void showHelp();
    void showAbout();
    void onSubWindowActivated(QMdiSubWindow* window);

    UserPrompts& m_prompts;
    OptionsStore& m_optionsStore;
    QString m_programFolder;
    /// Where the files the editor writes beside itself go (decided once, it probes the disk).
    QString m_writableFolder;
    /// The folder of the menu file chosen, opened or written last.
    QString m_lastFolder;
    ApplicationState m_state;
    RecentFileList m_recent;
    UndoManager m_undoManager;
    UndoErrorReport m_undoErrorReport;
    UndoController m_undoController;
    EditingSession m_session;

    std::function<void(QDrag*)> m_dragExecutor;
    std::function<void(QMenu*, const QPoint&)> m_menuPopup;
    QMdiArea* m_mdiArea = nullptr;
    QTimer* m_autosaveCheck = nullptr;
    QMenu* m_mnuFile = nullptr;
    QMenu* m_mnuEdit = nullptr;
    QMenu* m_mnuWindow = nullptr;
    QMenu* m_mnuH = nullptr;
    CommandMenu* m_commandMenu = nullptr;
    ProblemsPanel* m_problemsPanel = nullptr;
    QMenu* m_mnuNodes = nullptr;
    QMenu* m_mnuNodesInsertSub = nullptr;
    QMenu* m_mnuNodesInsertNext = nullptr;
    EditMenu* m_editMenu = nullptr;
    ReplaceDialog* m_frmReplace = nullptr;
    QAction* m_mnuSave = nullptr;
    QAction* m_mnuSaveAs = nullptr;
    QAction* m_mnuClose = nullptr;
    /// Cascade and the two Tile entries.
    QList<QAction*> m_arrangeEntries;
    /// The hint shown in the empty area while no menu is open.
    QLabel* m_lblNoMenu = nullptr;
    QAction* m_tire03 = nullptr;
    QAction* m_tire09 = nullptr;
    QList<QAction*> m_mnuRecent;
    /// One entry per document slot, addressed by document index; entry 0 is the hidden design
    /// entry "window1".
    QList<QAction*> m_mnuWindowName;
    QList<QLabel*> m_panels;
};
