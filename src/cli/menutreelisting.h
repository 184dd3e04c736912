#pragma once

#include <QString>

class TextOutput;
struct MenuDocument;

/// The menu tree as text, one item a line in the order of the menu file, two spaces of indent per
/// level: caption, two spaces, the key in brackets, two spaces, the number of commands the item
/// runs ("1 command", "2 commands"), and for a copy-command link " -> " and the key of the item
/// whose commands it reuses. Example: `  Unpack  [E2]  2 commands -> E1`.
QString menuTreeListing(const MenuDocument& document);

/// The same listing written to `output` line by line, so that listing a menu takes little memory
/// beyond the menu itself.
void writeMenuTreeListing(const MenuDocument& document, TextOutput& output);
