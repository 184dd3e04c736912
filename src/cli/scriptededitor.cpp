#include "scriptededitor.h"

#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/linkediting.h"
#include "history/editingoperation.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "scriptoperation.h"
#include "treeview/treeplan.h"

ScriptedEditor::ScriptedEditor(const MenuDocument& document, bool copyCommandDup)
    : m_session(m_state, *this)
{
    m_index = m_state.appendDocumentSlot();
    MenuDocument& slot = m_state.document(m_index);
    slot = document;
    slot.windowIndex = m_index;
    slot.hideMode = 0;
    Options options;
    options.copyCommandDup = copyCommandDup;
    m_state.setOptions(options);
    m_state.setEditor(m_index, &m_view);
    m_state.setActiveDocumentIndex(m_index);
}

const MenuDocument& ScriptedEditor::document() const
{
    return m_state.document(m_index);
}

bool ScriptedEditor::select(const QString& key)
{
    const QList<PlannedNode> plan = planTree(document(), 0);
    m_view.nodeKeys = QStringList { SelectedNode::rootKey() };
    m_view.selected = SelectedNode();
    for (const PlannedNode& node : plan) {
        m_view.nodeKeys.append(node.key);
        if (node.key == key) {
            m_view.selected.key = node.key;
            m_view.selected.parentKey = node.parentKey;
        }
    }
    // A freshly built tree shows its first item as a click on it would.
    m_state.window(m_index).nodeClicked = !plan.isEmpty();
    if (key.isEmpty()) {
        return true;
    }
    const qsizetype nodeIndex = m_view.nodeKeys.indexOf(key);
    if (nodeIndex > 0) {
        m_state.setLastNodeIndex(qint16(nodeIndex + 1));
        return true;
    }
    return requireItemNode(key);
}

bool ScriptedEditor::requireItemNode(const QString& key)
{
    if (key == SelectedNode::rootKey()) {
        m_failure = QStringLiteral("the root node belongs to no item");
        return false;
    }
    if (findItemByKey(document(), key) < 0) {
        m_failure = QStringLiteral("no item has the key \"%1\"").arg(key);
        return false;
    }
    if (!m_view.nodeKeys.contains(key)) {
        m_failure = QStringLiteral("the item \"%1\" has no node in the tree").arg(key);
        return false;
    }
    return true;
}

bool ScriptedEditor::run(const ScriptOperation& operation)
{
    m_failure.clear();
    m_view.clear();
    const QString& op = operation.op;
    if (!select(operation.key)) {
        return false;
    }
    if (op == QLatin1String("new-item")) {
        return runOperation(EditOperations::newItem) && finishLabelEdit(operation.caption, operation.hasCaption);
    }
    if (op == QLatin1String("rename")) {
        return runOperation(EditOperations::rename) && finishLabelEdit(operation.caption, true);
    }
    if (op == QLatin1String("delete")) {
        return runOperation(EditOperations::deleteItem);
    }
    if (op == QLatin1String("link")) {
        if (!requireItemNode(operation.target)) {
            return false;
        }
        // The choice starts on the selected item; a click on the target ends it.
        EditArguments arguments;
        arguments.sourceKey = operation.key;
        arguments.targetKey = operation.target;
        m_state.window(m_index).linkTargetChoice = true;
        const bool linked = runOperation(EditOperations::chooseLinkTarget, arguments);
        m_state.window(m_index).linkTargetChoice = false;
        return linked;
    }
    if (op == QLatin1String("link-on") || op == QLatin1String("link-off")) {
        EditArguments arguments;
        arguments.checked = op == QLatin1String("link-on");
        return runOperation(EditOperations::switchLink, arguments);
    }
    if (op == QLatin1String("look-for-links")) {
        return runOperation(EditOperations::lookForCopyCommand);
    }
    if (op == QLatin1String("uncheck-links")) {
        return runOperation(EditOperations::uncheckAllCopyCommand);
    }
    m_failure = QStringLiteral("unknown operation \"%1\"").arg(op);
    return false;
}

bool ScriptedEditor::runOperation(const EditOperation& operation, const EditArguments& arguments)
{
    if (m_session.run(m_index, operation, arguments)) {
        return true;
    }
    if (m_failure.isEmpty()) {
        m_failure = m_view.refusal.isEmpty() ? QStringLiteral("refused") : m_view.refusal;
    }
    return false;
}

bool ScriptedEditor::finishLabelEdit(const QString& caption, bool confirmed)
{
    const QString key = m_view.labelEditKey;
    if (key.isEmpty()) {
        return true;
    }
    SelectedNode node;
    node.key = key;
    if (!m_session.runOn(m_index, node, EditOperations::beginLabelEdit)) {
        return false;
    }
    if (!confirmed) {
        return true; // the edit was left with Escape: the caption stays
    }
    EditArguments arguments;
    arguments.text = caption;
    return m_session.runOn(m_index, node, EditOperations::storeLabelEdit, arguments);
}

void ScriptedEditor::recordSnapshot(qint16)
{
    // A script has no undo: the file is written only once every operation has run.
}

bool ScriptedEditor::runGuarded(const std::function<void()>& operation)
{
    return runCatchingErrors(operation, [this](const RunTimeError& error) { m_failure = error.report(); });
}

void ScriptedEditor::showRefusal(const QString& text)
{
    m_failure = text;
}
