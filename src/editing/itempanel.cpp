#include "itempanel.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"

namespace {

QStringList commandLines(const MenuItem& item)
{
    QStringList lines;
    for (qsizetype slot = 1; slot < item.commands.size(); ++slot) {
        const Command& command = item.commands.at(slot);
        lines.append(command.extension + QLatin1Char('=') + command.command);
    }
    return lines;
}

} // namespace

bool hasLinkTarget(const QString& copyKey)
{
    return !copyKey.isEmpty() && copyKey != QLatin1String("-1");
}

ItemPanel itemPanel(const MenuDocument& document, int index)
{
    const MenuItem& item = document.items.at(index);
    ItemPanel panel;
    panel.linked = item.copiesCommands;
    if (item.copiesCommands || hasLinkTarget(item.copyKey)) {
        panel.linkTarget = QString::number(findItemByKey(document, item.copyKey));
    }
    if (!item.copiesCommands) {
        panel.commandLines = commandLines(item);
    } else {
        // A link that names no item shows no commands rather than failing.
        const int target = findItemByKey(document, item.copyKey);
        if (target >= 0) {
            panel.commandLines = commandLines(document.items.at(target));
        }
    }
    return panel;
}
