#pragma once

#include <QString>
#include <QStringList>

class ItemTree;
class QTreeView;

/// Reads the rows a tree view has laid out, for tests of the item tree's own row layout.
namespace LaidOutRows {

/// One line per row the view has laid out, in order, with all it keeps of the row (its node, parent
/// row, level, whether it is expanded, has children, has siblings after it, how many rows lie below
/// it, its height and spanning), then the row height the view assumes with the range of its scroll
/// bar, and the expanded nodes it remembers ("gone" for one whose rows went).
QStringList of(const QTreeView& view);

/// How the rows of `tree` as they stand (laid out by the tree, then changed by the view itself), and
/// as the tree lays them out afresh, differ from the rows the tree view's own layout gives, or that
/// the view still remembers expanded nodes that went; empty when all is well. The view is left laid
/// out by its own layout.
QString disagreement(ItemTree& tree);

/// Whether `view` is due to lay out all its rows again.
bool isLayoutDue(const QTreeView& view);

/// Whether `view` is animating the opening or closing of a node.
bool isAnimating(const QTreeView& view);

} // namespace LaidOutRows
