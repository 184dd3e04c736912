#pragma once

#include "app/itemtreemodel.h"
#include "app/treerows.h"
#include "treeview/nodestyle.h"
#include "treeview/nodetree.h"

#include <QList>
#include <QModelIndex>
#include <QPoint>
#include <QString>
#include <QTreeView>

#include <functional>
#include <utility>
#include <vector>

struct MenuDocument;

/// The item tree `lstMenu` of an editor window: a view over an ItemTreeModel of the window's
/// document. Besides the tree itself it keeps the node collection the editor works with: every node
/// carries a key ("Root" for the root node, the item's key for an item node), and the nodes are
/// numbered 1, 2, ... in the order they were added, so the root is node 1 and the first top-level
/// item node 2. Nodes are addressed by their model index.
///
/// The tree indents each level by the style's usual amount and shows expand markers, root included.
class ItemTree : public QTreeView
{
    Q_OBJECT

public:
    /// How many levels below the root a rebuild expands (see NodeTree::expandedLevels).
    static constexpr int expandedLevels = NodeTree::expandedLevels;

    explicit ItemTree(QWidget* parent = nullptr);
    ~ItemTree() override;

    /// Where the document shown comes from (asked each time, since undoing replaces it).
    void setDocumentSource(std::function<const MenuDocument&()> source)
    {
        m_model->setDocumentSource(std::move(source));
    }
    ItemTreeModel* treeModel() const { return m_model; }

    /// Number of nodes, the root included.
    int nodeCount() const { return m_model->nodes().nodeCount(); }
    /// Node `index` (1-based, in the order added); invalid outside 1 .. nodeCount().
    QModelIndex node(int index) const { return m_model->indexOf(m_model->nodes().node(index)); }
    /// The 1-based index of `node`; 0 when it is not a node of this tree.
    int indexOfNode(const QModelIndex& node) const { return NodeTree::indexOf(treeNode(node)); }
    /// The node bearing `key`; invalid when none does.
    QModelIndex nodeByKey(const QString& key) const { return m_model->indexOf(m_model->nodes().nodeByKey(key)); }
    /// The key of `node`; empty when it is not a node of this tree.
    QString keyOf(const QModelIndex& node) const
    {
        const TreeNode* found = treeNode(node);
        return found != nullptr ? found->key : QString();
    }
    /// The text `node` shows.
    QString textOf(const QModelIndex& node) const { return m_model->nodes().textOf(treeNode(node), document()); }
    /// The colour and bold type `node` is drawn with.
    NodeStyle styleOf(const QModelIndex& node) const;

    /// Adds a node with `key` and `text` as the last child of the node keyed `parentKey`. Refused
    /// (invalid) when `parentKey` names no node or `key` is already taken, as the tree keeps one node
    /// per key.
    QModelIndex addNode(const QString& parentKey, const QString& key, const QString& text);
    using NewNode = NodeTree::NewNode;
    /// Adds `nodes` in order, as addNode would one by one, but hands the view each new branch at once:
    /// the copies of a branch of thousands of items arrive with one layout, expanded as the rest of
    /// the tree.
    void addNodes(const QList<NewNode>& nodes);
    /// Removes `node` with its whole subtree; the other nodes keep their order in the collection.
    void removeNode(const QModelIndex& node);
    /// Moves `node` with its branch to be child `row` of `parentNode`; every node keeps its expanded
    /// state and its place in the collection.
    void moveNode(const QModelIndex& node, const QModelIndex& parentNode, int row);
    /// Shows `node` one place earlier (`offset` -1) or later (+1) among its siblings, with its branch.
    /// Two leaves trade their contents instead, which the view can show without laying the tree out
    /// again; the node that bears `node`'s key afterwards is returned. Nothing moves past either end.
    QModelIndex moveAmongSiblings(const QModelIndex& node, int offset);
    /// Lets `node` show `text`.
    void setNodeText(const QModelIndex& node, const QString& text);
    /// Sets the text colour of `node` (its bold type stays).
    void setNodeColour(const QModelIndex& node, NodeStyle::Colour colour);
    /// Removes every node.
    void clearNodes();

    /// The texts of the nodes from the root down to `node`, joined by "\", as shown in the editor's
    /// path label; empty when `node` is not a node of this tree.
    QString fullPath(const QModelIndex& node) const;

    /// Rebuilds the tree from the document under its hide mode: the root "Root" / "KELV", one node
    /// per shown item (see planTree), the whole tree expanded (down to expandedLevels) and styled.
    /// Painting is suspended for the whole rebuild and resumed at its end. Selecting a node
    /// afterwards and the root's final text (showRootText) are left to the editor window, which shows
    /// the first item while the root still reads "KELV".
    void generate();
    /// Shows what generate would show for the document, with the rows the view holds kept where
    /// the document keeps them: a Refresh, or a Replace that changed only texts, then lays out and
    /// remembers nothing anew, where a rebuild of a 32,767-item menu makes the view lay out every
    /// row again. Rebuilds instead while the tree is empty, shows another hide mode or has a label
    /// being edited.
    void regenerate();
    /// Brings the tree to exactly what generate would show for the document, changing only what
    /// differs from what it shows now: the rows that differ are inserted, removed or moved, and
    /// every node gets its caption and style back. `before` is the document shown until now, when
    /// known (undoing hands over the state it leaves).
    void syncTo(const MenuDocument* before);
    /// The last step of a rebuild: the root's text tells whether items may be hidden ("KELV" or
    /// "KELV (Some items may be hidded)").
    void showRootText(int hideMode);

    /// The format of the drag data of a node being dragged.
    static QString dragFormat() { return QStringLiteral("application/x-kelv-menu-node"); }
    /// Highlights `node` as the place a dragged node would be dropped on; an invalid index takes the
    /// highlight away.
    void setDropHighlight(const QModelIndex& node);
    QModelIndex dropHighlight() const;

    /// Starts editing the label of `node`; false when it cannot be edited (the root, no node).
    bool startLabelEdit(const QModelIndex& node);
    /// Whether a label is being edited.
    bool isEditingLabel() const { return !m_editingKey.isEmpty(); }

    /// Re-applies the node styles to every item node from the current state of the document,
    /// without rebuilding the tree. A node whose key names no item any more is left black and not
    /// bold.
    void colorize();
    /// The document may have changed: what the nodes remember of it is checked again.
    void documentChanged();

    /// Where the tooltip of a node comes from: asked with the node's key when the pointer rests on
    /// it, so that it tells how the item stands at that moment. An empty text shows no tooltip.
    void setToolTipSource(std::function<QString(const QString& key)> source) { m_toolTipSource = std::move(source); }
    /// The tooltip of `node`; empty when it has none.
    QString toolTipOf(const QModelIndex& node) const;

    /// Lays out the rows from the nodes in one walk (see TreeRows) where the view's own layout would
    /// ask the model row by row.
    void doItemsLayout() override;

Q_SIGNALS:
    /// A label edit has started on the node `key` (BeforeLabelEdit).
    void labelEditStarted(const QString& key);
    /// A label edit on the node `key` was confirmed with `text`, which the node now shows
    /// (AfterLabelEdit). Emitted once the editor has closed.
    void labelEditCommitted(const QString& key, const QString& text);
    /// A label edit on the node `key` was cancelled: the node keeps its text.
    void labelEditCancelled(const QString& key);
    /// The root node was collapsed; it has been expanded again at once, as the root stays open.
    void rootCollapsed();
    /// The user asked for the context menu of `node` at `globalPos`: a right click on it (pressed and
    /// released without dragging), or Shift+F10 or the Menu key on the current node.
    void contextMenuRequested(const QModelIndex& node, const QPoint& globalPos);
    /// The user pressed `button` on `node` and moved the pointer far enough to drag it.
    void dragStartRequested(const QModelIndex& node, Qt::MouseButton button);
    /// A node of this program is dragged over `node` (invalid: over no node).
    void nodeDraggedOver(const QModelIndex& node);
    /// A node of this program was dropped; `node` is the node under the pointer (or invalid),
    /// `globalPos` where the pointer was.
    void nodeDropped(const QModelIndex& node, const QPoint& globalPos);

protected:
    bool viewportEvent(QEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void commitData(QWidget* editor) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    /// Adds the rows in place where it can (see TreeRows) instead of laying out every row again.
    void rowsInserted(const QModelIndex& parent, int start, int end) override;

private:
    const MenuDocument& document() const { return m_model->document(); }
    TreeNode* treeNode(const QModelIndex& index) const { return m_model->nodeOf(index); }
    void onCollapsed(const QModelIndex& index);
    void onExpanded(const QModelIndex& index);
    /// Children `first` .. `last` of `parent` are about to go with their branches: a label edit of one
    /// of their nodes is dropped, and the view forgets which of them it shows expanded.
    void beforeBranchesGo(const TreeNode* parent, int first, int last);
    /// Runs `change`, a change of the tree's shape, with the view's expanded state set aside and
    /// given back afterwards.
    void withExpandedStateAside(const std::function<void()>& change);
    /// Forgets the edit, press and highlight of nodes that are gone.
    void forgetGoneNodes();
    void updateFonts();
    /// Asks for the context menu of the current node, just below its row.
    void requestMenuAtCurrentNode();

    ItemTreeModel* m_model = nullptr;
    TreeRows m_rows;
    /// The node the mouse was pressed on, and where and with which button: a drag may start from it.
    QString m_pressKey;
    QPoint m_pressPos;
    Qt::MouseButton m_pressButton = Qt::NoButton;
    /// The key of the node whose label is being edited; empty when none is.
    QString m_editingKey;
    /// Whether the open label edit was confirmed, and with which text.
    bool m_labelCommitted = false;
    QString m_committedText;
    std::function<QString(const QString& key)> m_toolTipSource;
    /// How many changes of the tree's shape are under way.
    int m_shapeChanges = 0;
};
