#pragma once

#include "editing/editoperation.h"

#include <QtGlobal>

class ApplicationState;
class EditingHost;
struct DropRequest;

/// Runs every editing operation for the editor windows (and for `kelvmenu edit`), always the same
/// way: refuse it when the window has no suitable node selected, check what the operation itself
/// refuses, record the undo snapshot, change the document, and hand the operation's TreeUpdate to
/// the window. All of it runs inside the error handling of editing operations, so a failure is
/// reported and the document undone to its last recorded state.
class EditingSession final
{
public:
    EditingSession(ApplicationState& state, EditingHost& host);

    EditingSession(const EditingSession&) = delete;
    EditingSession& operator=(const EditingSession&) = delete;

    /// Runs `operation` on the active document with the selected node of its editor window.
    /// Returns whether it ran to its end (also when there was nothing to do): false when it was
    /// refused (no item selected, or the operation's own refusal) or failed.
    bool run(const EditOperation& operation, const EditArguments& arguments = EditArguments());
    /// Runs `operation` on document `index` with the selected node of its editor window.
    bool run(qint16 index, const EditOperation& operation, const EditArguments& arguments = EditArguments());
    /// Runs `operation` on document `index` with `node` as its node: the node whose label edit has
    /// ended, which may no longer be the selected one.
    bool runOn(qint16 index, const SelectedNode& node, const EditOperation& operation,
               const EditArguments& arguments = EditArguments());

    /// A branch dragged from the tree of document `sourceIndex` dropped on a node of document
    /// `targetIndex`, as `request` says. Records an undo snapshot of the source document (when it is
    /// another one) and of the target document, so that each window undoes its own part; a failure
    /// undoes both. A drop into the dragged branch itself is refused. Ends the drag in any case.
    bool runDrop(qint16 sourceIndex, qint16 targetIndex, const DropRequest& request);

private:
    ApplicationState& m_state;
    EditingHost& m_host;
};
