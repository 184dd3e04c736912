#pragma once

#include <QString>

struct MenuItem;

/// Which items the item tree of an editor window hides. The hide mode belongs to the document
/// (0 shows all items, 1 hides copy-command links, 2 hides items without commands, 3 hides both)
/// and survives tree rebuilds; it is never saved in the menu file.
namespace HideMode {

/// The hide mode after a rebuild asked for `modeChange`: -3 keeps the mode (Refresh); any other
/// change is added, after which a change of 0 ("show all") forces 0 and a change of 3 ("hide both")
/// forces 3. The single Hide entries add or take away 1 or 2, so their sums are kept as they are.
int applyModeChange(int hideMode, int modeChange);

/// Whether `item` gets a node in the tree under `hideMode`. A mode other than 1, 2 or 3 hides
/// nothing.
bool isVisible(const MenuItem& item, int hideMode);

/// The check marks of the three Hide entries of the main window for a document's hide mode.
struct Marks
{
    bool copies = false;
    bool withoutCommand = false;
    bool both = false;
};

/// The marks shown when an editor window is activated: 1 marks "... copied", 2 "... without
/// command", 3 all three entries, any other mode none.
Marks marksFor(int hideMode);

/// The text of the tree's root node: "KELV", or "KELV (Some items may be hidded)" while a hide mode
/// is in force.
QString rootText(int hideMode);

} // namespace HideMode
