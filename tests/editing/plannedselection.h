#pragma once

#include "editing/editcontext.h"
#include "treeview/treeplan.h"

#include <QList>

/// Node `n` of a planned tree as the editor window tells its selected node: its key, its parent
/// node and the sibling nodes just before and after it (the nodes under the same parent node, in
/// the order they were added).
inline SelectedNode selectedNodeOf(const QList<PlannedNode>& plan, qsizetype n)
{
    const PlannedNode& node = plan.at(n);
    SelectedNode selected = SelectedNode::of(node.key, node.parentKey);
    for (qsizetype before = n - 1; before >= 0 && selected.previousSiblingKey.isEmpty(); --before) {
        if (plan.at(before).parentKey == node.parentKey) {
            selected.previousSiblingKey = plan.at(before).key;
        }
    }
    for (qsizetype after = n + 1; after < plan.size() && selected.nextSiblingKey.isEmpty(); ++after) {
        if (plan.at(after).parentKey == node.parentKey) {
            selected.nextSiblingKey = plan.at(after).key;
        }
    }
    return selected;
}
