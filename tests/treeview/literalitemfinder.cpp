#include "literalitemfinder.h"

#include "literaltreeplan.h"

#include "model/menudocument.h"

#include <QHash>
#include <QStringMatcher>

#include <vector>

namespace {

bool commandsHold(const MenuItem& item, const QStringMatcher& matcher)
{
    for (qsizetype slot = 1; slot < item.commands.size(); ++slot) {
        const Command& command = item.commands.at(slot);
        if (matcher.indexIn(command.extension) >= 0 || matcher.indexIn(command.command) >= 0) {
            return true;
        }
    }
    return false;
}

} // namespace

QStringList literalFindItems(const MenuDocument& document, int hideMode, const FindRequest& request)
{
    QStringList keys;
    if (request.text.isEmpty()) {
        return keys;
    }
    const QList<PlannedNode> nodes = literalPlanTree(document, hideMode);
    const QStringMatcher matcher(request.text, request.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
    // A link shows the commands of the item its copyKey names; of two items with one key, the later.
    QHash<QString, qsizetype> indexOfKey;
    for (qsizetype index = 0; index < document.items.size(); ++index) {
        indexOfKey.insert(document.items.at(index).key, index);
    }
    for (const PlannedNode& node : nodes) {
        const MenuItem& item = document.items.at(node.itemIndex);
        bool found = matcher.indexIn(item.caption) >= 0;
        if (!found && request.inCommands) {
            const qsizetype shown = item.copiesCommands ? indexOfKey.value(item.copyKey, -1) : node.itemIndex;
            found = shown >= 0 && commandsHold(document.items.at(shown), matcher);
        }
        if (found) {
            keys.append(node.key);
        }
    }
    return keys;
}
