#pragma once

#include <QString>
#include <QtGlobal>

class ApplicationState;
class EditingSession;
class QDrag;
class QPoint;
class QWidget;
class RunTimeError;

/// What an editor window needs from the window that holds it: the application's state and its
/// editing session, the status bar, the pop-up menus, the messages, and the questions of closing.
class EditorWindowHost
{
public:
    virtual ~EditorWindowHost() = default;

    virtual ApplicationState& state() = 0;
    virtual const ApplicationState& state() const = 0;
    virtual EditingSession& session() = 0;
    /// Document index of the active editor window; 0 when none is active.
    virtual qint16 activeDocumentIndex() const = 0;

    /// The tree of a new editor window: the Edit entries whose keys belong to a tree reach it.
    virtual void attachTree(QWidget* tree) = 0;
    /// The selected node of the editor window of document `index` has changed.
    virtual void selectionChanged(qint16 index) = 0;
    /// Brings every menu entry up to date with the active editor window.
    virtual void updateMenus() = 0;
    /// Sets the text of status-bar panel `panel` (1..6).
    virtual void setStatusPanelText(int panel, const QString& text) = 0;
    /// Shows `count` in the item-count panel of the status bar.
    virtual void showItemCount(int count) = 0;
    /// Rebuilds the tree of document `index` and brings the menus and the status bar up to date.
    virtual void regenerateTree(qint16 index) = 0;

    /// Edits the selected line of the active command list (its double click, Enter).
    virtual void editSelectedCommand() = 0;
    /// Adds a command to the selected item (a double click on the list's empty space, Insert).
    virtual void addCommand() = 0;
    /// Removes the selected line of the active command list (Delete).
    virtual void removeSelectedCommand() = 0;
    /// Pops the command list's menu up at `globalPos`.
    virtual void popupCommandMenu(const QPoint& globalPos) = 0;
    /// Pops the context menu of the tree's selected node up at `globalPos`.
    virtual void popupTreeMenu(const QPoint& globalPos) = 0;
    /// Shows the drop menu of a right-button drop at `globalPos` (see DragAndDrop).
    virtual void popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo,
                               const QPoint& globalPos)
        = 0;
    /// Runs the drag of a node until it is dropped or given up.
    virtual void execDrag(QDrag* drag) = 0;

    /// A plain message with an OK button.
    virtual void showPlainMessage(const QString& text) = 0;
    /// The exclamation message of a refused operation.
    virtual void showRefusal(const QString& text) = 0;
    /// Reports a run-time error to the user.
    virtual void showRunTimeError(const RunTimeError& error) = 0;

    /// The save question of an editor window that is about to close. False keeps it open.
    virtual bool confirmCloseEditor(qint16 index) = 0;
    /// An editor window has closed: its document slot stays.
    virtual void editorClosed(qint16 index) = 0;
};
