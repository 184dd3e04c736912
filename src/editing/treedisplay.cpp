#include "treedisplay.h"

#include "model/menudocument.h"
#include "treeview/hidemode.h"

namespace {

/// Applies `modeChange` to the document's hide mode and rebuilds the tree under it.
TreeUpdate rebuildWith(MenuDocument& document, int modeChange)
{
    document.hideMode = HideMode::applyModeChange(document.hideMode, modeChange);
    TreeUpdate update;
    update.regenerate();
    return update;
}

} // namespace

TreeUpdate refreshList(EditContext& context)
{
    TreeUpdate update = rebuildWith(context.document, -3);
    update.recolour();
    return update;
}

// The check mark of each Hide entry follows the document's hide mode: a marked entry takes its part
// away again, an unmarked one adds it.

TreeUpdate hideCopies(EditContext& context)
{
    const bool marked = HideMode::marksFor(context.document.hideMode).copies;
    return rebuildWith(context.document, marked ? -1 : 1);
}

TreeUpdate hideWithoutCommand(EditContext& context)
{
    const bool marked = HideMode::marksFor(context.document.hideMode).withoutCommand;
    return rebuildWith(context.document, marked ? -2 : 2);
}

TreeUpdate hideBoth(EditContext& context)
{
    const bool marked = HideMode::marksFor(context.document.hideMode).both;
    return rebuildWith(context.document, marked ? 0 : 3);
}
