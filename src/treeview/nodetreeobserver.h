#pragma once

struct TreeNode;

/// What a view of a NodeTree hears of its changes: each change of shape is announced before it
/// happens and confirmed after, the way an item model tells its views. Rows are places among the
/// children of `parent`, from 0; a null `parent` stands for the top, where the root is row 0.
class NodeTreeObserver
{
public:
    virtual ~NodeTreeObserver() = default;

    /// Nodes will be inserted as children `first` .. `last` of `parent`.
    virtual void nodesAboutToBeInserted(const TreeNode* parent, int first, int last) = 0;
    virtual void nodesInserted() = 0;
    /// Children `first` .. `last` of `parent` will be removed with everything below them.
    virtual void nodesAboutToBeRemoved(const TreeNode* parent, int first, int last) = 0;
    /// The nodes removed are out of the tree, numbered -1 (TreeNode::ordinal), and still in memory
    /// until this returns; the others are at their new rows.
    virtual void nodesRemoved() = 0;
    /// Child `row` of `parent` will move, with its branch, to be child `newRow` of `newParent`
    /// (`newRow` counted once the move is done).
    virtual void nodeAboutToBeMoved(const TreeNode* parent, int row, const TreeNode* newParent, int newRow) = 0;
    virtual void nodeMoved() = 0;
    /// What children `first` .. `last` of `parent` show has changed.
    virtual void nodesChanged(const TreeNode* parent, int first, int last) = 0;
    /// The whole tree will be replaced.
    virtual void treeAboutToBeReset() = 0;
    virtual void treeReset() = 0;
};
