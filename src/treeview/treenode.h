#pragma once

#include "nodestyle.h"

#include <QString>

#include <vector>

/// One node of an item tree (see NodeTree): the root "Root" or the node of one item, found again by
/// the item's key. What the node shows is read from the document, except where the tree was told to
/// show something else (a special item's name, the label a user typed, the root's text). A tree of
/// 32,767 items keeps one per item, so it holds nothing that most nodes would leave empty.
struct TreeNode
{
    QString key;
    TreeNode* parent = nullptr;
    std::vector<TreeNode*> children;
    /// Place among the parent's children; 0 for the root.
    int row = 0;
    /// Place in the node collection (the order nodes were added, as renumbered), from 0.
    int ordinal = 0;
    /// The index of the item found bearing `key` last time; checked before it is trusted.
    mutable int itemHint = -1;
    /// Colour and bold type, as last applied; they follow the document only when the tree is
    /// recoloured or rebuilt.
    NodeStyle style;
    /// Whether the view shows the node's children.
    bool expanded = false;
    /// The node shows a text of its own (kept by its tree) rather than its item's caption.
    bool hasOwnText = false;
    /// The node shows what a rebuild makes of the record of item itemHint in the records its tree
    /// was last rebuilt or synced from: that record's style and caption, and no text of its own.
    /// Cleared by every change the tree makes to the node itself.
    mutable bool showsSyncedRecord = false;
};
