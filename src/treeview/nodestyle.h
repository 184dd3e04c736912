#pragma once

#include <QtGlobal>

struct MenuItem;

/// How one node of the item tree is drawn. Colours are named rather than given as QColor so that
/// the rule stays in the core; the tree widget maps them to the RGB values it paints.
struct NodeStyle
{
    // One byte: every node of a tree of 32,767 items keeps one.
    enum class Colour : quint8 { Black, Navy, Maroon };

    Colour colour = Colour::Black;
    bool bold = false;

    /// Submenus (childCount >= 1) are navy and bold; an item that is not a copy-command link and
    /// holds commands of its own is maroon, keeping the bold of a submenu; anything else is black
    /// and not bold. A link is never maroon, even when it still keeps commands of its own.
    static NodeStyle forItem(const MenuItem& item);

    /// The root node "KELV": navy and bold.
    static NodeStyle forRoot();

    friend bool operator==(const NodeStyle& left, const NodeStyle& right)
    {
        return left.colour == right.colour && left.bold == right.bold;
    }
    friend bool operator!=(const NodeStyle& left, const NodeStyle& right) { return !(left == right); }
};
