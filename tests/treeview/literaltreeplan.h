#pragma once

#include "treeview/treeplan.h"

/// The tree rebuild written the plain way: the top level and every child level found by scanning the
/// whole item array once per siblingOrder, one recursive call per item, and the children of a hidden
/// item hung on the nearest shown ancestor. Quadratic and recursive, so only for small menus; the
/// tests hold the fast plan against it.
QList<PlannedNode> literalPlanTree(const MenuDocument& document, int hideMode);
