#pragma once

#include <QModelIndex>
#include <QtGlobal>

#include <functional>
#include <optional>
#include <vector>

class ItemTreeModel;
class QTreeView;
struct TreeNode;

/// The rows an editor window's tree shows: laid out in one walk over its nodes, and changed in place
/// when nodes come and go, each time with the very rows the tree view's own layout would give.
///
/// The view's own layout asks the model for every row of every open node and looks each row up among
/// its expanded nodes: three lookups in hashes of thousands of persistent indexes per row. And it lays
/// out every row again after any row comes or goes. On a menu of 32,767 items that was the larger
/// part of every Undo that adds or removes a node. Here the expanded nodes are gathered once, by
/// address, and the rows follow from the nodes; a node that comes or goes changes only its own rows,
/// the totals of the rows above it and the indexes of its later siblings.
///
/// It reaches into the view's private row list, so it handles only what it can vouch for: the whole
/// model shown from its top, no hidden rows, no row spanning the columns, the rows standing (no
/// layout due). Otherwise the view lays itself out.
class TreeRows
{
public:
    /// The height of a row, as the view measures it for `index`.
    using RowHeight = std::function<int(const QModelIndex& index)>;

    /// The rows of `view`, which shows `model`; both outlive this. `scheduleLayout` makes the view due
    /// to lay out every row (an item view's scheduleDelayedItemsLayout).
    TreeRows(QTreeView& view, const ItemTreeModel& model, std::function<void()> scheduleLayout);
    /// Listens to the model's removals and changes of layout. Called once the view shows the model,
    /// so that it hears a change of layout after the view and its selection did.
    void listen(ItemTreeModel& model);

    /// Whether the rows can be laid out here: the whole model shown from its top, no row hidden or
    /// spanning the columns.
    bool applies() const { return applies(m_view, m_model); }
    /// Whether the rows of `view`, which shows `model`, can be laid out here.
    static bool applies(const QTreeView& view, const ItemTreeModel& model);
    /// Whether the view has a layout of its rows due, which makes the rows it holds stale.
    bool isLayoutDue() const;

    /// Lays out every row from the nodes and returns true, or returns false and changes nothing when
    /// that does not apply. Rows of uniform height take the height `rowHeight` gives the first. The
    /// caller then completes the layout as the view's own does after laying out its rows.
    bool layOut(const RowHeight& rowHeight);

    /// Children `first` .. `last` of `parent`, whose branches hold `going`, are about to go. The view
    /// forgets which of those nodes it showed expanded. When the rows stand, finds theirs, to be taken
    /// out once the nodes went, before the view hears of it; otherwise the view is due to lay out its
    /// rows afresh.
    void nodesAboutToGo(const TreeNode* parent, int first, int last, const std::vector<const TreeNode*>& going);
    /// Takes the rows of at most `count` removals out in place from now on (-1: of every removal);
    /// past those, the view lays out every row once, afterwards. Each removal in place costs time in
    /// the number of rows, so a change that removes many branches at once lays out instead.
    void limitRemovalsInPlace(int count) { m_removalsInPlaceLeft = count; }

    /// Rows `first` .. `last` were inserted under `parent`: adds them in place and returns true when
    /// the parent's children are shown and the rows stand (the caller then completes the insertion as
    /// an item view does), or returns false and changes nothing (the view handles the insertion).
    bool rowsInserted(const QModelIndex& parent, int first, int last);

    /// Expands `nodes` in the view, without a word. A few are expanded among rows that stand, each
    /// adding its own rows; past those, the view lays out every row once, afterwards.
    void expand(const std::vector<TreeNode*>& nodes);
    /// Collapses `nodes` in the view, without a word.
    void collapse(const std::vector<TreeNode*>& nodes);
    /// Expands every node marked expanded (after the view forgot them).
    void expandMarked();

private:
    /// Where the rows of nodes about to go lie, found while the rows stood.
    struct RowsToGo
    {
        const TreeNode* parent = nullptr;
        int first = 0;
        /// The parent's row, -1 when it is not shown.
        int parentRow = -1;
        /// Whether the parent's children are shown; then the rows below are theirs.
        bool shown = false;
        /// The first row that goes, and how many go (the nodes and their shown descendants).
        int firstRow = 0;
        int rowCount = 0;
        /// The row of the sibling just before the first node that goes; -1 when it is the first child.
        int previousRow = -1;
        /// The first node that goes, and how many times every row had been laid out when its row was
        /// found: the rows are taken out only while they still stand as they were found.
        const TreeNode* firstNode = nullptr;
        quint64 layouts = 0;
    };

    /// Finds the rows of the children `first` .. `last` of `parent` among rows that stand, checking
    /// each against its node; false when they do not match.
    bool findRowsToGo(const TreeNode* parent, int first, int last, RowsToGo& found) const;
    /// Points the rows of `parent`'s children from `firstChild` on, starting at row `row`, at their
    /// current indexes; false (and nothing changed) when a row is not the node's.
    bool reindexSiblings(const TreeNode* parent, size_t firstChild, int row);
    /// Adds `delta` to the total of row `row` and of every row above it.
    void addToTotals(int row, int delta);
    /// Takes out the rows of the nodes announced to nodesAboutToGo, which went; false when they were
    /// not found or no longer match their nodes.
    bool takeOutRowsToGo();
    /// Expands (`expanded`) or collapses `nodes` in the view, without a word and without animation.
    void setExpandedAtOnce(const std::vector<TreeNode*>& nodes, bool expanded);
    /// The model told the view that its layout changed, which makes the view due to lay out every row:
    /// when the rows were taken out in place and no layout ran since, that layout is called off.
    void layoutChanged();

    QTreeView& m_view;
    const ItemTreeModel& m_model;
    std::function<void()> m_scheduleLayout;
    std::optional<RowsToGo> m_toGo;
    int m_removalsInPlaceLeft = -1;
    /// Rows were brought up to date in place since the view last heard of a change of layout.
    bool m_changedInPlace = false;
    /// How many times every row was laid out, here or by the view; and how many at the last change
    /// in place.
    quint64 m_layouts = 0;
    quint64 m_layoutsAtChange = 0;
};
