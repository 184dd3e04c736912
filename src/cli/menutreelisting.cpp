#include "menutreelisting.h"

#include "counttext.h"
#include "menufile/saveorder.h"
#include "model/menudocument.h"
#include "textoutput.h"

#include <QBuffer>
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

void writeMenuTreeListing(const MenuDocument& document, TextOutput& output)
{
    const QHash<QString, int> indexOfKey = indexOfKeys(document);
    const QList<SaveOrderEntry> order = saveOrder(document);
    for (qsizetype k = 0; k < order.size() && !output.failed(); ++k) {
        const SaveOrderEntry& entry = order.at(k);
        const MenuItem& item = document.items.at(entry.index);
        output.write(QString(entry.depth * 2, QLatin1Char(' ')));
        // The caption on its own: it may be megabytes long and is written in pieces.
        output.write(item.caption);
        QString rest = QStringLiteral("  [") + item.key + QStringLiteral("]  ")
            + countText(effectiveCommandCount(document, indexOfKey, item), QStringLiteral("command"),
                        QStringLiteral("commands"));
        if (item.copiesCommands) {
            rest += QStringLiteral(" -> ") + item.copyKey;
        }
        rest += QLatin1Char('\n');
        output.write(rest);
    }
}

QString menuTreeListing(const MenuDocument& document)
{
    QByteArray listing;
    QBuffer buffer(&listing);
    buffer.open(QIODevice::WriteOnly);
    TextOutput output(buffer);
    writeMenuTreeListing(document, output);
    return QString::fromUtf8(listing);
}
