#include "itemfinder.h"

#include "keymap.h"
#include "textmatcher.h"
#include "treeplan.h"

#include "model/menudocument.h"

namespace {

enum CommandsFound : char { Unknown, Hold, Lack };

} // namespace

void ItemFinder::find(const MenuDocument& document, int hideMode, const FindRequest& request)
{
    follow(document, hideMode);
    const Qt::CaseSensitivity sensitivity = request.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    // Whatever holds the longer text holds the shorter one it grew from.
    const bool narrowing = m_lastRequest.has_value() && !m_lastRequest->text.isEmpty()
        && m_lastRequest->inCommands == request.inCommands && m_lastRequest->matchCase == request.matchCase
        && request.text.contains(m_lastRequest->text, sensitivity);
    m_lastRequest = request;
    if (request.text.isEmpty()) {
        m_matches.clear();
        return;
    }

    const TextMatcher matcher(request.text, sensitivity);
    const auto holds = [&matcher](const QString& text) { return matcher.isIn(text); };
    if (request.inCommands) {
        resolveLinks();
        m_commandsFound.assign(std::size_t(m_items.size()), Unknown);
    }
    const auto matches = [this, &request, &holds](int index) {
        return holds(m_items.at(index).caption) || (request.inCommands && shownCommandsHold(index, holds));
    };
    if (narrowing) {
        // The matches of the longer text are some of the last ones, in the same order.
        std::size_t kept = 0;
        for (const int index : m_matches) {
            if (matches(index)) {
                m_matches[kept++] = index;
            }
        }
        m_matches.resize(kept);
        return;
    }
    m_matches.clear();
    for (const PlannedItem& node : m_nodes) {
        if (matches(node.item)) {
            m_matches.push_back(node.item);
        }
    }
}

void ItemFinder::reset()
{
    m_known = false;
    m_items = MenuItemArray();
    m_nodes.clear();
    m_commandsOf.clear();
    m_linksResolved = false;
    m_lastRequest.reset();
    m_matches.clear();
}

QString ItemFinder::keyAt(qsizetype match) const
{
    return m_items.at(m_matches[std::size_t(match)]).key;
}

QStringList ItemFinder::keys() const
{
    QStringList keys;
    keys.reserve(count());
    for (const int index : m_matches) {
        keys.append(m_items.at(index).key);
    }
    return keys;
}

void ItemFinder::follow(const MenuDocument& document, int hideMode)
{
    if (m_known && m_hideMode == hideMode && m_items.isSharedWith(document.items)) {
        return;
    }
    reset();
    m_known = true;
    m_items = document.items;
    m_hideMode = hideMode;
    m_nodes = planTreeItems(document, hideMode);
}

void ItemFinder::resolveLinks()
{
    if (m_linksResolved) {
        return;
    }
    m_linksResolved = true;
    // One pass over the item records, which are large beside what is read of them here.
    const int count = int(m_items.size());
    m_commandsOf.resize(std::size_t(count));
    std::vector<int> links;
    KeyMap<int> indexOfKey;
    indexOfKey.reserve(count);
    for (int index = 0; index < count; ++index) {
        const MenuItem& item = m_items.at(index);
        m_commandsOf[std::size_t(index)] = index;
        if (item.copiesCommands) {
            links.push_back(index);
        }
        // Of two items that bear one key, a link shows the commands of the later one.
        indexOfKey.insert(item.key, index);
    }
    for (const int link : links) {
        m_commandsOf[std::size_t(link)] = indexOfKey.value(m_items.at(link).copyKey, -1);
    }
}

template <typename Holds> bool ItemFinder::shownCommandsHold(int index, const Holds& holds)
{
    const int source = m_commandsOf[std::size_t(index)];
    if (source < 0) {
        return false; // a link to no item shows no commands
    }
    char& found = m_commandsFound[std::size_t(source)];
    if (found == Unknown) {
        found = Lack;
        const QList<Command>& commands = m_items.at(source).commands;
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            if (holds(commands.at(slot).extension) || holds(commands.at(slot).command)) {
                found = Hold;
                break;
            }
        }
    }
    return found == Hold;
}

QStringList findItems(const MenuDocument& document, int hideMode, const FindRequest& request)
{
    ItemFinder finder;
    finder.find(document, hideMode, request);
    return finder.keys();
}
