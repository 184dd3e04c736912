#pragma once

#include "app/commandmenuhost.h"
#include "app/editmenuhost.h"
#include "app/editorwindowhost.h"
#include "app/menufileshost.h"
#include "core/applicationstate.h"
#include "history/historyhost.h"

#include <functional>
#include <memory>

#include <QMainWindow>
#include <QString>

class CommandMenu;
class DiskChangeWatch;
class DragAndDrop;
class EditHistory;
class EditMenu;
class EditorArea;
class EditorWindow;
class MainStatusBar;
class MenuFiles;
class MessageBoxes;
class OptionsStore;
class ProblemsPanel;
class QAction;
class QMenu;
class RecentFilesMenu;
class RecoveryCopies;
class RecoveryPrompt;
class ReplaceDialog;
class UndoManager;
class UserPrompts;

/// The main window (frmMain): the menu bar, the status bar and the area that holds one editor
/// window per open menu document. Every menu command acts on the active document, the document of
/// the editor window activated last. It owns the application's state and the parts that do the
/// work: the editor area, the file commands, the history with the editing session, the Edit menu,
/// the command list's menu, drag and drop, the recent files and the status bar. The editor windows
/// and the menus reach it through the narrow interfaces it implements.
///
/// Its dependencies come in from outside so that tests can answer the message boxes and dialogs
/// and keep the options, the recent list and the written files in temporary folders.
class MainWindow final : public QMainWindow,
                         public EditorWindowHost,
                         public EditMenuHost,
                         public CommandMenuHost,
                         public HistoryHost,
                         public MenuFilesHost
{
    Q_OBJECT

public:
    /// Loads the options from `optionsStore` and the recent list from the program's folder (or the
    /// per-user folder when the program's folder cannot be written to). The recovery copies of menus
    /// with unsaved changes go to `recoveryFolder` (RecoveryStore::defaultFolder() in the editor).
    MainWindow(UserPrompts& prompts, OptionsStore& optionsStore, const QString& programFolder,
               const QString& recoveryFolder, QWidget* parent = nullptr);
    ~MainWindow() override;

    ApplicationState& state() override { return m_state; }
    const ApplicationState& state() const override { return m_state; }
    UserPrompts& prompts() override;
    QString programFolder() const override { return m_programFolder; }

    /// The parts of the main window.
    MenuFiles& files() { return *m_files; }
    EditHistory& history() { return *m_history; }
    EditingSession& session() override;
    UndoManager& undoManager();
    EditMenu& editMenu() { return *m_editMenu; }
    CommandMenu& commandMenu() { return *m_commandMenu; }
    ProblemsPanel& problemsPanel() { return *m_problemsPanel; }
    DragAndDrop& dragAndDrop() { return *m_dragAndDrop; }
    RecoveryCopies& recoveryCopies() { return *m_recovery; }
    DiskChangeWatch& diskChangeWatch() { return *m_diskWatch; }

    /// At start-up, once the command line's menu is open: asks `prompt` about the recovery copies that
    /// editors which did not quit normally left behind, and opens those to be recovered.
    void offerRecovery(RecoveryPrompt& prompt);

    /// Opens the menu file named on the command line, if it names one ("$exepath$" stands for the
    /// program's folder; anything not ending in "ini" is ignored).
    void openCommandLineMenu(const QString& commandLine);
    /// The file commands (see MenuFiles).
    void mnuNew_Click();
    void mnuOpen_Click();
    qint16 openMenu(const QString& path, const QString& fileTitle);
    void mnuSave_Click();
    void mnuSaveAs_Click();
    /// Closes the active editor window, asking to save its menu first when it is not saved.
    void mnuClose_Click();
    /// Asks once about every unsaved document and ends the program (closes the main window).
    void mnuQuit_Click();
    /// Undo and Redo of the active document (see EditHistory).
    void mnuUndo_Click() override;
    void mnuRedo_Click() override;

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
    /// Sets the text of status-bar panel `panel` (1..6).
    void setStatusPanelText(int panel, const QString& text) override;
    /// Shows the active editor window's selected item and item count in the status bar (panels 2, 4
    /// and 6); with no active editor window they go blank.
    void showActiveStatus();

    /// Enables Save exactly when the active document has a file and is not saved.
    void updateSaveEntry();
    /// Marks the title of every editor window whose document is not saved.
    void updateUnsavedMarks();
    /// Sets the check marks of the three Hide entries from the active document's hide mode.
    void updateHideMarks();
    /// Brings every menu entry up to date with the active editor window: which can be used (one rule,
    /// EditMenuState), Save, Undo and Redo, and the Hide marks. While a link target is chosen the
    /// File, Edit, Window and Help menus are off. With no editor window open, the empty area shows
    /// how to open a menu.
    void updateMenus() override;
    void selectionChanged(qint16 index) override;

    /// Runs the drag of a node; tests step over the drag loop with setDragExecutor.
    void execDrag(QDrag* drag) override;
    void setDragExecutor(std::function<void(QDrag*)> executor);
    void popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo,
                       const QPoint& globalPos) override;
    /// Tests answer pop-up menus with setMenuPopup: it runs instead of the menu's own loop.
    void setMenuPopup(std::function<void(QMenu*, const QPoint&)> popup);

    /// Toggles the "CopyCommand at Duplication" option and saves the options.
    void toggleCopyCommandDup(bool checked) override;
    /// Shows the Replace dialog, without blocking the editor windows.
    void showReplaceDialog() override;
    void openFindBar() override;

    // Messages
    void showRunTimeError(const RunTimeError& error) override;
    void showRefusal(const QString& text) override;
    void showPlainMessage(const QString& text) override;

    // EditorWindowHost
    void attachTree(QWidget* tree) override;
    void editSelectedCommand() override;
    void addCommand() override;
    void removeSelectedCommand() override;
    void popupCommandMenu(const QPoint& globalPos) override;
    void popupTreeMenu(const QPoint& globalPos) override;
    bool confirmCloseEditor(qint16 index) override;
    void editorClosed(qint16 index) override;

    // CommandMenuHost
    QWidget* dialogParent() override { return this; }
    const MenuDocument* activeDocument() const override;
    SelectedNode activeSelectedNode() const override;
    int activeCommandSlot() const override;

    // MenuFilesHost
    void savedStateChanged() override;
    void editorActivated(qint16 index) override;
    void documentShown(qint16 index) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    /// Sizes the window for the screen it opens on and centres it there.
    void fitIntoScreen();
    /// After the tree of document `index` was rebuilt: the Hide marks and the item count follow
    /// when it is the active document.
    void showTreeState(qint16 index);
    void showOptions();

    OptionsStore& m_optionsStore;
    QString m_programFolder;
    ApplicationState m_state;
    std::unique_ptr<MessageBoxes> m_messages;
    /// Goes before the state whose menus it copies.
    std::unique_ptr<RecoveryCopies> m_recovery;
    DiskChangeWatch* m_diskWatch = nullptr;
    std::unique_ptr<MainStatusBar> m_statusBar;
    EditorArea* m_editors = nullptr;
    RecentFilesMenu* m_recent = nullptr;
    std::unique_ptr<MenuFiles> m_files;
    EditHistory* m_history = nullptr;
    EditMenu* m_editMenu = nullptr;
    CommandMenu* m_commandMenu = nullptr;
    DragAndDrop* m_dragAndDrop = nullptr;
    ProblemsPanel* m_problemsPanel = nullptr;
    ReplaceDialog* m_frmReplace = nullptr;
    QMenu* m_mnuFile = nullptr;
    QMenu* m_mnuEdit = nullptr;
    QMenu* m_mnuWindow = nullptr;
    QMenu* m_mnuH = nullptr;
    QAction* m_mnuSave = nullptr;
    QAction* m_mnuSaveAs = nullptr;
    QAction* m_mnuClose = nullptr;
};
