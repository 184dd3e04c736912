#pragma once

class TreeUpdate;
struct MenuDocument;

/// A plain, step-by-step version of the subtree copy: one call per item, every child found by
/// scanning the whole array once for each place among its siblings, every key turned into an index
/// with findItemByKey. Slow on large menus but easy to check by eye; the tests hold the editor's
/// copy to exactly the documents and tree steps this one produces.
namespace LiteralSubtreeCopy {

int copyItemTree(int sourceIndex, int newParent, MenuDocument& source, MenuDocument& target, bool copyCommandDup,
                 TreeUpdate& update);

} // namespace LiteralSubtreeCopy
