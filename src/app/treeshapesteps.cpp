#include "treeshapesteps.h"

#include "app/itemtree.h"
#include "app/paintingsuspended.h"

#include <QItemSelectionModel>

namespace {

void moveNode(ItemTree& tree, const TreeStep& step)
{
    QModelIndex node = tree.nodeByKey(step.key);
    if (!node.isValid()) {
        return;
    }
    const bool wasCurrent = tree.currentIndex() == node;
    {
        const PaintingSuspended suspended(&tree);
        switch (step.kind) {
        case TreeStep::Kind::MoveNodeUnder:
            tree.moveNode(node, tree.nodeByKey(step.parentKey), 0);
            break;
        case TreeStep::Kind::MoveNodeToLastChild: {
            const QModelIndex parentNode = tree.nodeByKey(step.parentKey);
            tree.moveNode(node, parentNode, tree.model()->rowCount(parentNode));
            break;
        }
        case TreeStep::Kind::MoveNodeAfter: {
            const QModelIndex sibling = tree.nodeByKey(step.siblingKey);
            if (sibling.isValid() && sibling.parent().isValid()) {
                // The row is counted without the node itself, which may come before its new place.
                const bool earlierSibling = node.parent() == sibling.parent() && node.row() < sibling.row();
                tree.moveNode(node, sibling.parent(), sibling.row() + (earlierSibling ? 0 : 1));
            }
            break;
        }
        default:
            tree.moveAmongSiblings(node, step.kind == TreeStep::Kind::MoveNodeUp ? -1 : 1);
            break;
        }
        node = tree.nodeByKey(step.key);
    }
    if (wasCurrent) {
        tree.selectionModel()->setCurrentIndex(node, QItemSelectionModel::ClearAndSelect);
        tree.scrollTo(node);
    }
}

} // namespace

namespace TreeShapeSteps {

bool handles(TreeStep::Kind kind)
{
    switch (kind) {
    case TreeStep::Kind::AddNode:
    case TreeStep::Kind::RemoveNode:
    case TreeStep::Kind::SetNodeText:
    case TreeStep::Kind::MoveNodeUp:
    case TreeStep::Kind::MoveNodeDown:
    case TreeStep::Kind::MoveNodeUnder:
    case TreeStep::Kind::MoveNodeToLastChild:
    case TreeStep::Kind::MoveNodeAfter:
    case TreeStep::Kind::SetNodeColour:
    case TreeStep::Kind::AddNodeWhenOnlyRoot:
        return true;
    default:
        break;
    }
    return false;
}

qsizetype apply(ItemTree& tree, const QList<TreeStep>& steps, qsizetype index)
{
    const TreeStep& step = steps.at(index);
    switch (step.kind) {
    case TreeStep::Kind::AddNode: {
        QList<ItemTree::NewNode> added;
        for (; index < steps.size() && steps.at(index).kind == TreeStep::Kind::AddNode; ++index) {
            added.append({ steps.at(index).parentKey, steps.at(index).key, steps.at(index).text });
        }
        tree.addNodes(added);
        return index - 1;
    }
    case TreeStep::Kind::RemoveNode:
        tree.removeNode(tree.nodeByKey(step.key));
        break;
    case TreeStep::Kind::SetNodeText:
        tree.setNodeText(tree.nodeByKey(step.key), step.text);
        break;
    case TreeStep::Kind::SetNodeColour:
        tree.setNodeColour(tree.nodeByKey(step.key), step.colour);
        break;
    case TreeStep::Kind::AddNodeWhenOnlyRoot:
        if (tree.nodeCount() == 1) {
            tree.addNode(step.parentKey, step.key, step.text);
        }
        break;
    default:
        moveNode(tree, step);
        break;
    }
    return index;
}

} // namespace TreeShapeSteps
