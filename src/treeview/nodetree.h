#pragma once

#include "keymap.h"
#include "model/menuitemarray.h"
#include "nodestyle.h"
#include "treenode.h"

#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <vector>

class NodeTreeObserver;
struct MenuDocument;

/// The nodes of the item tree of one editor window, without any widget: their shape, their keys,
/// the node collection and what each node shows. A view shows it through an item model (the
/// observer hears every change in the order an item model must announce it).
///
/// The node collection numbers the nodes 1, 2, ... in the order they were added: the root is node
/// 1 and, right after a rebuild, node 2 is the first top-level item. Removing nodes closes the gap.
///
/// A node shows its item's caption, read from the document, unless it was given a text of its own
/// that differs from it; its colour and bold type are kept in the node and follow the document only
/// when the tree is recoloured or rebuilt, because the editor recolours at chosen moments only.
///
/// Nothing recurses: a menu may nest 32,767 levels deep.
class NodeTree final
{
public:
    /// How many levels below the root a rebuild expands. The view lays expanded submenus out
    /// recursively, one stack frame and a growing cost per level, so a pathologically deep menu
    /// would overflow the stack; real menus are a handful of levels deep and show fully expanded.
    static constexpr int expandedLevels = 1000;

    static QString rootKey() { return QStringLiteral("Root"); }

    NodeTree() = default;
    ~NodeTree();
    NodeTree(const NodeTree&) = delete;
    NodeTree& operator=(const NodeTree&) = delete;

    /// Who hears of the changes; may be null.
    void setObserver(NodeTreeObserver* observer) { m_observer = observer; }

    /// The root node; null while the tree is empty (before the first rebuild).
    TreeNode* root() const { return m_nodes.empty() ? nullptr : m_nodes.front(); }
    /// Number of nodes, the root included.
    int nodeCount() const { return int(m_nodes.size()); }
    /// Node `index` (1-based, in collection order); null outside 1 .. nodeCount().
    TreeNode* node(int index) const;
    /// The 1-based collection index of `node`, a node of this tree; 0 for null.
    static int indexOf(const TreeNode* node) { return node != nullptr ? node->ordinal + 1 : 0; }
    /// The node bearing `key`; null when none does.
    TreeNode* nodeByKey(const QString& key) const { return m_byKey.value(key, nullptr); }
    /// The index of the item `node` stands for in `document` (the first item bearing its key); -1
    /// for the root or when no item bears it.
    int itemOf(const TreeNode* node, const MenuDocument& document) const;
    /// What `node` shows: its own text, or else its item's caption (empty when it has no item).
    QString textOf(const TreeNode* node, const MenuDocument& document) const;
    /// The texts of the nodes from the root down to `node`, joined by "\".
    QString fullPath(const TreeNode* node, const MenuDocument& document) const;
    /// The number of levels between `node` and the root (0 for the root).
    static int depthOf(const TreeNode* node);
    /// Whether `ancestor` is `node` or lies above it.
    static bool isWithin(const TreeNode* node, const TreeNode* ancestor);

    /// The document may have changed since nodes last looked for their items: positions found
    /// before are checked again before they are used. Call before reading after any change.
    void documentChanged() { m_itemIndexFresh = false; }

    /// Rebuilds the tree from `document` under its hide mode (see planTreeItems): the root with the
    /// text "KELV" and one node per shown item, styled, and marked expanded down to expandedLevels.
    void generate(const MenuDocument& document);
    /// Brings the tree to exactly what generate would make of `document`, changing only what
    /// differs: nodes are removed, moved and inserted where the shape differs, and the rest keep
    /// their place, so the view keeps what it laid out. `before`, when given, is the document the
    /// tree showed until now: only nodes whose caption differs from it are repainted. Returns the
    /// nodes whose expanded mark was set, which the view must expand; those whose mark was taken
    /// back are added to `unmarked`, when given.
    std::vector<TreeNode*> syncTo(const MenuDocument& document, const MenuDocument* before = nullptr,
                                  std::vector<TreeNode*>* unmarked = nullptr);
    /// Removes every node.
    void clear();
    /// Makes the next syncTo compare every node with the document, instead of trusting that the
    /// shape and the looks left by the last rebuild or sync still stand where nothing changed them.
    /// Both give the same tree; tests compare them.
    void forgetSyncedShape()
    {
        shapeChanged();
        for (TreeNode* node : m_nodes) {
            node->showsSyncedRecord = false;
        }
    }
    /// The hide mode the tree was last rebuilt or synced for.
    int shownHideMode() const { return m_syncedHideMode; }

    /// Adds a node with `key` and `text` as the last child of the node `parentKey`, or as the
    /// root when `parentKey` is empty and the tree is empty. Refused (null) when `parentKey` names no
    /// node or `key` is already taken, as the tree keeps one node per key.
    TreeNode* addNode(const QString& parentKey, const QString& key, const QString& text, const MenuDocument& document);
    /// One node of addNodes.
    struct NewNode
    {
        QString parentKey;
        QString key;
        QString text;
    };
    /// Adds `nodes` in order, as addNode would one by one, but each new branch joins the tree at
    /// once, so that the copies of a branch of thousands of items arrive as one insertion. Returns
    /// the nodes made.
    std::vector<TreeNode*> addNodes(const QList<NewNode>& nodes, const MenuDocument& document);
    /// Removes `node` with its branch; the other nodes keep their order in the collection.
    void removeNode(TreeNode* node);
    /// Moves `node` with its branch to be child `row` of `parent` (clamped to its children); refused
    /// when `parent` lies in the branch itself.
    void moveNode(TreeNode* node, TreeNode* parent, int row);
    /// Shows `node` one place earlier (`offset` -1) or later (+1) among its siblings, with its branch.
    /// Two leaves trade what they show and their places in the collection instead, so nothing in the
    /// view's layout moves; the node that bears `node`'s key afterwards is returned. Nothing moves past
    /// either end.
    TreeNode* moveAmongSiblings(TreeNode* node, int offset);
    /// Lets `node` show `text` (its own text when it differs from its item's caption).
    void setText(TreeNode* node, const QString& text, const MenuDocument& document);
    /// Marks `node` expanded or not, as the view shows it once its branch was opened or closed (by
    /// the user, or for copies that arrive); a later sync marks it as a rebuild would again.
    void setExpandedMark(TreeNode* node, bool expanded);
    /// Sets the colour of `node`; its bold type stays.
    void setColour(TreeNode* node, NodeStyle::Colour colour);
    /// Re-applies the node styles to every item node from `document`, without rebuilding. A node
    /// whose key names no item any more is black and not bold.
    void colorize(const MenuDocument& document);

    /// Whether a rebuild marks `node`, `depth` levels below the root, expanded: the root always,
    /// every other node that has children down to expandedLevels.
    static bool shouldExpand(const TreeNode* node, int depth);
    /// Children `first` .. `last` of `parent` and every node below them, each before the nodes below it.
    static std::vector<const TreeNode*> branchesOf(const TreeNode* parent, int first, int last);

private:
    /// Notes a change of shape other than a rebuild or a sync: the next sync compares the shape.
    void shapeChanged()
    {
        m_shapeSynced = false;
        m_unsettled.clear();
        m_allUnsettled = false;
    }
    TreeNode* newNode(const QString& key, TreeNode* parent);
    void deleteNode(TreeNode* node);
    /// Lets `node` show `text`, or its item's caption again when `own` is false.
    void setOwnText(TreeNode* node, bool own, const QString& text = QString());
    void attach(TreeNode* node, TreeNode* parent, int row);
    void detach(TreeNode* node);
    void registerNode(TreeNode* node);
    /// Takes `top` with its branch out of the tree and the key map; the nodes are added to `gone`
    /// and leave the collection, and memory, with finishRemovals, or, in a sync, once the
    /// collection is made again.
    void removeBranch(TreeNode* top, std::vector<TreeNode*>& gone);
    void finishRemovals(std::vector<TreeNode*>& gone);
    void renumber();
    /// Notes that the tree now has the shape a rebuild makes of `document` (each node's itemHint
    /// being the item it was made for), so that a later syncTo can tell from the document alone
    /// whether the shape still holds.
    void rememberSyncedShape(const MenuDocument& document);
    /// Whether `document` plans the very nodes the tree was last synced to and no edit has changed
    /// the tree's shape since: then only what the nodes show can differ.
    bool keepsSyncedShape(const MenuDocument& document) const;
    /// syncTo when keepsSyncedShape holds and `before` has as many items as `document`: every node
    /// stays, and only texts, styles and marks are brought back.
    std::vector<TreeNode*> refreshInPlace(const MenuDocument& document, const MenuDocument& before,
                                          std::vector<TreeNode*>* unmarked);
    /// The root's text and style as a rebuild leaves them; adds the root to `changed` when they differ.
    void restoreRoot(const MenuDocument& document, std::vector<TreeNode*>& changed);
    /// Sets every node's expanded mark as a rebuild does (m_nodes in collection order, each parent
    /// before its children); returns the nodes newly marked and adds those unmarked to `unmarked`.
    std::vector<TreeNode*> settleMarks(std::vector<TreeNode*>* unmarked);
    /// settleMarks for `nodes` alone, in their order (all nodes when they are many).
    std::vector<TreeNode*> settleMarksOf(const std::vector<TreeNode*>& nodes, std::vector<TreeNode*>* unmarked);
    static void settleMark(TreeNode* node, int depth, std::vector<TreeNode*>& expandNow,
                           std::vector<TreeNode*>* unmarked);
    /// Notes that the tree changed what `node` shows or its mark since the last rebuild or sync.
    void unsettle(const TreeNode* node) const;
    /// Emits nodesChanged for `changed`, in runs of siblings.
    void announceChanged(std::vector<TreeNode*>& changed);
    void deleteAll();
    const KeyMap<int>& itemIndex(const MenuDocument& document) const;

    NodeTreeObserver* m_observer = nullptr;
    std::vector<TreeNode*> m_nodes;
    /// The texts of the few nodes that show one of their own.
    QHash<const TreeNode*, QString> m_ownTexts;
    /// Nodes come from blocks rather than one allocation each; freed ones are used again.
    std::vector<std::unique_ptr<TreeNode[]>> m_blocks;
    size_t m_usedInLastBlock = 0;
    std::vector<TreeNode*> m_freeNodes;
    KeyMap<TreeNode*> m_byKey;
    /// The first item bearing each key, built when a node's remembered position proves wrong.
    mutable KeyMap<int> m_itemIndex;
    mutable bool m_itemIndexFresh = false;
    /// What the last rebuild or sync made the tree from: the item records themselves (shared with
    /// the document until an edit writes a copy of its own, so where it still shares them their
    /// shape is the synced one without looking), the hide mode, and the item each node of m_nodes
    /// was made for; valid while m_shapeSynced.
    MenuItemArray m_syncedArray;
    int m_syncedHideMode = 0;
    std::vector<int> m_syncedItemOf;
    /// Cleared by every change of shape other than a rebuild or a sync.
    bool m_shapeSynced = false;
    /// While m_shapeSynced, every node has what a rebuild gives it from m_syncedArray (its item's
    /// style, its expanded mark, no text of its own, and the item it was made for as its hint),
    /// except the nodes the tree changed since: their ordinals, or all nodes once they would
    /// outnumber them. Captions are read from the document and compared with the one shown before.
    mutable std::vector<int> m_unsettled;
    mutable bool m_allUnsettled = false;
};
