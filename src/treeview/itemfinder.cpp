#include "itemfinder.h"

#include "treeplan.h"

#include "model/menudocument.h"

#include <QHash>

namespace {

bool commandsHold(const MenuItem& item, const QString& text, Qt::CaseSensitivity sensitivity)
{
    for (qsizetype slot = 1; slot < item.commands.size(); ++slot) {
        const Command& command = item.commands.at(slot);
        if (command.extension.contains(text, sensitivity) || command.command.contains(text, sensitivity)) {
            return true;
        }
    }
    return false;
}

} // namespace

QStringList findItems(const MenuDocument& document, int hideMode, const FindRequest& request)
{
    QStringList keys;
    if (request.text.isEmpty()) {
        return keys;
    }
    const Qt::CaseSensitivity sensitivity = request.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    // A link shows its target's commands; the targets are looked up once for the whole search.
    QHash<QString, qsizetype> indexOfKey;
    if (request.inCommands) {
        indexOfKey.reserve(document.items.size());
        for (qsizetype index = 0; index < document.items.size(); ++index) {
            indexOfKey.insert(document.items.at(index).key, index);
        }
    }
    const QList<PlannedNode> nodes = planTree(document, hideMode);
    for (const PlannedNode& node : nodes) {
        const MenuItem& item = document.items.at(node.itemIndex);
        bool found = item.caption.contains(request.text, sensitivity);
        if (!found && request.inCommands) {
            const MenuItem* shown = &item;
            if (item.copiesCommands) {
                const qsizetype target = indexOfKey.value(item.copyKey, -1);
                shown = target >= 0 ? &document.items.at(target) : nullptr;
            }
            found = shown != nullptr && commandsHold(*shown, request.text, sensitivity);
        }
        if (found) {
            keys.append(node.key);
        }
    }
    return keys;
}
