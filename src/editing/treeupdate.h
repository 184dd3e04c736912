#pragma once

#include "treeview/nodestyle.h"

#include <QList>
#include <QString>

/// One thing the editor window must do after an editing operation changed its document. The steps
/// of an operation run in order: the item tree is patched (nodes added, removed, re-texted,
/// recoloured) rather than rebuilt, unless a step says to regenerate it.
struct TreeStep
{
    enum class Kind {
        /// Add a node `key` with `text` as the last child of the node `parentKey` ("Root" for the
        /// root node). A new branch shows expanded, as the rest of the tree.
        AddNode,
        /// Remove the node `key` with its whole subtree.
        RemoveNode,
        /// Set the text of the node `key`.
        SetNodeText,
        /// Show the node `key` with its branch one place earlier, or later, among its sibling nodes;
        /// every node keeps its expanded state and the selection stays.
        MoveNodeUp,
        MoveNodeDown,
        /// Move the node `key` with its branch to be the first child of the node `parentKey`; every
        /// node keeps its expanded state and the selection stays.
        MoveNodeUnder,
        /// Move the node `key` with its branch to be the last child of the node `parentKey`; every
        /// node keeps its expanded state and the selection stays.
        MoveNodeToLastChild,
        /// Move the node `key` with its branch to be the sibling directly after the node
        /// `siblingKey`; every node keeps its expanded state and the selection stays.
        MoveNodeAfter,
        /// Set the text colour of the node `key` (its bold type stays).
        SetNodeColour,
        /// When the tree holds nothing but the root node, add a node `key` with `text` under it.
        AddNodeWhenOnlyRoot,
        /// Re-apply the node styles to every node (ColorizeMenu).
        Recolour,
        /// Rebuild the tree from the document under its hide mode, and show its first item.
        Regenerate,
        /// Show the document's item count in the status bar.
        ShowItemCount,
        /// Show the place of the item `key` among its siblings and its number of children in the
        /// status bar, "(position ; children)".
        ShowPosition,
        /// Show the busy notice and stop the tree from painting until HideBusy.
        ShowBusy,
        HideBusy,
        /// Make the node `key` the selected node, without the click behaviour.
        SelectNode,
        /// Select the node `key` and run the click behaviour on it (status bar, item panel).
        ClickNode,
        /// Select the first item node (the second node of the tree) and run the click behaviour.
        ClickFirstItemNode,
        /// Show the selected item again in the item panel (path, link, commands) without a click.
        ShowItem,
        /// Start editing the label of the node `key`.
        StartLabelEdit,
        /// Start or leave the choice of a link target (press or release the button that starts it).
        ToggleLinkTargetChoice,
        /// Leave the choice of a link target (release the button that started it).
        EndLinkTargetChoice,
        /// Give the tree the keyboard focus.
        FocusTree,
        /// Tell the user `text` (a plain message with an OK button).
        ShowMessage,
        /// Tell the user `text` with the exclamation icon: the user's mistake, nothing was changed.
        ShowRefusal,
    };

    Kind kind;
    QString key;
    QString parentKey;
    QString text;
    NodeStyle::Colour colour = NodeStyle::Colour::Black;
    QString siblingKey = QString();

    friend bool operator==(const TreeStep& left, const TreeStep& right)
    {
        return left.kind == right.kind && left.key == right.key && left.parentKey == right.parentKey
            && left.text == right.text && left.colour == right.colour && left.siblingKey == right.siblingKey;
    }
    friend bool operator!=(const TreeStep& left, const TreeStep& right) { return !(left == right); }
};

/// What the view must do after an editing operation, step by step. Built by the operations of the
/// core; carried out by the editor window (or ignored where there is no window, as in scripts).
class TreeUpdate
{
public:
    const QList<TreeStep>& steps() const { return m_steps; }
    bool isEmpty() const { return m_steps.isEmpty(); }

    TreeUpdate& addNode(const QString& parentKey, const QString& key, const QString& text);
    TreeUpdate& removeNode(const QString& key);
    TreeUpdate& setNodeText(const QString& key, const QString& text);
    TreeUpdate& moveNodeUp(const QString& key);
    TreeUpdate& moveNodeDown(const QString& key);
    TreeUpdate& moveNodeUnder(const QString& key, const QString& parentKey);
    TreeUpdate& moveNodeToLastChild(const QString& key, const QString& parentKey);
    TreeUpdate& moveNodeAfter(const QString& key, const QString& siblingKey);
    TreeUpdate& setNodeColour(const QString& key, NodeStyle::Colour colour);
    TreeUpdate& addNodeWhenOnlyRoot(const QString& key, const QString& text);
    TreeUpdate& recolour();
    TreeUpdate& regenerate();
    TreeUpdate& showItemCount();
    TreeUpdate& showPosition(const QString& key);
    TreeUpdate& showBusy();
    TreeUpdate& hideBusy();
    TreeUpdate& selectNode(const QString& key);
    TreeUpdate& clickNode(const QString& key);
    TreeUpdate& clickFirstItemNode();
    TreeUpdate& showItem();
    TreeUpdate& startLabelEdit(const QString& key);
    TreeUpdate& toggleLinkTargetChoice();
    TreeUpdate& endLinkTargetChoice();
    TreeUpdate& focusTree();
    TreeUpdate& showMessage(const QString& text);
    TreeUpdate& showRefusal(const QString& text);
    /// Appends the steps of `other`.
    TreeUpdate& append(const TreeUpdate& other);

    /// The text of the first ShowRefusal step; empty when the operation refused nothing.
    QString refusal() const;

    friend bool operator==(const TreeUpdate& left, const TreeUpdate& right) { return left.m_steps == right.m_steps; }
    friend bool operator!=(const TreeUpdate& left, const TreeUpdate& right) { return !(left == right); }

private:
    TreeUpdate& add(TreeStep step);

    QList<TreeStep> m_steps;
};
