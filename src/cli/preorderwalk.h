#pragma once

#include <QList>

struct MenuDocument;

/// One item of a walk through the menu tree: its array index and its depth (0 = top level).
struct PreOrderEntry
{
    int index = 0;
    int depth = 0;
};

/// The items in the order the menu file lists them: top-level items by siblingOrder 1..count of
/// top-level items, each followed by its children by siblingOrder 1..childCount, items that share
/// a siblingOrder in array order. Items whose parent chain does not reach the top level, or whose
/// siblingOrder lies outside their parent's range, are left out, as the file leaves them out.
QList<PreOrderEntry> preOrderWalk(const MenuDocument& document);
