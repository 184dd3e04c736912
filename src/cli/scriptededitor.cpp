#include "scriptededitor.h"

#include "commands/commandediting.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "editing/linkediting.h"
#include "editing/subtreecopy.h"
#include "editing/textreplacement.h"
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

bool ScriptedEditor::select(const QString& key, bool rootAllowed)
{
    const QList<PlannedNode> plan = planTree(document(), 0);
    m_view.nodeKeys = QStringList { SelectedNode::rootKey() };
    m_view.selected = SelectedNode();
    m_view.nodeParents.clear();
    for (const PlannedNode& node : plan) {
        m_view.nodeKeys.append(node.key);
        m_view.nodeParents.insert(node.key, node.parentKey);
    }
    for (qsizetype n = 0; n < plan.size(); ++n) {
        const PlannedNode& node = plan.at(n);
        if (node.key != key) {
            continue;
        }
        m_view.selected.key = node.key;
        m_view.selected.parentKey = node.parentKey;
        // Its sibling nodes are the nodes under the same parent node, in the order they were added.
        for (qsizetype before = n - 1; before >= 0; --before) {
            if (plan.at(before).parentKey == node.parentKey) {
                m_view.selected.previousSiblingKey = plan.at(before).key;
                break;
            }
        }
        for (qsizetype after = n + 1; after < plan.size(); ++after) {
            if (plan.at(after).parentKey == node.parentKey) {
                m_view.selected.nextSiblingKey = plan.at(after).key;
                break;
            }
        }
    }
    // A freshly built tree shows its first item as a click on it would.
    m_state.window(m_index).nodeClicked = !plan.isEmpty();
    if (key.isEmpty()) {
        return true;
    }
    if (rootAllowed && key == SelectedNode::rootKey()) {
        m_view.selected.key = key;
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
    // New Sub-item alone acts on the root node too: it makes a top-level item there.
    const bool onNode = op == QLatin1String("new-sub-item");
    if (!select(operation.key, onNode)) {
        return false;
    }
    if (op == QLatin1String("new-item")) {
        return runOperation(EditOperations::newItem) && finishLabelEdit(operation.caption, operation.hasCaption);
    }
    if (onNode) {
        return runOperation(EditOperations::newSubItem) && finishLabelEdit(operation.caption, operation.hasCaption);
    }
    if (op == QLatin1String("rename")) {
        return runOperation(EditOperations::rename) && finishLabelEdit(operation.caption, true);
    }
    if (op == QLatin1String("delete")) {
        return runOperation(EditOperations::deleteItem);
    }
    if (op == QLatin1String("copy")) {
        return runOperation(EditOperations::copy);
    }
    if (op == QLatin1String("cut")) {
        return runOperation(EditOperations::cut);
    }
    if (op == QLatin1String("paste")) {
        return runOperation(EditOperations::paste);
    }
    if (op == QLatin1String("duplicate")) {
        return runOperation(EditOperations::duplicate);
    }
    if (op == QLatin1String("move-up")) {
        return runOperation(EditOperations::moveUp);
    }
    if (op == QLatin1String("move-down")) {
        return runOperation(EditOperations::moveDown);
    }
    if (op == QLatin1String("indent")) {
        return runOperation(EditOperations::moveIntoItemAbove);
    }
    if (op == QLatin1String("outdent")) {
        return runOperation(EditOperations::moveOutOfParent);
    }
    if (op == QLatin1String("drop")) {
        return drop(operation);
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
    if (op == QLatin1String("replace")) {
        EditArguments arguments;
        arguments.text = operation.find;
        arguments.replacement = operation.replacement;
        arguments.checked = operation.key.isEmpty(); // "Replace on all items" without a branch
        return runOperation(EditOperations::replace, arguments);
    }
    if (op == QLatin1String("add-command") || op == QLatin1String("edit-command")) {
        EditArguments arguments;
        arguments.extension = operation.extension;
        arguments.text = operation.command;
        arguments.slot = operation.slot; // 0 for add-command: a new last command
        return runOperation(EditOperations::storeCommand, arguments);
    }
    if (op == QLatin1String("remove-command")) {
        EditArguments arguments;
        arguments.slot = operation.slot;
        return runOperation(EditOperations::removeCommand, arguments);
    }
    if (op == QLatin1String("clear-commands")) {
        return runOperation(EditOperations::clearCommands);
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

bool ScriptedEditor::drop(const ScriptOperation& operation)
{
    const bool onRoot = operation.target == SelectedNode::rootKey();
    if (!onRoot && !requireItemNode(operation.target)) {
        return false;
    }
    const bool next = operation.place == QLatin1String("next");
    if (onRoot && next) {
        m_failure = QStringLiteral("nothing can be placed next to the root node");
        return false;
    }
    // A drag of the selected node, dropped with the drop menu's choice.
    DragState& drag = m_state.editing().drag;
    drag.nodeKey = operation.key;
    drag.document = m_index;
    drag.button = DragState::Button::Right;
    drag.active = true;
    drag.dropAsChild = !next;
    drag.dropAsSibling = next;
    drag.dropCopy = operation.copy;
    drag.dropCancelled = false;
    if (isDropIgnored(drag, false, m_index, operation.target)) {
        drag.active = false;
        return true; // dropped on itself: nothing happens
    }
    const DropRequest request = dropRequestOf(drag, operation.target, m_view.nodeParents.value(operation.target),
                                              m_state.editing().copyCommandDup);
    if (m_session.runDrop(m_index, m_index, request)) {
        return true;
    }
    if (m_failure.isEmpty()) {
        m_failure = QStringLiteral("refused");
    }
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

bool ScriptedEditor::runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>&)
{
    // Nothing was recorded, and nothing is written after a failure: there is nothing to undo.
    return runGuarded(operation);
}

bool ScriptedEditor::runReporting(const std::function<void()>& operation)
{
    return runGuarded(operation);
}

void ScriptedEditor::showRefusal(const QString& text)
{
    m_failure = text;
}
