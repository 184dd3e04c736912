#include "menutreelisting.h"

#include "counttext.h"
#include "menufile/saveorder.h"
#include "model/menudocument.h"

#include <QHash>

namespace {

/// The first item bearing each key, found once so that a menu full of links lists in linear time.
QHash<QString, int> indexOfKeys(const MenuDocument& document)
{
    QHash<QString, int> indexOfKey;
    indexOfKey.reserve(document.items.size());
    for (int i = int(document.items.size()) - 1; i >= 0; --i) {
        indexOfKey.insert(document.items.at(i).key, i); // walking backwards, the first of equal keys wins
    }
    return indexOfKey;
}

/// What the item runs when picked: a link runs its target's commands, not the ones it holds.
int effectiveCommandCount(const MenuDocument& document, const QHash<QString, int>& indexOfKey, const MenuItem& item)
{
    if (item.copiesCommands) {
        const int target = indexOfKey.value(item.copyKey, -1);
        if (target >= 0) {
            return document.items.at(target).commandUpperBound();
        }
    }
    return item.commandUpperBound();
}

} // namespace

QString menuTreeListing(const MenuDocument& document)
{
    QString listing;
    const QHash<QString, int> indexOfKey = indexOfKeys(document);
    for (const SaveOrderEntry& entry : saveOrder(document)) {
        const MenuItem& item = document.items.at(entry.index);
        listing += QString(entry.depth * 2, QLatin1Char(' '));
        listing += item.caption + QStringLiteral("  [") + item.key + QStringLiteral("]  ")
            + countText(effectiveCommandCount(document, indexOfKey, item), QStringLiteral("command"),
                        QStringLiteral("commands"));
        if (item.copiesCommands) {
            listing += QStringLiteral(" -> ") + item.copyKey;
        }
        listing += QLatin1Char('\n');
    }
    return listing;
}
