#include "scripttreeview.h"

#include "editing/treeupdate.h"

QString ScriptTreeView::nodeKey(int nodeIndex) const
{
    return nodeIndex >= 1 && nodeIndex <= nodeKeys.size() ? nodeKeys.at(nodeIndex - 1) : QString();
}

void ScriptTreeView::applyUpdate(const TreeUpdate& update)
{
    for (const TreeStep& step : update.steps()) {
        switch (step.kind) {
        case TreeStep::Kind::ShowRefusal:
            if (refusal.isEmpty()) {
                refusal = step.text;
            }
            break;
        case TreeStep::Kind::ShowMessage:
            messages.append(step.text);
            break;
        case TreeStep::Kind::StartLabelEdit:
            labelEditKey = step.key;
            break;
        default:
            // Nodes, colours and the selection belong to a tree that is built afresh for every
            // operation of a script.
            break;
        }
    }
}

void ScriptTreeView::clear()
{
    refusal.clear();
    messages.clear();
    labelEditKey.clear();
}
