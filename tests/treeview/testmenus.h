#pragma once

#include "model/menudocument.h"

#include <QString>

/// Small builders for the menus the item tree tests show.
namespace TestMenus {

/// An item keyed `key` with that caption, the given tree numbers and `commandCount` real commands.
MenuItem item(const QString& key, qint16 parent, qint16 childCount, qint16 siblingOrder, int commandCount = 0);

/// `item` turned into a copy-command link to `targetKey`.
MenuItem linked(MenuItem item, const QString& targetKey);

/// A random menu drawn from `seed`: sometimes a well-formed tree in shuffled array order, sometimes
/// one with damaged numbers (duplicate or missing siblingOrders, orders above childCount, wrong
/// childCounts, parents out of range), with random commands and copy-command links.
MenuDocument randomMenu(quint32 seed);

/// A chain `depth` items deep: each item the only child of the one before it.
MenuDocument chainMenu(int depth);

} // namespace TestMenus
