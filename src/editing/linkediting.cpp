#include "linkediting.h"

#include "copylinks.h"
#include "itempanel.h"

#include "model/errortable.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"
#include "treeview/hidemode.h"

namespace {

int itemIndexOf(const MenuDocument& document, const QString& key, const char* source)
{
    const int index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return index;
}

/// After a bulk change of the links: a tree that hides links is rebuilt, since items may have
/// become links or stopped being ones; then the colours follow. A document that changed is no
/// longer saved, although no undo state was recorded.
TreeUpdate afterBulkLinkChange(MenuDocument& document, const MenuItemArray& before)
{
    if (document.items != before) {
        document.saved = false;
    }
    TreeUpdate update;
    if (HideMode::marksFor(document.hideMode).copies) {
        update.regenerate();
    }
    update.recolour();
    return update;
}

} // namespace

TreeUpdate switchLink(EditContext& context)
{
    MenuDocument& document = context.document;
    const QString& key = context.selected.key;
    MenuItem& item = document.items[itemIndexOf(document, key, "chkCopyCommand_Click")];
    TreeUpdate update;
    if (context.arguments.checked && !hasLinkTarget(item.copyKey)) {
        // The box goes back to unchecked before the message, as the item's link is still off.
        update.showItem().showRefusal(QStringLiteral("Select an item to copy command before !"));
        return update;
    }
    if (item.copiesCommands != context.arguments.checked) {
        item.copiesCommands = context.arguments.checked;
        document.saved = false;
    }
    if (!item.copiesCommands && item.hasOwnCommands()) {
        update.setNodeColour(key, NodeStyle::Colour::Maroon);
    }
    update.showItem();
    if (!context.window.nodeClicked) {
        update.recolour();
    }
    return update;
}

QString linkTargetRefusal(const EditContext& context)
{
    const MenuDocument& document = context.document;
    const MenuItem& target = document.items.at(itemIndexOf(document, context.arguments.targetKey, "lstMenu_NodeClick"));
    if (target.copiesCommands || context.arguments.targetKey == context.arguments.sourceKey) {
        return QStringLiteral("You must select an item with copycommand option unchecked and not the same one !");
    }
    return QString();
}

TreeUpdate chooseLinkTarget(EditContext& context)
{
    MenuDocument& document = context.document;
    const QString sourceKey = context.arguments.sourceKey;
    const QString targetKey = context.arguments.targetKey;
    itemIndexOf(document, targetKey, "lstMenu_NodeClick");
    MenuItem& source = document.items[itemIndexOf(document, sourceKey, "lstMenu_NodeClick")];
    source.copyKey = targetKey;
    source.copiesCommands = true;

    TreeUpdate update;
    update.selectNode(sourceKey).endLinkTargetChoice();
    // Ending the choice applies the now checked box to the source, which shows the target's
    // commands.
    EditContext sourceContext { document, SelectedNode::of(sourceKey, QString()), EditArguments {}, context.editing,
                                context.window };
    sourceContext.arguments.checked = true;
    update.append(switchLink(sourceContext));
    update.setNodeColour(sourceKey, NodeStyle::Colour::Black);
    return update;
}

TreeUpdate followLink(EditContext& context)
{
    const MenuDocument& document = context.document;
    const MenuItem& item = document.items.at(itemIndexOf(document, context.selected.key, "txtItemIndexCopy_DblClick"));
    TreeUpdate update;
    if (item.copiesCommands) {
        update.clickNode(item.copyKey).focusTree();
    }
    return update;
}

TreeUpdate toggleLinkTargetChoice(EditContext&)
{
    TreeUpdate update;
    update.toggleLinkTargetChoice();
    return update;
}

TreeUpdate lookForCopyCommand(EditContext& context)
{
    const MenuItemArray before = context.document.items;
    normalizeCopyLinks(context.document);
    return afterBulkLinkChange(context.document, before);
}

TreeUpdate uncheckAllCopyCommand(EditContext& context)
{
    const MenuItemArray before = context.document.items;
    MenuItemArray& items = context.document.items;
    // Only the links are written to, so the other items stay shared with the undo states.
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (items.at(i).copiesCommands) {
            items[i].copiesCommands = false;
        }
    }
    return afterBulkLinkChange(context.document, before);
}
