#pragma once

#include "core/applicationstate.h"
#include "core/editinghost.h"
#include "core/editingsession.h"
#include "scripttreeview.h"

#include <QString>
#include <QStringList>

struct MenuDocument;
struct ScriptOperation;

/// The editor as `kelvmenu edit` drives it: one document in one editor window, and every operation
/// run exactly as the editor's own command runs it, through the same editing session, when the node
/// of the operation's key is the selected node of a tree freshly built from the document with
/// nothing hidden. Nothing is recorded for undo; the first refusal or failure ends the run.
class ScriptedEditor final : public EditingHost
{
public:
    /// `copyCommandDup` is the "CopyCommand at Duplication" check mark.
    ScriptedEditor(const MenuDocument& document, bool copyCommandDup);

    ScriptedEditor(const ScriptedEditor&) = delete;
    ScriptedEditor& operator=(const ScriptedEditor&) = delete;

    /// Runs `operation`. False when the editor refused it, when its key names no item (or one the tree
    /// does not show), or when it failed; failure() then says why.
    bool run(const ScriptOperation& operation);

    /// Why the last operation did not run: the editor's message, or the error report.
    QString failure() const { return m_failure; }
    /// The messages the last operation showed (the editor shows them in plain message boxes).
    QStringList messages() const { return m_view.messages; }
    const MenuDocument& document() const;

    // EditingHost
    void recordSnapshot(qint16 index) override;
    bool runGuarded(const std::function<void()>& operation) override;
    bool runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded) override;
    bool runReporting(const std::function<void()>& operation) override;
    void showRefusal(const QString& text) override;

private:
    /// Selects the node of `key` in a tree freshly built from the document; false (with a failure)
    /// when there is no such node. The root node "Root" only when `rootAllowed`.
    bool select(const QString& key, bool rootAllowed = false);
    /// The item node `key` names in that tree; false (with a failure) when there is none.
    bool requireItemNode(const QString& key);
    /// The end of the label edit an operation started: confirmed with `caption`, or cancelled.
    bool finishLabelEdit(const QString& caption, bool confirmed);
    bool runOperation(const EditOperation& operation, const EditArguments& arguments = EditArguments());
    /// A drag of the selected node dropped on the operation's target with its choices.
    bool drop(const ScriptOperation& operation);

    ApplicationState m_state;
    qint16 m_index = 0;
    ScriptTreeView m_view;
    EditingSession m_session;
    QString m_failure;
};
