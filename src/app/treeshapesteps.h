#pragma once

#include "editing/treeupdate.h"

#include <QList>

class ItemTree;

/// The steps of a tree update that change the item tree's nodes themselves: adding them (the nodes
/// of a copied branch join the tree together), removing, moving, re-texting and recolouring them.
/// A moved node that was selected stays selected and in view.
namespace TreeShapeSteps {

/// Whether `kind` is a step of this kind.
bool handles(TreeStep::Kind kind);

/// Carries out `steps[index]` on `tree`, with the AddNode steps right after an AddNode step; returns
/// the index of the last step it carried out.
qsizetype apply(ItemTree& tree, const QList<TreeStep>& steps, qsizetype index);

} // namespace TreeShapeSteps
