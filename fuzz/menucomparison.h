#pragma once

#include <QString>

struct MenuDocument;

/// How much of two documents must agree.
enum class ComparedDetail {
    /// The tree as the writer walks it: captions, depths, parents and the commands each item is
    /// written with. Array order, keys, links and the stored tree numbers may differ: an edited
    /// menu may keep numbers the walk does not follow (a pasted record keeps its old child count),
    /// which a file cannot hold and need not.
    WrittenTree,
    /// Besides the written tree, every item written, and every item at the same array index with
    /// the same key, tree numbers, own commands and link. Levels are left out: a file's levels
    /// count markers, which only the nesting of the written file keeps.
    WholeDocument,
};

/// The first difference between `expected` and `actual`, in words; empty when they agree.
QString menuDifference(const MenuDocument& expected, const MenuDocument& actual, ComparedDetail detail);
