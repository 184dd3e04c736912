#pragma once

#include <QString>

class QRandomGenerator;
struct MenuDocument;

/// Random menus for comparing the editor's routines with their step-by-step versions: trees of
/// varied shape stored in a shuffled array order, keys that no longer match the slots, command
/// lists drawn from a small alphabet so that identical lists are frequent, and existing links of
/// every kind (to earlier and later items, to other links, stale copyKeys on unlinked items).
namespace RandomMenu {

MenuDocument generate(QRandomGenerator& random, int itemCount);

/// Empty when parent, childCount and siblingOrder describe one tree (children of each parent
/// numbered 1..childCount); otherwise what is wrong.
QString treeNumbersProblem(const MenuDocument& document);

/// Empty when both documents are equal; otherwise the first difference, for a readable failure.
QString firstDifference(const MenuDocument& left, const MenuDocument& right);

} // namespace RandomMenu
