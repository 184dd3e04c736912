#pragma once

#include "editing/editcontext.h"
#include "model/menudocument.h"
#include "treeview/treeplan.h"

#include <QRandomGenerator>

/// A random node of a tree freshly built from the document, with its sibling nodes; now and then
/// the root.
inline SelectedNode randomNode(QRandomGenerator& random, const MenuDocument& document)
{
    const QList<PlannedNode> plan = planTree(document, 0);
    if (plan.isEmpty() || random.bounded(12) == 0) {
        return SelectedNode::of(SelectedNode::rootKey(), QString());
    }
    const int n = random.bounded(int(plan.size()));
    const PlannedNode& node = plan.at(n);
    SelectedNode selected = SelectedNode::of(node.key, node.parentKey);
    for (int before = n - 1; before >= 0 && selected.previousSiblingKey.isEmpty(); --before) {
        if (plan.at(before).parentKey == node.parentKey) {
            selected.previousSiblingKey = plan.at(before).key;
        }
    }
    for (int after = n + 1; after < plan.size() && selected.nextSiblingKey.isEmpty(); ++after) {
        if (plan.at(after).parentKey == node.parentKey) {
            selected.nextSiblingKey = plan.at(after).key;
        }
    }
    return selected;
}
