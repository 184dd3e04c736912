#include "tooltiptexts.h"

#include "editing/itempanel.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QStringList>

namespace {

QString separator()
{
    return QStringLiteral("\\");
}

QString commandCount(qsizetype count)
{
    if (count == 0) {
        return QStringLiteral("No commands");
    }
    if (count == 1) {
        return QStringLiteral("1 command");
    }
    return QString::number(count) + QStringLiteral(" commands");
}

bool isItemIndex(const MenuDocument& document, int index)
{
    return index >= 0 && index < document.items.size();
}

/// `row` cut into pieces of at most `width` characters, at the last blank that fits where there
/// is one.
QStringList brokenRow(QString row, int width)
{
    QStringList pieces;
    while (row.size() > width) {
        qsizetype cut = row.lastIndexOf(QLatin1Char(' '), width);
        if (cut <= 0) {
            cut = width; // one long word: cut it where the row is full
        }
        pieces.append(row.left(cut));
        row = row.mid(cut);
        if (row.startsWith(QLatin1Char(' '))) {
            row.remove(0, 1);
        }
    }
    pieces.append(row);
    return pieces;
}

} // namespace

namespace ToolTipTexts {

QString itemPath(const MenuDocument& document, int itemIndex)
{
    if (!isItemIndex(document, itemIndex)) {
        return QString();
    }
    // No real path is longer than the menu, so a loop of parent numbers in a broken file ends like
    // a deep path; a parent number naming no item ends the walk.
    const qsizetype longest = qMin<qsizetype>(maxPathDepth, document.items.size());
    QStringList captions;
    for (int current = itemIndex; isItemIndex(document, current);) {
        if (captions.size() == longest) {
            captions.prepend(QStringLiteral("..."));
            break;
        }
        const MenuItem& item = document.items.at(current);
        captions.prepend(item.caption);
        current = item.parent;
    }
    return captions.join(separator());
}

QString forNode(const MenuDocument& document, int itemIndex)
{
    if (!isItemIndex(document, itemIndex)) {
        return QString();
    }
    const MenuItem& item = document.items.at(itemIndex);
    // The count is that of the command list the item shows: for a link, its target's commands.
    QStringList lines
        = { itemPath(document, itemIndex), commandCount(itemPanel(document, itemIndex).commandLines.size()) };
    if (item.copiesCommands) {
        const int target = findItemByKey(document, item.copyKey);
        lines.append(target >= 0 ? QStringLiteral("Uses the commands of \"") + document.items.at(target).caption
                             + QLatin1Char('"')
                                 : QStringLiteral("Uses the commands of an item that no longer exists"));
    }
    return lines.join(QLatin1Char('\n'));
}

QString forLinkTarget(const MenuDocument& document, int itemIndex)
{
    if (!isItemIndex(document, itemIndex)) {
        return QString();
    }
    const MenuItem& item = document.items.at(itemIndex);
    if (!hasLinkTarget(item.copyKey)) {
        return QString();
    }
    const int target = findItemByKey(document, item.copyKey);
    return target >= 0 ? document.items.at(target).caption : QString();
}

QString forCommandLine(const QString& line, int rowWidth)
{
    QStringList rows;
    const QStringList commandLines = line.split(QStringLiteral("||"));
    for (const QString& commandLine : commandLines) {
        rows += brokenRow(commandLine, qMax(rowWidth, 1));
    }
    return rows.join(QLatin1Char('\n'));
}

} // namespace ToolTipTexts
