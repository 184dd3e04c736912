#include "copylinks.h"

#include "model/errortable.h"
#include "model/int16.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QHash>

#include <vector>

namespace {

const char* const sameCommandsSource = "sameCommands";
const char* const normalizeSource = "normalizeCopyLinks";

const MenuItem& itemAt(const MenuDocument& document, int index, const char* source)
{
    if (index < 0 || index >= document.items.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(source));
    }
    return document.items.at(index);
}

/// The real commands of an item (slots 1..n) as a hash key. The placeholder slot 0 takes no part,
/// so two items compare equal exactly when sameCommands would call them equal.
struct CommandListKey
{
    QList<Command> commands;

    friend bool operator==(const CommandListKey& left, const CommandListKey& right)
    {
        const qsizetype count = left.commands.size();
        if (count != right.commands.size()) {
            return false;
        }
        for (qsizetype s = 1; s < count; ++s) {
            if (left.commands.at(s) != right.commands.at(s)) {
                return false;
            }
        }
        return true;
    }
};

size_t qHash(const CommandListKey& key, size_t seed = 0) noexcept
{
    if (key.commands.isEmpty()) {
        return seed;
    }
    return qHashRange(key.commands.cbegin() + 1, key.commands.cend(), seed);
}

} // namespace

bool sameCommands(const MenuDocument& document, int i, int j)
{
    const MenuItem& first = itemAt(document, i, sameCommandsSource);
    const MenuItem& second = itemAt(document, j, sameCommandsSource);
    if (first.copiesCommands || second.copiesCommands) {
        return false;
    }
    const int upperBound = first.commandUpperBound();
    if (upperBound != second.commandUpperBound() || upperBound <= 0) {
        return false;
    }
    for (int s = 1; s <= upperBound; ++s) {
        if (first.commands.at(s).command != second.commands.at(s).command) {
            return false;
        }
    }
    for (int s = 1; s <= upperBound; ++s) {
        if (first.commands.at(s).extension != second.commands.at(s).extension) {
            return false;
        }
    }
    return true;
}

void normalizeCopyLinks(MenuDocument& document)
{
    MenuItemArray& items = document.items;
    const qsizetype count = items.size();
    // Indices are 16-bit in the menu model; a larger array cannot come from a menu file.
    Int16::checked(count, normalizeSource);

    // The new links are worked out aside and the items written only where something changes: on a
    // menu whose links are already right nothing is written, so its items stay shared with the undo
    // states, and Undo finds only the items that really changed.

    // Dissolve every link into an own copy of its target's commands, in array order. Keys do not
    // change here, so one key index serves the whole pass. A link to a later link that is still
    // undissolved copies that item's own list as it stands, which may be empty.
    QHash<QString, qsizetype> indexOfKey;
    indexOfKey.reserve(count);
    for (qsizetype i = count - 1; i >= 0; --i) {
        indexOfKey.insert(items.at(i).key, i); // walking backwards, the first of equal keys wins
    }
    std::vector<bool> dissolved(std::size_t(count), false);
    std::vector<QList<Command>> dissolvedCommands(static_cast<std::size_t>(count));
    const auto commandsOf = [&](qsizetype i) -> const QList<Command>& {
        return dissolved[std::size_t(i)] ? dissolvedCommands[std::size_t(i)] : items.at(i).commands;
    };
    for (qsizetype i = 0; i < count; ++i) {
        if (!items.at(i).copiesCommands) {
            continue;
        }
        const auto found = indexOfKey.constFind(items.at(i).copyKey);
        if (found == indexOfKey.constEnd()) {
            // The links before this one are dissolved and this one is switched off when the error
            // comes, as the step-by-step pass leaves them.
            for (qsizetype k = 0; k < i; ++k) {
                if (dissolved[std::size_t(k)]) {
                    MenuItem& item = items[k];
                    item.copiesCommands = false;
                    item.commands = dissolvedCommands[std::size_t(k)];
                }
            }
            items[i].copiesCommands = false;
            throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QString::fromLatin1(normalizeSource));
        }
        dissolvedCommands[std::size_t(i)] = commandsOf(found.value());
        dissolved[std::size_t(i)] = true;
    }

    // Relink: nothing is linked any more, so each item whose non-empty command list was already
    // seen links to the first item that had it; that item stays the group's own holder of the
    // commands. Linked items keep their own full copy of the commands.
    QHash<CommandListKey, qsizetype> firstWithCommands;
    firstWithCommands.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        const QList<Command>& commands = commandsOf(i);
        qsizetype holder = -1;
        if (commands.size() - 1 > 0) {
            CommandListKey listKey { commands };
            const auto first = firstWithCommands.constFind(listKey);
            if (first == firstWithCommands.constEnd()) {
                firstWithCommands.insert(std::move(listKey), i);
            } else {
                holder = first.value();
            }
        }
        const MenuItem& item = items.at(i);
        const bool linked = holder >= 0;
        const bool linkChanges = item.copiesCommands != linked || (linked && item.copyKey != items.at(holder).key);
        const QList<Command>* commandsAfter = dissolved[std::size_t(i)] ? &commands : nullptr;
        if (linked) {
            // A link holds the same commands as its holder; sharing the holder's list costs nothing,
            // and the next pass then sees at a glance that the link still holds them.
            const QList<Command>& holderCommands = commandsOf(holder);
            if (commands.constData() != holderCommands.constData() && commands.at(0) == holderCommands.at(0)) {
                commandsAfter = &holderCommands;
            }
        }
        if (!linkChanges && (commandsAfter == nullptr || *commandsAfter == item.commands)) {
            continue;
        }
        MenuItem& changed = items[i];
        changed.copiesCommands = linked;
        if (linked) {
            changed.copyKey = items.at(holder).key;
        }
        if (commandsAfter != nullptr) {
            changed.commands = *commandsAfter;
        }
    }
}
