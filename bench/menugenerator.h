#pragma once

#include "model/menudocument.h"

#include <QList>
#include <QString>

/// The shape of a generated menu's tree.
enum class MenuShape {
    /// Top-level items with direct children only; one of them holds a wide branch.
    Flat,
    /// Chains about 200 levels deep, one after another. One chain of 32,767 levels would make a
    /// file of over 1 GB (three markers per level on every caption line), which no user has.
    Deep,
    /// Random depths up to 30 levels with varied numbers of children.
    Mixed,
};

/// Large menus for the benchmark programs, laid out as right after reading a file: items in tree
/// pre-order, item i keyed "E" + i, lastIndex the upper bound, no links yet. Every item has several
/// commands, and many items share one of a pool of command lists, so normalizeCopyLinks forms
/// links. The same options always give the same menu.
class MenuGenerator final
{
public:
    struct Options
    {
        MenuShape shape = MenuShape::Mixed;
        /// The largest menu a menu file can hold.
        int itemCount = 32767;
        /// Items in the branch of the first item ("E0"), itself included; the rest of the menu follows.
        int branchSize = 10000;
        int minCommands = 2;
        int maxCommands = 5;
        /// Out of 100 items, how many take their commands from the shared pool.
        int sharedListPercent = 60;
        /// Number of distinct shared command lists.
        int sharedListCount = 300;
        quint32 seed = 1;
    };

    static MenuDocument generate(const Options& options);

    static QList<MenuShape> allShapes();
    static QString shapeName(MenuShape shape);

    /// Number of items in the branch of the item with `key`, the item included; 0 for no such item.
    static int branchSize(const MenuDocument& document, const QString& key);
};
