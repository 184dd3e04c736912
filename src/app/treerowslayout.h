#pragma once

#include <QModelIndex>

#include <functional>

class ItemTreeModel;
class QTreeView;

/// Lays out the rows of an editor window's tree in one walk over its node tree, with the very result
/// the tree view's own layout gives.
///
/// The view's own layout asks the model for every row of every open node and looks each row up among
/// its expanded nodes: three lookups in hashes of thousands of persistent indexes per row. On a menu
/// of 32,767 items that was the larger part of every Undo that adds or removes a node, and of every
/// rebuild. Here the expanded nodes are gathered once, by address, and the rows follow from the nodes.
///
/// It reaches into the view's private row list, so it lays out only what it can vouch for: the whole
/// model shown from its top, no hidden rows, no row spanning the columns. Otherwise the view lays
/// itself out.
class TreeRowsLayout
{
public:
    /// The height of a row, as the view measures it for `index`.
    using RowHeight = std::function<int(const QModelIndex& index)>;

    /// Whether layOut can lay out `view`, which shows `model`.
    static bool applies(const QTreeView& view, const ItemTreeModel& model);
    /// Lays out the rows of `view` from the nodes of `model` and returns true, or returns false and
    /// changes nothing when it does not apply. Rows of uniform height take the height `rowHeight`
    /// gives the first. The caller then completes the layout as the view's own does after laying out
    /// its rows (geometries, header).
    static bool layOut(QTreeView& view, const ItemTreeModel& model, const RowHeight& rowHeight);
};
