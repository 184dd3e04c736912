#include "commandediting.h"

#include "model/errortable.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

namespace {

MenuItem& selectedItem(EditContext& context, const char* source)
{
    const int index = findItemByKey(context.document, context.selected.key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return context.document.items[index];
}

/// After its commands went: a submenu is navy, anything else black.
TreeUpdate withoutCommands(const EditContext& context, const MenuItem& item)
{
    TreeUpdate update;
    update.showItem();
    if (!item.hasOwnCommands()) {
        update.setNodeColour(context.selected.key,
                             item.childCount >= 1 ? NodeStyle::Colour::Navy : NodeStyle::Colour::Black);
    }
    return update;
}

} // namespace

QString commandSlotRefusal(const EditContext& context)
{
    const int index = findItemByKey(context.document, context.selected.key);
    if (index < 0 || context.arguments.slot == 0) {
        return QString();
    }
    const int commandCount = context.document.items.at(index).commandUpperBound();
    if (context.arguments.slot < 0 || context.arguments.slot > commandCount) {
        return QStringLiteral("The item has no command %1.").arg(context.arguments.slot);
    }
    return QString();
}

TreeUpdate storeCommand(EditContext& context)
{
    MenuItem& item = selectedItem(context, "cmdAdd_Click");
    const Command command { context.arguments.extension, context.arguments.text };
    if (context.arguments.slot == 0) {
        item.commands.append(command);
    } else {
        item.commands[context.arguments.slot] = command;
    }
    TreeUpdate update;
    update.showItem();
    return update;
}

TreeUpdate removeCommand(EditContext& context)
{
    MenuItem& item = selectedItem(context, "mnuRemoveCommand_Click");
    if (context.arguments.slot >= 1 && context.arguments.slot <= item.commandUpperBound()) {
        item.commands.removeAt(context.arguments.slot);
    }
    return withoutCommands(context, item);
}

TreeUpdate clearCommands(EditContext& context)
{
    MenuItem& item = selectedItem(context, "mnuClearCommands_Click");
    item.commands = MenuItem::placeholderCommands();
    return withoutCommands(context, item);
}

TreeUpdate markSpecialItem(EditContext& context)
{
    TreeUpdate update;
    update.setNodeText(context.selected.key, context.arguments.text);
    return update;
}
