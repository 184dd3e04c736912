#include "nodestyle.h"

#include "model/menuitem.h"

NodeStyle NodeStyle::forItem(const MenuItem& item)
{
    NodeStyle style;
    if (item.childCount >= 1) {
        style.colour = Colour::Navy;
        style.bold = true;
    }
    if (!item.copiesCommands && item.commandUpperBound() >= 1) {
        style.colour = Colour::Maroon;
    }
    return style;
}

NodeStyle NodeStyle::forRoot()
{
    NodeStyle style;
    style.colour = Colour::Navy;
    style.bold = true;
    return style;
}
