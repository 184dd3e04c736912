#pragma once

#include <QFont>
#include <QHash>
#include <QList>
#include <QPoint>
#include <QString>
#include <QTreeWidget>

#include <functional>
#include <vector>

#include "treeview/nodestyle.h"

struct MenuDocument;

/// The item tree `lstMenu` of an editor window. Besides the tree itself it keeps the node
/// collection the editor works with: every node carries a key ("Root" for the root node, the item's
/// key for an item node), and the nodes are numbered 1, 2, ... in the order they were added, so the
/// root is node 1 and the first top-level item node 2.
///
/// Nodes must be added and removed through addNode, removeNode, clearNodes and generate only;
/// the collection does not follow items inserted or deleted through QTreeWidget directly.
///
/// The tree indents each level by the style's usual amount and shows expand markers, root included.
class ItemTree : public QTreeWidget
{
    Q_OBJECT

public:
    /// How many levels below the root generate expands. The view lays expanded submenus out
    /// recursively, one stack frame and a growing cost per level, so a pathologically deep menu
    /// would overflow the stack; real menus are a handful of levels deep and show fully expanded.
    static constexpr int expandedLevels = 1000;

    explicit ItemTree(QWidget* parent = nullptr);
    ~ItemTree() override;

    /// Number of nodes, the root included.
    int nodeCount() const;
    /// Node `index` (1-based, in the order added); nullptr outside 1 .. nodeCount().
    QTreeWidgetItem* node(int index) const;
    /// The 1-based index of `node`; 0 when it is not a node of this tree.
    int indexOfNode(const QTreeWidgetItem* node) const;
    /// The node bearing `key`; nullptr when none does.
    QTreeWidgetItem* nodeByKey(const QString& key) const;
    /// The key of `node`; empty when it is not a node of this tree.
    QString keyOf(const QTreeWidgetItem* node) const;

    /// Adds a node with `key` and `text` as the last child of the node keyed `parentKey`, or as a
    /// top-level node when `parentKey` is empty. Refused (nullptr) when `parentKey` names no node or
    /// `key` is already taken, as the tree keeps one node per key.
    QTreeWidgetItem* addNode(const QString& parentKey, const QString& key, const QString& text);
    /// One node of addNodes.
    struct NewNode
    {
        QString parentKey;
        QString key;
        QString text;
    };
    /// Adds `nodes` in order, as addNode would one by one, but hands the view each new branch at once:
    /// the copies of a branch of thousands of items arrive with one layout.
    void addNodes(const QList<NewNode>& nodes);
    /// Removes `node` with its whole subtree; the other nodes keep their order in the collection.
    void removeNode(QTreeWidgetItem* node);
    /// Moves `node` with its branch to be child `row` of `parentNode`; every node keeps its expanded
    /// state and its place in the collection.
    void moveNode(QTreeWidgetItem* node, QTreeWidgetItem* parentNode, int row);
    /// Shows `node` one place earlier (`offset` -1) or later (+1) among its siblings, with its branch.
    /// Two leaves trade their contents instead, which the view can show without laying the tree out
    /// again; the node that bears `node`'s key afterwards is returned. Nothing moves past either end.
    QTreeWidgetItem* moveAmongSiblings(QTreeWidgetItem* node, int offset);
    /// Removes every node.
    void clearNodes();

    /// The texts of the nodes from the root down to `node`, joined by "\", as shown in the editor's
    /// path label; empty when `node` is not a node of this tree.
    QString fullPath(const QTreeWidgetItem* node) const;

    /// Rebuilds the tree from `document` under its hide mode: the root "Root" / "KELV", one node per
    /// shown item (see planTree), the whole tree expanded (down to expandedLevels) and styled.
    /// Painting is suspended for the whole rebuild and resumed at its end. Selecting a node
    /// afterwards and the root's final text (showRootText) are left to the editor window, which shows
    /// the first item while the root still reads "KELV".
    void generate(const MenuDocument& document);
    /// The last step of a rebuild: the root's text tells whether items may be hidden ("KELV" or
    /// "KELV (Some items may be hidded)").
    void showRootText(int hideMode);

    /// Sets the text colour of `node` (its bold type stays).
    static void setNodeColour(QTreeWidgetItem* node, NodeStyle::Colour colour);

    /// The format of the drag data of a node being dragged.
    static QString dragFormat() { return QStringLiteral("application/x-kelv-menu-node"); }
    /// Highlights `node` as the place a dragged node would be dropped on; null takes the highlight
    /// away.
    void setDropHighlight(QTreeWidgetItem* node);
    QTreeWidgetItem* dropHighlight() const { return m_dropHighlight; }

    /// Starts editing the label of `node`; false when it cannot be edited (the root, no node).
    bool startLabelEdit(QTreeWidgetItem* node);
    /// Whether a label is being edited.
    bool isEditingLabel() const { return !m_editingKey.isEmpty(); }

    /// Re-applies the node styles to every item node from the current state of `document`, without
    /// rebuilding the tree. A node whose key names no item any more is left black and not bold.
    void colorize(const MenuDocument& document);

    /// Where the tooltip of a node comes from: asked with the node's key when the pointer rests on
    /// it, so that it tells how the item stands at that moment. An empty text shows no tooltip.
    void setToolTipSource(std::function<QString(const QString& key)> source) { m_toolTipSource = std::move(source); }
    /// The tooltip of `node`; empty when it has none.
    QString toolTipOf(const QTreeWidgetItem* node) const;

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
    /// The user pressed `button` on `node` and moved the pointer far enough to drag it.
    void dragStartRequested(QTreeWidgetItem* node, Qt::MouseButton button);
    /// A node of this program is dragged over `node` (null: over no node).
    void nodeDraggedOver(QTreeWidgetItem* node);
    /// A node of this program was dropped; `node` is the node under the pointer (or null), `globalPos`
    /// where the pointer was.
    void nodeDropped(QTreeWidgetItem* node, const QPoint& globalPos);

protected:
    bool viewportEvent(QEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void commitData(QWidget* editor) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    QFont boldFont() const;
    void onItemCollapsed(QTreeWidgetItem* node);
    /// Runs `change`, a change of the tree's shape, with the view's expanded state set aside and given
    /// back afterwards (see removeNode).
    void withExpandedStateAside(const std::function<void()>& change);
    /// Forgets what refers to nodes that are about to go.
    void forgetNodes(const std::vector<QTreeWidgetItem*>& nodes);
    void registerNode(QTreeWidgetItem* node, const QString& key);
    void renumber();

    QList<QTreeWidgetItem*> m_nodes;
    QHash<QString, QTreeWidgetItem*> m_byKey;
    QHash<const QTreeWidgetItem*, int> m_index; // 0-based position in m_nodes
    /// The node the mouse was pressed on, and where and with which button: a drag may start from it.
    QTreeWidgetItem* m_pressNode = nullptr;
    QPoint m_pressPos;
    Qt::MouseButton m_pressButton = Qt::NoButton;
    QTreeWidgetItem* m_dropHighlight = nullptr;
    /// The key of the node whose label is being edited; empty when none is.
    QString m_editingKey;
    /// Whether the open label edit was confirmed, and with which text.
    bool m_labelCommitted = false;
    QString m_committedText;
    std::function<QString(const QString& key)> m_toolTipSource;
};
