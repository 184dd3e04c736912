#include "documentinvariants.h"

#include "randommenu.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QRegularExpression>
#include <QSet>

namespace DocumentInvariants {

QString problem(const MenuDocument& document)
{
    static const QRegularExpression keyPattern(QStringLiteral("^E(0|[1-9][0-9]*)$"));
    QSet<QString> keys;
    for (qsizetype i = 0; i < document.items.size(); ++i) {
        const MenuItem& item = document.items.at(i);
        const QRegularExpressionMatch match = keyPattern.match(item.key);
        if (!match.hasMatch()) {
            return QStringLiteral("item %1 has the key \"%2\"").arg(i).arg(item.key);
        }
        if (match.captured(1).toInt() > document.lastIndex) {
            return QStringLiteral("item %1 has the key %2 above lastIndex %3")
                .arg(i)
                .arg(item.key)
                .arg(document.lastIndex);
        }
        if (keys.contains(item.key)) {
            return QStringLiteral("the key %1 is given twice").arg(item.key);
        }
        keys.insert(item.key);
        if (item.copiesCommands && findItemByKey(document, item.copyKey) < 0) {
            return QStringLiteral("item %1 (%2) links to %3, which names no item").arg(i).arg(item.key, item.copyKey);
        }
        if (item.commands.isEmpty()) {
            return QStringLiteral("item %1 (%2) has lost its placeholder command slot").arg(i).arg(item.key);
        }
    }
    if (document.items.isEmpty()) {
        return QStringLiteral("the menu has no item");
    }
    return RandomMenu::treeNumbersProblem(document);
}

} // namespace DocumentInvariants
