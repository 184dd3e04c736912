#include "editingsession.h"

#include "core/applicationstate.h"
#include "core/editinghost.h"
#include "core/editorview.h"

namespace {

bool recordsSnapshot(const EditOperation& operation, const EditContext& context)
{
    switch (operation.recording) {
    case EditOperation::Recording::SnapshotBefore:
        return true;
    case EditOperation::Recording::SnapshotWhenLabelTagged:
        return context.window.labelEditTag;
    case EditOperation::Recording::Nothing:
        break;
    }
    return false;
}

} // namespace

EditingSession::EditingSession(ApplicationState& state, EditingHost& host)
    : m_state(state)
    , m_host(host)
{
}

bool EditingSession::run(const EditOperation& operation, const EditArguments& arguments)
{
    return run(m_state.activeDocumentIndex(), operation, arguments);
}

bool EditingSession::run(qint16 index, const EditOperation& operation, const EditArguments& arguments)
{
    const EditorView* view = m_state.editor(index);
    if (view == nullptr) {
        return false;
    }
    return runOn(index, view->selectedNode(), operation, arguments);
}

bool EditingSession::runOn(qint16 index, const SelectedNode& selected, const EditOperation& operation,
                           const EditArguments& arguments)
{
    EditorView* view = m_state.editor(index);
    if (view == nullptr) {
        return false;
    }
    if (operation.needs == EditOperation::Needs::ItemNode && !selected.isItem()) {
        return false; // no node, or the root, which belongs to no item
    }
    bool refused = false;
    const bool completed = m_host.runGuarded([&] {
        EditContext context { m_state.document(index), selected, arguments, m_state.editing(), m_state.window(index) };
        if (operation.refusal != nullptr) {
            const QString refusal = operation.refusal(context);
            if (!refusal.isEmpty()) {
                refused = true;
                m_host.showRefusal(refusal);
                return;
            }
        }
        if (recordsSnapshot(operation, context)) {
            m_host.recordSnapshot(index);
        }
        const TreeUpdate update = operation.apply(context);
        refused = !update.refusal().isEmpty();
        view->applyUpdate(update);
    });
    return completed && !refused;
}
