#include "edithistory.h"

#include "app/messageboxes.h"
#include "core/aboutinfo.h"
#include "core/applicationstate.h"
#include "history/editingoperation.h"
#include "model/runtimeerror.h"

#include <QAction>
#include <QTimer>

EditHistory::EditHistory(ApplicationState& state, MessageBoxes& messages, HistoryHost& host,
                         const QString& autosaveFolder, std::function<void()> afterChange, QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_messages(messages)
    , m_afterChange(std::move(afterChange))
    , m_undoManager(state.documents(), state.histories(), autosaveFolder, *this)
    , m_undoErrorReport([this](const QString& text) { m_messages.showCritical(text); }, contactLines(),
                        [this] { mnuUndo_Click(); })
    , m_undoController(state.documents(), m_undoManager, m_undoErrorReport, host)
    , m_session(state, *this)
{
    // The autosave file of an edit is written on a second thread; its result is collected soon after.
    m_autosaveCheck = new QTimer(this);
    m_autosaveCheck->setSingleShot(true);
    m_autosaveCheck->setInterval(20);
    connect(m_autosaveCheck, &QTimer::timeout, this, &EditHistory::checkAutosave);
}

void EditHistory::setEntries(QAction* undo, QAction* redo)
{
    m_undoEntry = undo;
    m_redoEntry = redo;
}

void EditHistory::mnuUndo_Click()
{
    m_undoController.mnuUndo_Click();
    m_afterChange();
}

void EditHistory::mnuRedo_Click()
{
    m_undoController.mnuRedo_Click();
    m_afterChange();
    watchAutosave();
}

void EditHistory::updateEntries(qint16 index)
{
    m_undoManager.updateMenu(index);
}

void EditHistory::watchAutosave()
{
    if (m_undoManager.isAutosavePending() && !m_autosaveCheck->isActive()) {
        m_autosaveCheck->start();
    }
}

void EditHistory::checkAutosave()
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

void EditHistory::recordSnapshot(qint16 index)
{
    m_undoManager.saveUndoState(index, true);
}

bool EditHistory::runGuarded(const std::function<void()>& operation)
{
    const bool completed = runEditingOperation(m_undoErrorReport, operation);
    // Every recorded edit marks the document unsaved and an undone failure may mark it saved
    // again; Save (and Ctrl+S) follows at once, as does every entry that depends on the selection.
    m_afterChange();
    watchAutosave();
    return completed;
}

bool EditHistory::runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded)
{
    const bool completed = runCatchingErrors(operation, [this, &recorded](const RunTimeError& error) {
        m_undoErrorReport.show(error, [this, &recorded] {
            for (auto index = recorded.crbegin(); index != recorded.crend(); ++index) {
                m_undoController.undoDocument(*index);
            }
        });
    });
    m_afterChange();
    watchAutosave();
    return completed;
}

bool EditHistory::runReporting(const std::function<void()>& operation)
{
    const bool completed
        = runCatchingErrors(operation, [this](const RunTimeError& error) { m_messages.showRunTimeError(error); });
    m_afterChange();
    watchAutosave();
    return completed;
}

void EditHistory::showRefusal(const QString& text)
{
    m_messages.showRefusal(text);
}

void EditHistory::setUndoEnabled(bool enabled)
{
    if (m_undoEntry != nullptr) {
        m_undoEntry->setEnabled(enabled);
    }
}

void EditHistory::setRedoEnabled(bool enabled)
{
    if (m_redoEntry != nullptr) {
        m_redoEntry->setEnabled(enabled);
    }
}
