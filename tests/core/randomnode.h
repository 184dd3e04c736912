#pragma once

#include "editing/editcontext.h"
#include "editing/plannedselection.h"
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
    return selectedNodeOf(plan, random.bounded(int(plan.size())));
}
