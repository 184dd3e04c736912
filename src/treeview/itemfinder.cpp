#include "itemfinder.h"

#include "treeplan.h"

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

QStringList findItems(const MenuDocument& document, int hideMode, const FindRequest& request)
{
    if (request.text.isEmpty()) {
        return QStringList();
    }
    return findItems(document, planTree(document, hideMode), request);
}

QStringList findItems(const MenuDocument& document, const QList<PlannedNode>& nodes, const FindRequest& request)
{
    QStringList keys;
    if (request.text.isEmpty()) {
        return keys;
    }
    const QStringMatcher matcher(request.text, request.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
    // A link shows its target's commands: the targets are looked up once for the whole search, and
    // an item's commands are searched once however many links show them.
    QHash<QString, qsizetype> indexOfKey;
    enum : char { Unknown, Holds, Lacks };
    std::vector<char> commandsFound;
    if (request.inCommands) {
        indexOfKey.reserve(document.items.size());
        for (qsizetype index = 0; index < document.items.size(); ++index) {
            indexOfKey.insert(document.items.at(index).key, index);
        }
        commandsFound.assign(std::size_t(document.items.size()), Unknown);
    }
    const auto shownCommandsHold = [&](qsizetype index) {
        const MenuItem& item = document.items.at(index);
        if (item.copiesCommands) {
            index = indexOfKey.value(item.copyKey, -1);
            if (index < 0) {
                return false; // a link to no item shows no commands
            }
        }
        char& found = commandsFound[std::size_t(index)];
        if (found == Unknown) {
            found = commandsHold(document.items.at(index), matcher) ? Holds : Lacks;
        }
        return found == Holds;
    };
    for (const PlannedNode& node : nodes) {
        const MenuItem& item = document.items.at(node.itemIndex);
        if (matcher.indexIn(item.caption) >= 0 || (request.inCommands && shownCommandsHold(node.itemIndex))) {
            keys.append(node.key);
        }
    }
    return keys;
}
