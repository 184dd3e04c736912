#include "itemfinder.h"

#include "hidemode.h"
#include "keymap.h"
#include "textmatcher.h"
#include "treeplan.h"

#include "model/menudocument.h"

#include <QScopeGuard>

#include <algorithm>
#include <exception>
#include <thread>

namespace {

enum CommandsFound : char { Unknown, Hold, Lack };

/// Below this many nodes a second thread costs more than it saves.
constexpr std::size_t kNodesWorthASecondCore = 4096;

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
    const auto matches = [this, &request, &holds](int index, std::vector<char>& found) {
        return holds(m_items.at(index).caption) || (request.inCommands && shownCommandsHold(index, holds, found));
    };
    if (narrowing) {
        // The matches of the longer text are some of the last ones, in the same order.
        std::size_t kept = 0;
        for (const int index : m_matches) {
            if (matches(index, m_commandsFound)) {
                m_matches[kept++] = index;
            }
        }
        m_matches.resize(kept);
        return;
    }
    const auto scan = [this, &matches](std::size_t from, std::size_t to, std::vector<int>& found,
                                       std::vector<char>& commandsFound) {
        for (std::size_t node = from; node < to; ++node) {
            if (matches(m_nodes[node].item, commandsFound)) {
                found.push_back(m_nodes[node].item);
            }
        }
    };
    m_matches.clear();
    // A search of every node, as the first after an edit is, reads every caption (and command) of
    // the menu: the later half of the tree is searched on a second core meanwhile, with its own
    // record of the command lists it searched. It only reads the menu.
    const std::size_t count = m_nodes.size();
    const std::size_t half
        = count >= kNodesWorthASecondCore && std::thread::hardware_concurrency() > 1 ? count / 2 : count;
    std::vector<int> later;
    std::vector<char> laterCommandsFound;
    std::exception_ptr laterFailure;
    std::thread helper;
    if (half < count) {
        laterCommandsFound.assign(m_commandsFound.size(), Unknown);
        helper = std::thread([&] {
            try {
                scan(half, count, later, laterCommandsFound);
            } catch (...) {
                laterFailure = std::current_exception();
            }
        });
    }
    const auto joinHelper = qScopeGuard([&helper] {
        if (helper.joinable()) {
            helper.join();
        }
    });
    scan(0, half, m_matches, m_commandsFound);
    if (helper.joinable()) {
        helper.join();
        if (laterFailure) {
            std::rethrow_exception(laterFailure);
        }
        m_matches.insert(m_matches.end(), later.begin(), later.end());
    }
}

void ItemFinder::forgetSearch()
{
    m_lastRequest.reset();
    m_matches.clear();
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
    if (followEdits(document, hideMode)) {
        return;
    }
    reset();
    m_known = true;
    m_items = document.items;
    m_hideMode = hideMode;
    m_nodes = planTreeItems(document, hideMode);
}

bool ItemFinder::followEdits(const MenuDocument& document, int hideMode)
{
    if (!m_known || m_hideMode != hideMode || m_items.size() != document.items.size()) {
        return false;
    }
    // The plan reads where each item sits and whether the hide mode shows it; the links read keys and
    // link targets. Only the records the two menus do not share can differ.
    bool sameLinks = true;
    for (const ItemRange& range : document.items.rangesDifferentFrom(m_items)) {
        for (qsizetype i = range.begin; i < std::min(range.end, document.items.size()); ++i) {
            const MenuItem& now = document.items.at(i);
            const MenuItem& was = m_items.at(i);
            if (now.parent != was.parent || now.siblingOrder != was.siblingOrder || now.childCount != was.childCount
                || HideMode::isVisible(now, hideMode) != HideMode::isVisible(was, hideMode)) {
                return false;
            }
            sameLinks = sameLinks && now.key == was.key && now.copiesCommands == was.copiesCommands
                && now.copyKey == was.copyKey;
        }
    }
    m_items = document.items;
    if (!sameLinks) {
        m_linksResolved = false;
        m_commandsOf.clear();
    }
    // The texts changed: the last matches tell nothing of the next search.
    forgetSearch();
    return true;
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

template <typename Holds>
bool ItemFinder::shownCommandsHold(int index, const Holds& holds, std::vector<char>& foundOf) const
{
    const int source = m_commandsOf[std::size_t(index)];
    if (source < 0) {
        return false; // a link to no item shows no commands
    }
    char& found = foundOf[std::size_t(source)];
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
