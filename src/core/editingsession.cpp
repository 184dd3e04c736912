#include "editingsession.h"

#include "core/applicationstate.h"
#include "core/editinghost.h"
#include "core/editorview.h"
#include "editing/itemmoving.h"

namespace {

bool recordsSnapshot(const EditOperation& operation, const EditContext& context)
{
    switch (operation.recording) {
    case EditOperation::Recording::SnapshotBefore:
    case EditOperation::Recording::SnapshotBeforeUnsaved:
        return true;
    case EditOperation::Recording::SnapshotWhenLabelTagged:
        return context.window.labelEditTag;
    case EditOperation::Recording::SnapshotAfter:
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
    if (operation.needs == EditOperation::Needs::Node && selected.isNone()) {
        return false;
    }
    bool refused = false;
    bool applicable = true;
    const auto guarded = [this, &operation](const std::function<void()>& work) {
        return operation.failureUndoes ? m_host.runGuarded(work) : m_host.runReporting(work);
    };
    const bool completed = guarded([&] {
        EditContext context { m_state.document(index), selected, arguments, m_state.editing(), m_state.window(index) };
        if (operation.applicable != nullptr && !operation.applicable(context)) {
            applicable = false;
            return;
        }
        if (operation.refusal != nullptr) {
            const QString refusal = operation.refusal(context);
            if (!refusal.isEmpty()) {
                refused = true;
                m_host.showRefusal(refusal);
                return;
            }
        }
        if (recordsSnapshot(operation, context)) {
            if (operation.recording == EditOperation::Recording::SnapshotBeforeUnsaved) {
                m_state.document(index).saved = false;
            }
            m_host.recordSnapshot(index);
        }
        const TreeUpdate update = operation.apply(context);
        if (operation.recording == EditOperation::Recording::SnapshotAfter) {
            // The state recorded already holds the change, so it must not pass for the saved file:
            // an Undo back to it would otherwise let the change go unsaved without a question.
            m_state.document(index).saved = false;
            m_host.recordSnapshot(index);
        }
        refused = !update.refusal().isEmpty();
        view->applyUpdate(update);
    });
    if (!completed || refused) {
        return false;
    }
    if (!applicable) {
        return true; // nothing to do is no failure: Move up on the first item leaves everything as it is
    }
    if (operation.followedBy != nullptr) {
        return run(index, *operation.followedBy, arguments);
    }
    return true;
}

bool EditingSession::runDrop(qint16 sourceIndex, qint16 targetIndex, const DropRequest& request)
{
    DragState& drag = m_state.editing().drag;
    EditorView* targetView = m_state.editor(targetIndex);
    EditorView* sourceView = m_state.editor(sourceIndex);
    const bool sameDocument = sourceIndex == targetIndex;
    QList<qint16> recorded;
    bool refused = false;
    const bool completed = targetView != nullptr && sourceView != nullptr
        && m_host.runGuardedUndoing(
            [&] {
                MenuDocument& source = m_state.document(sourceIndex);
                MenuDocument& target = m_state.document(targetIndex);
                if (sameDocument) {
                    const QString refusal = dropRefusal(target, request);
                    if (!refusal.isEmpty()) {
                        refused = true;
                        m_host.showRefusal(refusal);
                        return;
                    }
                }
                if (!sameDocument) {
                    m_host.recordSnapshot(sourceIndex);
                    recorded.append(sourceIndex);
                }
                m_host.recordSnapshot(targetIndex);
                recorded.append(targetIndex);
                DropUpdates updates;
                if (request.copy) {
                    updates = dropCopy(source, target, request);
                } else if (!sameDocument) {
                    updates = dropMoveBetween(source, target, request, m_state.editing());
                } else {
                    updates.target = dropMoveWithin(target, request);
                }
                targetView->applyUpdate(updates.target);
                if (!updates.source.isEmpty()) {
                    sourceView->applyUpdate(updates.source);
                }
            },
            recorded);
    drag.active = false;
    drag.nodeKey.clear();
    return completed && !refused;
}
