#pragma once

#include <QString>

struct MenuDocument;

/// What every editing operation must leave true of a document: items stored densely with unique
/// keys "E" + number never above lastIndex; parent, childCount and siblingOrder describing one tree
/// (children of each parent, and the top level, numbered 1..n without gaps; no cycles); and every
/// active link naming an existing item.
namespace DocumentInvariants {

/// Empty when `document` keeps them all; otherwise the first that it breaks.
QString problem(const MenuDocument& document);

} // namespace DocumentInvariants
