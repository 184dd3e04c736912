#include "menutreelisting.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "preorderwalk.h"

namespace {

/// What the item runs when picked: a link runs its target's commands, not the ones it holds.
int effectiveCommandCount(const MenuDocument& document, const MenuItem& item)
{
    if (item.copiesCommands) {
        const int target = findItemByKey(document, item.copyKey);
        if (target >= 0) {
            return document.items.at(target).commandUpperBound();
        }
    }
    return item.commandUpperBound();
}

QString commandCountText(int count)
{
    return count == 1 ? QStringLiteral("1 command") : QStringLiteral("%1 commands").arg(count);
}

} // namespace

QString menuTreeListing(const MenuDocument& document)
{
    QString listing;
    const QList<PreOrderEntry> order = preOrderWalk(document);
    for (const PreOrderEntry& entry : order) {
        const MenuItem& item = document.items.at(entry.index);
        listing += QString(entry.depth * 2, QLatin1Char(' '));
        listing += item.caption + QStringLiteral("  [") + item.key + QStringLiteral("]  ")
            + commandCountText(effectiveCommandCount(document, item));
        if (item.copiesCommands) {
            listing += QStringLiteral(" -> ") + item.copyKey;
        }
        listing += QLatin1Char('\n');
    }
    return listing;
}
