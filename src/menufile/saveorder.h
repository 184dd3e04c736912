#pragma once

#include <QList>

struct MenuDocument;

/// One item of the walk through the menu tree: its array index and its depth (0 = top level).
struct SaveOrderEntry
{
    qint32 index = 0;
    qint16 depth = 0;
};

/// The items in the order a menu file lists them: the tree walked in pre-order by parent and
/// siblingOrder, never by array order. The top level goes by siblingOrder up to its highest order
/// (so an item after a gap in the numbering is kept); the children of an item by siblingOrder
/// 1..childCount; items that share a siblingOrder in array order. Items whose parent chain does not
/// reach the top level, whose siblingOrder is below 1 or, below the top level, above their parent's
/// childCount are left out. Iterative: a menu nested thousands of levels deep is fine.
QList<SaveOrderEntry> saveOrder(const MenuDocument& document);
