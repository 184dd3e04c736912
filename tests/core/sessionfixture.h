#pragma once

#include "fakeeditorview.h"

#include "core/applicationstate.h"
#include "core/editinghost.h"
#include "core/editingsession.h"
#include "history/editingoperation.h"
#include "history/historyhost.h"
#include "history/historymenu.h"
#include "history/undocontroller.h"
#include "history/undoerrorreport.h"
#include "history/undomanager.h"
#include "model/runtimeerror.h"

#include <QStringList>
#include <QTemporaryDir>

/// The editing session as the main window holds it, without a window: the application state with
/// one document shown in a FakeEditorView, the history with its autosave files in a temporary
/// folder, the error report whose undo is the real Undo, and a host that records what the user would
/// have been told.
class SessionFixture final : public EditingHost, public HistoryHost, public HistoryMenu
{
public:
    SessionFixture()
        : undoManager(state.documents(), state.histories(), folder.path(), *this)
        , report([this](const QString& text) { criticalMessages.append(text); }, QStringLiteral("    contact"),
                 [this] { controller.mnuUndo_Click(); })
        , controller(state.documents(), undoManager, report, *this)
        , session(state, *this)
    {
    }

    SessionFixture(const SessionFixture&) = delete;
    SessionFixture& operator=(const SessionFixture&) = delete;

    /// Shows `document` as a newly opened, saved menu in the fake view and makes it the active one.
    qint16 open(const MenuDocument& document)
    {
        const qint16 index = state.appendDocumentSlot();
        MenuDocument& slot = state.document(index);
        slot = document;
        slot.windowIndex = index;
        slot.saved = true;
        state.setEditor(index, &view);
        state.setActiveDocumentIndex(index);
        return index;
    }

    MenuDocument& document() { return state.document(state.activeDocumentIndex()); }
    int undoCount() { return state.histories().history(state.activeDocumentIndex()).undoCount(); }

    // EditingHost
    void recordSnapshot(qint16 index) override
    {
        recordedDocuments.append(state.document(index));
        undoManager.saveUndoState(index, true);
    }
    bool runGuarded(const std::function<void()>& operation) override
    {
        return runEditingOperation(report, [this, &operation] {
            operation();
            undoManager.completeAutosave();
        });
    }
    bool runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded) override
    {
        return runCatchingErrors(
            [this, &operation] {
                operation();
                undoManager.completeAutosave();
            },
            [this, &recorded](const RunTimeError& error) {
                report.show(error, [this, &recorded] {
                    for (auto index = recorded.crbegin(); index != recorded.crend(); ++index) {
                        controller.undoDocument(*index);
                    }
                });
            });
    }
    bool runReporting(const std::function<void()>& operation) override
    {
        return runCatchingErrors(
            [this, &operation] {
                operation();
                undoManager.completeAutosave();
            },
            [this](const RunTimeError& error) { criticalMessages.append(error.report()); });
    }
    void showRefusal(const QString& text) override { refusals.append(text); }

    // HistoryHost
    qint16 activeDocumentIndex() const override { return state.activeDocumentIndex(); }
    void regenerateTree(qint16) override { ++regenerations; }
    void showRestoredState(qint16, const MenuDocument&) override { ++regenerations; }
    void showItemCount(int) override { }

    // HistoryMenu
    void setUndoEnabled(bool enabled) override { undoEnabled = enabled; }
    void setRedoEnabled(bool enabled) override { redoEnabled = enabled; }

    QTemporaryDir folder;
    ApplicationState state;
    FakeEditorView view;
    UndoManager undoManager;
    UndoErrorReport report;
    UndoController controller;
    EditingSession session;

    /// The document as each snapshot recorded it, in order.
    QList<MenuDocument> recordedDocuments;
    QStringList refusals;
    QStringList criticalMessages;
    int regenerations = 0;
    bool undoEnabled = false;
    bool redoEnabled = false;
};
