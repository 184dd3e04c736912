#pragma once

#include "core/editinghost.h"
#include "core/editingsession.h"
#include "history/historymenu.h"
#include "history/undocontroller.h"
#include "history/undoerrorreport.h"
#include "history/undomanager.h"

#include <QObject>

#include <functional>

class ApplicationState;
class HistoryHost;
class MessageBoxes;
class QAction;
class QTimer;

/// The history of every open menu and the editing session that records it: each edit runs through
/// the session inside the error handling of editing operations, records its undo state (and writes
/// the autosave file of the state before it), and Undo and Redo step through the states. A failure
/// is reported and the menu undone to its last recorded state.
class EditHistory final : public QObject, public EditingHost, public HistoryMenu
{
    Q_OBJECT

public:
    /// `autosaveFolder` receives the autosave files. After each edit, Undo or Redo `afterChange`
    /// runs: the menus follow what changed.
    EditHistory(ApplicationState& state, MessageBoxes& messages, HistoryHost& host, const QString& autosaveFolder,
                std::function<void()> afterChange, QObject* parent = nullptr);

    EditHistory(const EditHistory&) = delete;
    EditHistory& operator=(const EditHistory&) = delete;

    EditingSession& session() { return m_session; }
    UndoManager& undoManager() { return m_undoManager; }
    /// The Undo and Redo entries the history enables and disables.
    void setEntries(QAction* undo, QAction* redo);

    /// Undoes the active document's last recorded edit (also run by the error report of a failed
    /// edit). With no active editor window it goes to the error report.
    void mnuUndo_Click();
    /// Redoes the active document's last undone edit.
    void mnuRedo_Click();
    /// Collects the result of the autosave file being written, if it is done: a failed write is
    /// reported and the edit that recorded its state undone. Runs soon after every edit by itself.
    void checkAutosave();
    /// Brings Undo and Redo up to date with document `index` (0: no active editor window).
    void updateEntries(qint16 index);

    // EditingHost
    void recordSnapshot(qint16 index) override;
    bool runGuarded(const std::function<void()>& operation) override;
    bool runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded) override;
    bool runReporting(const std::function<void()>& operation) override;
    void showRefusal(const QString& text) override;

    // HistoryMenu
    void setUndoEnabled(bool enabled) override;
    void setRedoEnabled(bool enabled) override;

private:
    /// Starts looking out for the result of an autosave file being written.
    void watchAutosave();

    ApplicationState& m_state;
    MessageBoxes& m_messages;
    std::function<void()> m_afterChange;
    UndoManager m_undoManager;
    UndoErrorReport m_undoErrorReport;
    UndoController m_undoController;
    EditingSession m_session;
    QTimer* m_autosaveCheck = nullptr;
    QAction* m_undoEntry = nullptr;
    QAction* m_redoEntry = nullptr;
};
