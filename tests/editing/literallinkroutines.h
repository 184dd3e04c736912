#pragma once

#include <QString>

struct MenuDocument;

/// Plain, step-by-step versions of the link and deletion routines: every lookup scans the array, the
/// child search restarts from the first slot after each removal, every pair of items is compared.
/// Too slow for large menus, but easy to check by eye; the tests hold the fast routines of the
/// editor to exactly the documents these produce.
namespace LiteralLinkRoutines {

bool sameCommands(const MenuDocument& document, int i, int j);
void normalizeCopyLinks(MenuDocument& document);
void deleteItemTree(MenuDocument& document, const QString& key);
void removeItemBranch(MenuDocument& document, const QString& key);

} // namespace LiteralLinkRoutines
