#pragma once

#include "model/menuitemarray.h"
#include "treeplan.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

struct MenuDocument;

/// What the find bar of an editor window looks for.
struct FindRequest
{
    QString text;
    /// Also in the extensions and command texts an item shows (a link's: its target's).
    bool inCommands = false;
    bool matchCase = false;

    friend bool operator==(const FindRequest& left, const FindRequest& right)
    {
        return left.text == right.text && left.inCommands == right.inCommands && left.matchCase == right.matchCase;
    }
    friend bool operator!=(const FindRequest& left, const FindRequest& right) { return !(left == right); }
};

/// The find bar's search: the items whose node the tree shows under a hide mode and that hold the
/// text asked for, in the order of the tree's nodes (each parent before its children).
/// An empty text matches nothing.
///
/// The search runs on every keystroke of a 32,767-item menu, so the finder keeps what it learnt of
/// the menu while the menu stays the same: the tree's nodes as item indices, the item whose commands
/// each link shows, and the matches of the last search, among which a text grown from the last one
/// is looked for. It reads the texts where the document holds them and copies none. A search of a
/// menu other than the last one (an edit, an Undo, another hide mode) notices it by itself: it
/// keeps the tree's nodes and the links where the records that changed kept their place in the tree
/// and their links (a caption or a command edited), and starts afresh otherwise.
class ItemFinder final
{
public:
    /// Searches the tree of `document` under `hideMode` for `request`; the matches are then read with
    /// count(), keyAt() and keys().
    void find(const MenuDocument& document, int hideMode, const FindRequest& request);
    /// Forgets the menu, so that the next search starts afresh, and lets go of its items.
    void reset();
    /// Forgets the last search only: the next one looks at every node again.
    void forgetSearch();

    /// The number of matches of the last search.
    qsizetype count() const { return qsizetype(m_matches.size()); }
    /// The key of match `match` (0 <= match < count()), as the menu stood when it was searched.
    QString keyAt(qsizetype match) const;
    /// The keys of all matches, in the tree's order.
    QStringList keys() const;

private:
    /// The tree's nodes and, for links, their targets, for `document` (kept while it stays the same).
    void follow(const MenuDocument& document, int hideMode);
    /// Takes `document` in place of the menu last searched when the records it changed keep the
    /// tree's nodes (and the links, or these are found again); false when the tree must be planned
    /// afresh.
    bool followEdits(const MenuDocument& document, int hideMode);
    /// For each item, the item whose commands it shows: itself, its link's target, or -1 for a link
    /// to no item. Found on the first search in the commands after the menu changed.
    void resolveLinks();
    /// Whether the commands item `index` shows hold the text `holds` looks for, each command list
    /// searched at most once per search: `found` keeps, per item, what its commands gave.
    template <typename Holds> bool shownCommandsHold(int index, const Holds& holds, std::vector<char>& found) const;

    /// The menu as last searched: its items share their data with the document's until it changes,
    /// so telling whether it changed costs next to nothing.
    MenuItemArray m_items;
    int m_hideMode = 0;
    bool m_known = false;
    /// The tree's nodes, in the tree's order.
    std::vector<PlannedItem> m_nodes;
    std::vector<int> m_commandsOf;
    bool m_linksResolved = false;
    /// Per item: whether its commands were searched in this search and what they gave.
    std::vector<char> m_commandsFound;
    std::optional<FindRequest> m_lastRequest;
    /// Item indices of the matches, in the tree's order.
    std::vector<int> m_matches;
};

/// The keys of the items of `document` that a search of its tree under `hideMode` for `request`
/// finds, in the tree's order.
QStringList findItems(const MenuDocument& document, int hideMode, const FindRequest& request);
