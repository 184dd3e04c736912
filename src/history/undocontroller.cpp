#include "undocontroller.h"

#include "editingoperation.h"
#include "historyhost.h"
#include "model/documentlist.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/hidemode.h"
#include "undoerrorreport.h"
#include "undomanager.h"

UndoController::UndoController(DocumentList& documents, UndoManager& undoManager, UndoErrorReport& report,
                               HistoryHost& host)
    : m_documents(documents)
    , m_undoManager(undoManager)
    , m_report(report)
    , m_host(host)
{
}

void UndoController::mnuUndo_Click()
{
    step(m_host.activeDocumentIndex(), Direction::Undo);
}

void UndoController::mnuRedo_Click()
{
    step(m_host.activeDocumentIndex(), Direction::Redo);
}

void UndoController::undoDocument(qint16 index)
{
    step(index, Direction::Undo);
}

void UndoController::step(qint16 index, Direction direction)
{
    if (index == 0) {
        m_report.show(RunTimeError::noError());
        return;
    }
    runEditingOperation(m_report, [this, index, direction] {
        // The tree generation combines the hideMode from before the step with the restored one:
        // 0 and 3 are kept, 1 and 2 are added to it.
        const MenuDocument before = m_documents.document(index);
        const qint32 hideMode = before.hideMode;
        if (direction == Direction::Undo) {
            m_undoManager.undoDocument(index);
        } else {
            m_undoManager.redoDocument(index);
        }
        MenuDocument& restored = m_documents.document(index);
        restored.hideMode = HideMode::applyModeChange(restored.hideMode, hideMode);
        m_host.showRestoredState(index, before);
        if (index == m_host.activeDocumentIndex()) {
            m_host.showItemCount(int(m_documents.document(index).items.size()));
        }
    });
}
