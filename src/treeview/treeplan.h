#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <vector>

struct MenuDocument;

/// One node that the tree rebuild adds to the item tree.
struct PlannedNode
{
    QString key;
    /// "Root" for a node directly under the root node.
    QString parentKey;
    QString caption;
    /// The item's index in the document's item array.
    qint16 itemIndex = -1;

    friend bool operator==(const PlannedNode& left, const PlannedNode& right)
    {
        return left.key == right.key && left.parentKey == right.parentKey && left.caption == right.caption
            && left.itemIndex == right.itemIndex;
    }
    friend bool operator!=(const PlannedNode& left, const PlannedNode& right) { return !(left == right); }
};

/// One node of planTreeItems: the item it shows and the item of its parent node.
struct PlannedItem
{
    /// The item's index in the document's item array.
    int item = -1;
    /// The index of the item whose node is the parent node; -1 for the root node.
    int parentItem = -1;
};

/// The nodes the item tree shows for `document` under `hideMode`, in the order they are added, each
/// parent before its children.
///
/// The top level takes siblingOrder 1, 2, 3 ... and, for each, only the first item in array order
/// with parent -1 and that siblingOrder; it stops at the first missing siblingOrder. Below an item,
/// for siblingOrder 1 .. childCount, every item in array order with that parent and siblingOrder is
/// taken, so duplicate orders all show and orders above childCount never do. The children of an item
/// are visited whether or not the item itself is shown.
///
/// A hidden item with children (a copy-command link under hide mode 1) has no node to hang its
/// children on. They are shown under the nearest shown ancestor instead (the root node when there
/// is none): hiding links must not make the ordinary items below them vanish from the editor. Such a
/// node's parentKey is that ancestor's key.
///
/// Runs in linear time and without recursion, so a chain 32,767 items deep is fine.
QList<PlannedNode> planTree(const MenuDocument& document, int hideMode);

/// The same plan by item indices only, without a copy of any text: what a rebuild of a large tree
/// walks.
std::vector<PlannedItem> planTreeItems(const MenuDocument& document, int hideMode);
