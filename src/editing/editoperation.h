#pragma once

#include "editcontext.h"
#include "treeupdate.h"

#include <QString>

/// One editing operation as the editing session runs it: what it needs selected, whether it records
/// an undo snapshot first, an optional check that refuses it before anything is recorded, and the
/// change itself. The change works on the document only (finding items by key, never by a kept
/// index) and says in its TreeUpdate what the view must do; it never touches a widget, a dialog or
/// the history. Operations are plain data, so the editor's menus and `kelvmenu edit` run the very
/// same ones.
struct EditOperation
{
    enum class Needs {
        /// Only an open document (the bulk link commands).
        Document,
        /// A selected node, the root included (New Sub-item puts a top-level item under the root);
        /// with no node selected the operation is refused without a word.
        Node,
        /// A selected node that stands for an item; with no node or the root selected the operation
        /// is refused without a word.
        ItemNode,
    };

    enum class Recording {
        /// Records nothing (the copy-command check box, the bulk link commands, showing things).
        Nothing,
        /// Records an undo snapshot before the change.
        SnapshotBefore,
        /// Records an undo snapshot after the change (the command editor stores the command first).
        SnapshotAfter,
        /// Records an undo snapshot before the change when the window's label-edit tag says so
        /// (the end of a label edit).
        SnapshotWhenLabelTagged,
        /// Records an undo snapshot before the change, of the document marked unsaved first: the
        /// change puts the file's menu in its place (Reload), so once undone it no longer matches the
        /// file, even where it did before.
        SnapshotBeforeUnsaved,
    };

    /// The operation's name in `kelvmenu edit` and in error sources.
    const char* name;
    Needs needs;
    Recording recording;
    /// Why the operation must not run, as the exclamation message the user sees; an empty text
    /// lets it run. Null when the operation is never refused.
    QString (*refusal)(const EditContext& context);
    /// Changes the document and returns what the view must do. Throws RunTimeError on failure.
    TreeUpdate (*apply)(EditContext& context);
    /// Whether there is anything to do at all; when not, nothing is recorded, changed or said (Move
    /// up on the first item). Null when there always is.
    bool (*applicable)(const EditContext& context) = nullptr;
    /// The operation that runs next, on its own, once this one has run to its end (Cut's Delete).
    const EditOperation* followedBy = nullptr;
    /// A failure is only reported, nothing undone (the command editor's store, whose snapshot comes
    /// after the change: undoing would take back an earlier edit).
    bool failureUndoes = true;
};
