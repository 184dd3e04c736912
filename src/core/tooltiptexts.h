#pragma once

#include <QString>

struct MenuDocument;

/// The tooltips of an editor window. They are worked out from the document when the pointer rests
/// on a control, so they always tell how the menu stands now.
namespace ToolTipTexts {

/// How many captions a node's path names at most; a deeper item's path starts with "...".
constexpr int maxPathDepth = 12;
/// How many characters a row of a command's tooltip holds before it is broken at a blank.
constexpr int commandRowWidth = 100;

/// The path of item `itemIndex`: the captions from the top level down to the item, joined by "\"
/// as in the editor's path label, without the root. Parents hidden in the tree are named too.
QString itemPath(const MenuDocument& document, int itemIndex);

/// The tooltip of the tree node of item `itemIndex`: its path, the number of commands it runs, and
/// for a copy-command link the caption of the item whose commands it uses.
QString forNode(const MenuDocument& document, int itemIndex);

/// The tooltip of the link-target field of item `itemIndex`: the caption of the item its target
/// number names; empty when the item has no target or the target names no item.
QString forLinkTarget(const MenuDocument& document, int itemIndex);

/// The tooltip of a command-list line too long to show: the whole line, the lines of the command
/// ("||") on rows of their own, and rows longer than `rowWidth` characters broken at blanks.
QString forCommandLine(const QString& line, int rowWidth = commandRowWidth);

} // namespace ToolTipTexts
