#include "menucomparison.h"

#include "menufile/saveorder.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QHash>
#include <QList>

namespace {

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

/// The commands the writer writes for `item`: its link target's, or its own (also for a link that
/// names no item, as the editor may show them).
QList<Command> writtenCommands(const MenuDocument& document, const MenuItem& item)
{
    const qint16 target = item.copiesCommands ? findItemByKey(document, item.copyKey) : qint16(-1);
    return target < 0 ? item.commands : document.items.at(target).commands;
}

QString commandsText(const QList<Command>& commands)
{
    QStringList lines;
    for (qsizetype slot = 1; slot < commands.size(); ++slot) {
        lines.append(commands.at(slot).extension + QLatin1Char('=') + commands.at(slot).command);
    }
    return QLatin1Char('[') + lines.join(QLatin1String(" | ")) + QLatin1Char(']');
}

/// The position in the walk of every item the walk reaches, by array index.
QHash<qint32, qsizetype> walkPositions(const QList<SaveOrderEntry>& order)
{
    QHash<qint32, qsizetype> positions;
    for (qsizetype k = 0; k < order.size(); ++k) {
        positions.insert(order.at(k).index, k);
    }
    return positions;
}

qsizetype parentPosition(const MenuItem& item, const QHash<qint32, qsizetype>& positions)
{
    return item.parent < 0 ? -1 : positions.value(item.parent, -2);
}

QString writtenTreeDifference(const MenuDocument& expected, const MenuDocument& actual)
{
    const QList<SaveOrderEntry> expectedOrder = saveOrder(expected);
    const QList<SaveOrderEntry> actualOrder = saveOrder(actual);
    if (expectedOrder.size() != actualOrder.size()) {
        return QStringLiteral("%1 items written, %2 read back")
            .arg(QString::number(expectedOrder.size()), QString::number(actualOrder.size()));
    }
    const QHash<qint32, qsizetype> expectedPositions = walkPositions(expectedOrder);
    const QHash<qint32, qsizetype> actualPositions = walkPositions(actualOrder);
    for (qsizetype k = 0; k < expectedOrder.size(); ++k) {
        const MenuItem& left = expected.items.at(expectedOrder.at(k).index);
        const MenuItem& right = actual.items.at(actualOrder.at(k).index);
        const QString where = QStringLiteral("written item %1 (%2)").arg(QString::number(k + 1), quoted(left.caption));
        if (left.caption != right.caption) {
            return QStringLiteral("%1: caption read back as %2").arg(where, quoted(right.caption));
        }
        if (expectedOrder.at(k).depth != actualOrder.at(k).depth) {
            return QStringLiteral("%1: depth %2 read back as %3")
                .arg(where, QString::number(expectedOrder.at(k).depth), QString::number(actualOrder.at(k).depth));
        }
        if (parentPosition(left, expectedPositions) != parentPosition(right, actualPositions)) {
            return QStringLiteral("%1: parent at written position %2 read back at %3")
                .arg(where, QString::number(parentPosition(left, expectedPositions)),
                     QString::number(parentPosition(right, actualPositions)));
        }
        const QList<Command> leftCommands = writtenCommands(expected, left);
        const QList<Command> rightCommands = writtenCommands(actual, right);
        if (leftCommands != rightCommands) {
            return QStringLiteral("%1: commands %2 read back as %3")
                .arg(where, commandsText(leftCommands), commandsText(rightCommands));
        }
    }
    return QString();
}

QString itemDifference(const MenuItem& left, const MenuItem& right)
{
    if (left.key != right.key) {
        return QStringLiteral("key %1 read back as %2").arg(left.key, right.key);
    }
    if (left.parent != right.parent || left.childCount != right.childCount || left.siblingOrder != right.siblingOrder) {
        return QStringLiteral("tree numbers (parent %1, children %2, order %3) read back as (%4, %5, %6)")
            .arg(QString::number(left.parent), QString::number(left.childCount), QString::number(left.siblingOrder),
                 QString::number(right.parent), QString::number(right.childCount), QString::number(right.siblingOrder));
    }
    if (left.commands != right.commands) {
        return QStringLiteral("own commands %1 read back as %2")
            .arg(commandsText(left.commands), commandsText(right.commands));
    }
    if (left.copiesCommands != right.copiesCommands || left.copyKey != right.copyKey) {
        return QStringLiteral("link (%1, %2) read back as (%3, %4)")
            .arg(left.copiesCommands ? QStringLiteral("on") : QStringLiteral("off"), left.copyKey,
                 right.copiesCommands ? QStringLiteral("on") : QStringLiteral("off"), right.copyKey);
    }
    if (left.lastCopyKey != right.lastCopyKey) {
        return QStringLiteral("last copy %1 read back as %2").arg(left.lastCopyKey, right.lastCopyKey);
    }
    return QString();
}

} // namespace

QString menuDifference(const MenuDocument& expected, const MenuDocument& actual, ComparedDetail detail)
{
    if (detail == ComparedDetail::WholeDocument) {
        const qsizetype walked = saveOrder(expected).size();
        if (walked != expected.items.size()) {
            return QStringLiteral("the writer walks %1 of the %2 items")
                .arg(QString::number(walked), QString::number(expected.items.size()));
        }
    }
    const QString treeDifference = writtenTreeDifference(expected, actual);
    if (!treeDifference.isEmpty() || detail == ComparedDetail::WrittenTree) {
        return treeDifference;
    }
    if (expected.lastIndex != actual.lastIndex) {
        return QStringLiteral("lastIndex %1 read back as %2")
            .arg(QString::number(expected.lastIndex), QString::number(actual.lastIndex));
    }
    if (expected.items.size() != actual.items.size()) {
        return QStringLiteral("%1 items read back as %2")
            .arg(QString::number(expected.items.size()), QString::number(actual.items.size()));
    }
    for (qsizetype i = 0; i < expected.items.size(); ++i) {
        const QString difference = itemDifference(expected.items.at(i), actual.items.at(i));
        if (!difference.isEmpty()) {
            return QStringLiteral("item %1 (%2): %3")
                .arg(QString::number(i), quoted(expected.items.at(i).caption), difference);
        }
    }
    return QString();
}
