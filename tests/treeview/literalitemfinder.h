#pragma once

#include "treeview/itemfinder.h"

/// The find bar's search written the plain way: the tree's nodes planned step by step, every shown
/// caption looked through with QStringMatcher and, on request, the commands each node shows, a
/// link's target found by its key in a hash. What ItemFinder must find, in the same order.
QStringList literalFindItems(const MenuDocument& document, int hideMode, const FindRequest& request);
