#include "nodetree.h"

#include "hidemode.h"
#include "model/menudocument.h"
#include "nodetreeobserver.h"
#include "treeplan.h"

#include <QStringList>

#include <algorithm>

namespace {

/// `top` and everything below it, parents before children, without recursion.
std::vector<TreeNode*> branchInPreOrder(TreeNode* top)
{
    std::vector<TreeNode*> result;
    std::vector<TreeNode*> stack { top };
    while (!stack.empty()) {
        TreeNode* current = stack.back();
        stack.pop_back();
        result.push_back(current);
        for (auto it = current->children.rbegin(); it != current->children.rend(); ++it) {
            stack.push_back(*it);
        }
    }
    return result;
}

/// Sets flags[i] for every index i of `items` where `items` may hold another record than `other`.
void markRecordsDifferentFrom(std::vector<char>& flags, const MenuItemArray& items, const MenuItemArray& other)
{
    for (const ItemRange& range : items.rangesDifferentFrom(other)) {
        if (range.begin < items.size()) {
            std::fill(flags.begin() + range.begin, flags.begin() + std::min(range.end, items.size()), 1);
        }
    }
}

/// The text a rebuilt tree's root shows until the editor tells it the hide mode.
QString plainRootText()
{
    return QStringLiteral("KELV");
}

/// One node of the tree syncTo aims at: generate's result, in the order generate adds the nodes.
struct Target
{
    /// The node that bears the key now; null when the key is new to the tree.
    TreeNode* node = nullptr;
    int item = -1;
    /// The target that is the parent node; -1 for the root.
    int parent = -1;
    /// One past the last target of its branch (the branch is contiguous, in pre-order).
    int end = 0;
    /// Whether no node of the branch exists yet, so that it can join as one insertion.
    bool allNew = false;
    int depth = 1;
};

} // namespace

bool NodeTree::shouldExpand(const TreeNode* node, int depth)
{
    // The root stays open even while it holds nothing, so that the first item added shows.
    return node->parent == nullptr || (!node->children.empty() && depth < expandedLevels);
}

std::vector<const TreeNode*> NodeTree::branchesOf(const TreeNode* parent, int first, int last)
{
    std::vector<const TreeNode*> nodes;
    if (parent == nullptr) {
        return nodes;
    }
    std::vector<const TreeNode*> stack;
    for (int row = last; row >= first; --row) {
        stack.push_back(parent->children.at(size_t(row)));
    }
    while (!stack.empty()) {
        const TreeNode* node = stack.back();
        stack.pop_back();
        nodes.push_back(node);
        stack.insert(stack.end(), node->children.rbegin(), node->children.rend());
    }
    return nodes;
}

NodeTree::~NodeTree()
{
    deleteAll();
}

TreeNode* NodeTree::node(int index) const
{
    if (index < 1 || index > nodeCount()) {
        return nullptr;
    }
    return m_nodes[size_t(index - 1)];
}

const KeyMap<int>& NodeTree::itemIndex(const MenuDocument& document) const
{
    if (!m_itemIndexFresh) {
        m_itemIndex.clear();
        m_itemIndex.reserve(int(document.lastIndex) + 1);
        // Backwards, so that the first item bearing a key wins, as with every lookup from a key.
        const auto& items = document.items;
        for (int i = int(items.size()) - 1; i >= 0; --i) {
            m_itemIndex.insert(items.at(i).key, i);
        }
        m_itemIndexFresh = true;
    }
    return m_itemIndex;
}

int NodeTree::itemOf(const TreeNode* node, const MenuDocument& document) const
{
    if (node == nullptr || node == root()) {
        return -1;
    }
    const auto& items = document.items;
    const auto bears = [&items, node](int index) {
        return index >= 0 && index < int(items.size()) && items.at(index).key == node->key;
    };
    if (bears(node->itemHint)) {
        return node->itemHint;
    }
    // The key map is built once per change of the document; a position it gives is checked like a
    // hint, and one that proves wrong shows that the document changed behind it.
    int found = itemIndex(document).value(node->key, -1);
    if (found >= 0 && !bears(found)) {
        m_itemIndexFresh = false;
        found = itemIndex(document).value(node->key, -1);
    }
    const int hint = bears(found) ? found : -1;
    if (hint != node->itemHint) {
        node->itemHint = hint;
        unsettle(node);
    }
    return hint;
}

QString NodeTree::textOf(const TreeNode* node, const MenuDocument& document) const
{
    if (node == nullptr) {
        return QString();
    }
    if (node->hasOwnText) {
        return m_ownTexts.value(node);
    }
    const int item = itemOf(node, document);
    return item >= 0 ? document.items.at(item).caption : QString();
}

QString NodeTree::fullPath(const TreeNode* node, const MenuDocument& document) const
{
    QStringList texts;
    for (const TreeNode* current = node; current != nullptr; current = current->parent) {
        texts.append(textOf(current, document));
    }
    std::reverse(texts.begin(), texts.end());
    return texts.join(QLatin1Char('\\'));
}

int NodeTree::depthOf(const TreeNode* node)
{
    int depth = 0;
    for (const TreeNode* current = node; current != nullptr && current->parent != nullptr; current = current->parent) {
        ++depth;
    }
    return depth;
}

bool NodeTree::isWithin(const TreeNode* node, const TreeNode* ancestor)
{
    for (const TreeNode* current = node; current != nullptr; current = current->parent) {
        if (current == ancestor) {
            return true;
        }
    }
    return false;
}

namespace {

constexpr size_t kNodesPerBlock = 1024;

} // namespace

TreeNode* NodeTree::newNode(const QString& key, TreeNode* parent)
{
    TreeNode* created = nullptr;
    if (!m_freeNodes.empty()) {
        created = m_freeNodes.back();
        m_freeNodes.pop_back();
    } else {
        if (m_blocks.empty() || m_usedInLastBlock == kNodesPerBlock) {
            m_blocks.push_back(std::make_unique<TreeNode[]>(kNodesPerBlock));
            m_usedInLastBlock = 0;
        }
        created = &m_blocks.back()[m_usedInLastBlock++];
    }
    created->key = key;
    if (parent != nullptr) {
        created->parent = parent;
        created->row = int(parent->children.size());
        parent->children.push_back(created);
    }
    return created;
}

void NodeTree::deleteNode(TreeNode* node)
{
    if (node->hasOwnText) {
        m_ownTexts.remove(node);
    }
    *node = TreeNode();
    m_freeNodes.push_back(node);
}

void NodeTree::setOwnText(TreeNode* node, bool own, const QString& text)
{
    unsettle(node);
    node->hasOwnText = own;
    if (own) {
        m_ownTexts.insert(node, text);
    } else {
        m_ownTexts.remove(node);
    }
}

void NodeTree::registerNode(TreeNode* node)
{
    shapeChanged();
    node->ordinal = int(m_nodes.size());
    m_nodes.push_back(node);
    m_byKey.insert(node->key, node);
}

void NodeTree::attach(TreeNode* node, TreeNode* parent, int row)
{
    shapeChanged();
    node->parent = parent;
    parent->children.insert(parent->children.begin() + row, node);
    for (size_t r = size_t(row); r < parent->children.size(); ++r) {
        parent->children[r]->row = int(r);
    }
}

void NodeTree::detach(TreeNode* node)
{
    shapeChanged();
    TreeNode* parent = node->parent;
    parent->children.erase(parent->children.begin() + node->row);
    for (size_t r = size_t(node->row); r < parent->children.size(); ++r) {
        parent->children[r]->row = int(r);
    }
    node->parent = nullptr;
}

void NodeTree::renumber()
{
    for (size_t n = 0; n < m_nodes.size(); ++n) {
        m_nodes[n]->ordinal = int(n);
    }
}

void NodeTree::deleteAll()
{
    shapeChanged();
    m_syncedArray.clear();
    m_syncedItemOf.clear();
    m_nodes.clear();
    m_byKey.clear();
    m_ownTexts.clear();
    m_blocks.clear();
    m_usedInLastBlock = 0;
    m_freeNodes.clear();
}

void NodeTree::clear()
{
    if (m_observer != nullptr) {
        m_observer->treeAboutToBeReset();
    }
    deleteAll();
    if (m_observer != nullptr) {
        m_observer->treeReset();
    }
}

void NodeTree::generate(const MenuDocument& document)
{
    // Planned first: a plan that fails (a menu too large for 16-bit indices) leaves the tree as it was.
    const std::vector<PlannedItem> plan = planTreeItems(document, document.hideMode);
    const auto& items = document.items;
    if (m_observer != nullptr) {
        m_observer->treeAboutToBeReset();
    }
    deleteAll();
    m_byKey.reserve(int(document.lastIndex) + 1);
    m_nodes.reserve(plan.size() + 1);

    TreeNode* rootNode = newNode(rootKey(), nullptr);
    setOwnText(rootNode, true, plainRootText());
    rootNode->style = NodeStyle::forRoot();
    registerNode(rootNode);
    std::vector<int> depths { 0 }; // by ordinal
    depths.reserve(plan.size() + 1);
    for (const PlannedItem& planned : plan) {
        const MenuItem& item = items.at(planned.item);
        TreeNode* parent = planned.parentItem < 0 ? rootNode : m_byKey.value(items.at(planned.parentItem).key, nullptr);
        if (parent == nullptr || m_byKey.contains(item.key)) {
            continue; // the tree keeps one node per key, and a refused node takes its branch with it
        }
        TreeNode* created = newNode(item.key, parent);
        created->itemHint = planned.item;
        created->style = NodeStyle::forItem(item);
        registerNode(created);
        depths.push_back(depths[size_t(parent->ordinal)] + 1);
    }
    for (TreeNode* node : m_nodes) {
        node->expanded = shouldExpand(node, depths[size_t(node->ordinal)]);
    }
    m_itemIndexFresh = false;
    rememberSyncedShape(document);
    if (m_observer != nullptr) {
        m_observer->treeReset();
    }
}

std::vector<TreeNode*> NodeTree::syncTo(const MenuDocument& document, const MenuDocument* before,
                                        std::vector<TreeNode*>* unmarked)
{
    // A rebuild, with every node it marks expanded to be expanded.
    const auto rebuild = [this, &document] {
        generate(document);
        std::vector<TreeNode*> expanded;
        for (TreeNode* node : m_nodes) {
            if (node->expanded) {
                expanded.push_back(node);
            }
        }
        return expanded;
    };
    if (root() == nullptr) {
        return rebuild();
    }
    if (before != nullptr && before->items.size() == document.items.size() && keepsSyncedShape(document)) {
        return refreshInPlace(document, *before, unmarked);
    }
    documentChanged();
    const auto& items = document.items;
    const std::vector<PlannedItem> plan = planTreeItems(document, document.hideMode);

    // Where the document still shares an item's record with the records of the last rebuild or
    // sync, the node that showed that record and was not changed since shows it still: it needs no
    // key read to be found and no comparison to be left as it is.
    std::vector<char> recordMayDiffer(size_t(items.size()), 0);
    markRecordsDifferentFrom(recordMayDiffer, items, m_syncedArray);
    std::vector<char> captionMayDiffer(size_t(items.size()), before == nullptr ? 1 : 0);
    if (before != nullptr) {
        markRecordsDifferentFrom(captionMayDiffer, items, before->items);
    }
    // Each node is first looked for where its hint points; a node found there bears the item's key
    // or is not the item's.
    std::vector<TreeNode*> nodeOfHint(size_t(items.size()), nullptr);
    for (size_t n = 1; n < m_nodes.size(); ++n) {
        const int hint = m_nodes[n]->itemHint;
        if (hint >= 0 && hint < int(items.size())) {
            nodeOfHint[size_t(hint)] = m_nodes[n];
        }
    }

    // What generate would build, node by node, with the nodes that already bear the keys.
    TreeNode* rootNode = root();
    const size_t collectionSize = m_nodes.size();
    // The nodes the target keeps, by ordinal; the root stays.
    std::vector<char> kept(collectionSize, 0);
    kept[size_t(rootNode->ordinal)] = 1;
    size_t keptCount = 1;
    std::vector<Target> targets;
    targets.reserve(plan.size());
    std::vector<int> targetOfItem(size_t(items.size()), -1);
    // Targets whose node shows its item's record as it was, caption and style alike.
    std::vector<char> keepsLook;
    keepsLook.reserve(plan.size());
    // The root's key counts as taken, also when the root bears another (a tree begun by addNode).
    KeyMap<char> newKeys;
    newKeys.insert(rootKey(), 1);
    for (const PlannedItem& planned : plan) {
        TreeNode* node = nodeOfHint[size_t(planned.item)];
        const bool showsRecord
            = node != nullptr && node->showsSyncedRecord && recordMayDiffer[size_t(planned.item)] == 0;
        if (!showsRecord) {
            const QString& key = items.at(planned.item).key;
            if (node == nullptr || node->key != key) {
                node = nodeByKey(key);
            }
            if (node == nullptr) {
                // Items that share a key, or bear the root's, come only from a damaged document (the
                // reader and the editor give every item a key of its own). A rebuild shows the first
                // the tree reaches, with the others' children under it; the steps below assume that
                // each branch of new nodes lies together, which shared keys break, so the tree is
                // built anew. Keys that a node bears clash when two items claim the node (below).
                if (newKeys.contains(key)) {
                    return rebuild();
                }
                newKeys.insert(key, 1);
            }
        }
        if (node != nullptr) {
            if (kept[size_t(node->ordinal)] != 0) {
                return rebuild(); // a second item with the key of this node, or the root's
            }
            kept[size_t(node->ordinal)] = 1;
            ++keptCount;
        }
        // Every planned item's parent is planned before it, and with distinct keys none is left out.
        const int parent = planned.parentItem < 0 ? -1 : targetOfItem[size_t(planned.parentItem)];
        targetOfItem[size_t(planned.item)] = int(targets.size());
        Target target;
        target.node = node;
        target.item = planned.item;
        target.parent = parent;
        target.end = int(targets.size()) + 1;
        target.allNew = target.node == nullptr;
        target.depth = parent < 0 ? 1 : targets[size_t(parent)].depth + 1;
        targets.push_back(target);
        keepsLook.push_back(showsRecord && node->itemHint == planned.item && !node->hasOwnText
                                    && captionMayDiffer[size_t(planned.item)] == 0
                                ? 1
                                : 0);
    }
    for (int t = int(targets.size()) - 1; t >= 0; --t) {
        const Target& target = targets[size_t(t)];
        if (target.parent >= 0) {
            Target& parent = targets[size_t(target.parent)];
            parent.end = std::max(parent.end, target.end);
            parent.allNew = parent.allNew && target.allNew;
        }
    }

    // 1. Branches that hold no node of the target go first, each in one removal, in collection
    // order. Only nodes that are not kept can go, so only they and their children are looked at: a
    // walk of the whole tree would visit every node of a large menu to find the one leaf an Undo
    // takes away.
    std::vector<TreeNode*> emptyBranches;
    // Old nodes that go only once the kept nodes below them have moved out (step 3); mostly none.
    bool keptHolders = false;
    if (keptCount < collectionSize) {
        // A node that is not kept holds a kept node when one of its children is kept, or holds one.
        // Marking up from each such node stops at the first node marked: above a marked node that
        // is not kept, every node up to a kept one is marked already.
        std::vector<char> holdsKept(kept);
        for (size_t n = 0; n < collectionSize; ++n) {
            if (kept[n] != 0) {
                continue;
            }
            TreeNode* node = m_nodes[n];
            const bool hasKeptChild
                = std::any_of(node->children.begin(), node->children.end(),
                              [&kept](const TreeNode* child) { return kept[size_t(child->ordinal)] != 0; });
            for (TreeNode* up = node; hasKeptChild && holdsKept[size_t(up->ordinal)] == 0; up = up->parent) {
                holdsKept[size_t(up->ordinal)] = 1;
            }
        }
        for (size_t n = 0; n < collectionSize; ++n) {
            if (kept[n] != 0) {
                continue;
            }
            TreeNode* node = m_nodes[n];
            if (holdsKept[n] != 0) {
                keptHolders = true;
            } else if (holdsKept[size_t(node->parent->ordinal)] != 0) {
                emptyBranches.push_back(node);
            }
        }
    }
    std::vector<TreeNode*> gone;
    for (TreeNode* top : emptyBranches) {
        removeBranch(top, gone);
    }

    // 2. Every target node in its place, in the order generate adds them: a node's parent is in
    // place before it, so nothing is ever moved into its own branch.
    std::vector<int> nextRow(targets.size() + 1, 0); // by parent target + 1
    std::vector<char> fresh(targets.size(), 0);
    for (size_t t = 0; t < targets.size();) {
        Target& target = targets[t];
        TreeNode* parent = target.parent < 0 ? rootNode : targets[size_t(target.parent)].node;
        const int row = nextRow[size_t(target.parent + 1)]++;
        if (target.node != nullptr) {
            if (target.node->parent != parent || target.node->row != row) {
                moveNode(target.node, parent, row);
            }
            ++t;
            continue;
        }
        // A new branch is built aside and joins in one insertion; a new node with old nodes below it
        // joins alone, and they follow it.
        const size_t end = target.allNew ? size_t(target.end) : t + 1;
        for (size_t u = t; u < end; ++u) {
            Target& made = targets[u];
            made.node = newNode(items.at(made.item).key, u == t ? nullptr : targets[size_t(made.parent)].node);
            made.node->itemHint = made.item;
            made.node->style = NodeStyle::forItem(items.at(made.item));
            registerNode(made.node);
            fresh[u] = 1;
        }
        if (m_observer != nullptr) {
            m_observer->nodesAboutToBeInserted(parent, row, row);
        }
        attach(target.node, parent, row);
        if (m_observer != nullptr) {
            m_observer->nodesInserted();
        }
        t = end;
    }

    // 3. What is left of the old tree holds no target node any more.
    // Nodes made in step 2 joined the collection after the old ones.
    const auto isKept = [&kept, collectionSize](const TreeNode* node) {
        return size_t(node->ordinal) >= collectionSize || kept[size_t(node->ordinal)] != 0;
    };
    std::vector<TreeNode*> leftOver;
    if (keptHolders) {
        for (TreeNode* node : branchInPreOrder(rootNode)) {
            if (!isKept(node) && isKept(node->parent)) {
                leftOver.push_back(node);
            }
        }
    }
    for (TreeNode* top : leftOver) {
        removeBranch(top, gone);
    }

    // 4. Texts, styles and expanded marks as a rebuild sets them, and the collection in its order.
    // The item a kept node showed before: the one its hint names, as itemOf found it, while that
    // item bears the node's key; otherwise looked up by key, in a map made only then.
    KeyMap<int> beforeIndex;
    bool beforeIndexed = false;
    const auto shownBefore = [before, &beforeIndex, &beforeIndexed](const TreeNode* node) {
        const auto& beforeItems = before->items;
        const int hint = node->itemHint;
        if (hint >= 0 && hint < int(beforeItems.size()) && beforeItems.at(hint).key == node->key) {
            return hint;
        }
        if (!beforeIndexed) {
            beforeIndexed = true;
            beforeIndex.reserve(int(before->lastIndex) + 1);
            for (int i = int(beforeItems.size()) - 1; i >= 0; --i) {
                beforeIndex.insert(beforeItems.at(i).key, i);
            }
        }
        return beforeIndex.value(node->key, -1);
    };
    std::vector<TreeNode*> changed;
    restoreRoot(document, changed);
    // The shape is final: each node's expanded mark is settled in the same pass, at the depth its
    // target knows.
    std::vector<TreeNode*> expandNow;
    m_nodes.clear();
    m_nodes.push_back(rootNode);
    rootNode->ordinal = 0;
    settleMark(rootNode, 0, expandNow, unmarked);
    for (size_t t = 0; t < targets.size(); ++t) {
        const Target& target = targets[t];
        TreeNode* node = target.node;
        node->ordinal = int(m_nodes.size());
        m_nodes.push_back(node);
        settleMark(node, target.depth, expandNow, unmarked);
        if (fresh[t] != 0) {
            continue; // made from the document just now
        }
        if (keepsLook[t] != 0) {
            continue; // its record, caption and style are the ones it showed
        }
        const MenuItem& item = items.at(target.item);
        bool differs = before == nullptr || node->hasOwnText;
        if (!differs) {
            const int old = shownBefore(node);
            differs = old < 0 || before->items.at(old).caption != item.caption;
        }
        node->itemHint = target.item;
        if (node->hasOwnText) {
            setOwnText(node, false);
        }
        const NodeStyle style = NodeStyle::forItem(item);
        if (style != node->style) {
            node->style = style;
            differs = true;
        }
        if (differs) {
            changed.push_back(node);
        }
    }
    // The removed nodes left the collection as it was made again above; deleting them only now
    // spares a pass that would take them out of it and number it first.
    for (TreeNode* node : gone) {
        deleteNode(node);
    }
    rememberSyncedShape(document);
    announceChanged(changed);
    return expandNow;
}

void NodeTree::restoreRoot(const MenuDocument& document, std::vector<TreeNode*>& changed)
{
    TreeNode* rootNode = root();
    if (textOf(rootNode, document) != plainRootText() || rootNode->style != NodeStyle::forRoot()) {
        setOwnText(rootNode, true, plainRootText());
        rootNode->style = NodeStyle::forRoot();
        changed.push_back(rootNode);
    }
}

std::vector<TreeNode*> NodeTree::settleMarks(std::vector<TreeNode*>* unmarked)
{
    std::vector<TreeNode*> expandNow;
    std::vector<int> depths(m_nodes.size(), 0);
    for (size_t n = 1; n < m_nodes.size(); ++n) {
        depths[n] = depths[size_t(m_nodes[n]->parent->ordinal)] + 1;
    }
    for (TreeNode* node : m_nodes) {
        settleMark(node, depths[size_t(node->ordinal)], expandNow, unmarked);
    }
    return expandNow;
}

std::vector<TreeNode*> NodeTree::settleMarksOf(const std::vector<TreeNode*>& nodes, std::vector<TreeNode*>* unmarked)
{
    // Past a few nodes, one pass over all is cheaper than a walk up from each of them.
    if (nodes.size() * 8 > m_nodes.size()) {
        return settleMarks(unmarked);
    }
    std::vector<TreeNode*> expandNow;
    for (TreeNode* node : nodes) {
        // A mark asks only whether the node lies above expandedLevels, so the walk up stops there.
        int depth = 0;
        for (const TreeNode* above = node->parent; above != nullptr && depth < expandedLevels; above = above->parent) {
            ++depth;
        }
        settleMark(node, depth, expandNow, unmarked);
    }
    return expandNow;
}

void NodeTree::settleMark(TreeNode* node, int depth, std::vector<TreeNode*>& expandNow,
                          std::vector<TreeNode*>* unmarked)
{
    const bool expanded = shouldExpand(node, depth);
    if (expanded && !node->expanded) {
        expandNow.push_back(node);
    } else if (!expanded && node->expanded && unmarked != nullptr) {
        unmarked->push_back(node);
    }
    node->expanded = expanded;
}

void NodeTree::setExpandedMark(TreeNode* node, bool expanded)
{
    if (node != nullptr && node->expanded != expanded) {
        node->expanded = expanded;
        unsettle(node);
    }
}

void NodeTree::unsettle(const TreeNode* node) const
{
    node->showsSyncedRecord = false;
    if (!m_shapeSynced || m_allUnsettled) {
        return;
    }
    // Past one entry per node, looking at every node is cheaper than keeping the list.
    if (m_unsettled.size() >= m_nodes.size()) {
        m_allUnsettled = true;
        m_unsettled.clear();
        return;
    }
    m_unsettled.push_back(node->ordinal);
}

void NodeTree::rememberSyncedShape(const MenuDocument& document)
{
    m_syncedArray = document.items;
    m_syncedHideMode = document.hideMode;
    m_syncedItemOf.resize(m_nodes.size());
    for (size_t n = 0; n < m_nodes.size(); ++n) {
        m_syncedItemOf[n] = m_nodes[n]->itemHint;
        // The root shows a text of its own, not a record.
        m_nodes[n]->showsSyncedRecord = n > 0;
    }
    m_shapeSynced = true;
    m_unsettled.clear();
    m_allUnsettled = false;
}

bool NodeTree::keepsSyncedShape(const MenuDocument& document) const
{
    const auto& items = document.items;
    if (!m_shapeSynced || root() == nullptr || document.hideMode != m_syncedHideMode
        || items.size() != m_syncedArray.size()) {
        return false;
    }
    // The plan reads an item's key, parent, place among its siblings, number of children and
    // whether the hide mode shows it; where none of these changed, it plans the same nodes. Only the
    // records the document no longer shares with the synced ones can have changed.
    for (const ItemRange& range : items.rangesDifferentFrom(m_syncedArray)) {
        for (qsizetype i = range.begin; i < std::min(range.end, items.size()); ++i) {
            const MenuItem& item = items.at(i);
            const MenuItem& synced = m_syncedArray.at(i);
            if (item.parent != synced.parent || item.siblingOrder != synced.siblingOrder
                || item.childCount != synced.childCount || item.key != synced.key
                || HideMode::isVisible(item, document.hideMode) != HideMode::isVisible(synced, document.hideMode)) {
                return false;
            }
        }
    }
    return true;
}

std::vector<TreeNode*> NodeTree::refreshInPlace(const MenuDocument& document, const MenuDocument& before,
                                                std::vector<TreeNode*>* unmarked)
{
    documentChanged();
    const auto& items = document.items;
    // Captions can only differ where the two documents do not share their records, and styles only
    // where the document does not share them with the synced records; every other node still shows
    // what the synced records make of it, unless the tree changed it since (m_unsettled). So an undo
    // of a rename looks at the nodes of one chunk of records, not at 32,767 records.
    std::vector<char> captionMayDiffer(size_t(items.size()), 0);
    markRecordsDifferentFrom(captionMayDiffer, items, before.items);
    std::vector<char> recordMayDiffer = captionMayDiffer;
    markRecordsDifferentFrom(recordMayDiffer, items, m_syncedArray);
    std::vector<char> recheck(m_nodes.size(), m_allUnsettled ? 1 : 0);
    for (size_t n = 1; n < m_nodes.size(); ++n) {
        if (recordMayDiffer[size_t(m_syncedItemOf[n])] != 0) {
            recheck[n] = 1;
        }
    }
    // The nodes the tree changed since, in collection order; setting a text below notes its node
    // again, and the list is emptied once every node is settled.
    std::vector<int> unsettled = std::move(m_unsettled);
    m_unsettled.clear();
    std::sort(unsettled.begin(), unsettled.end());
    unsettled.erase(std::unique(unsettled.begin(), unsettled.end()), unsettled.end());
    for (const int ordinal : unsettled) {
        recheck[size_t(ordinal)] = 1;
    }
    std::vector<TreeNode*> changed;
    restoreRoot(document, changed);
    for (size_t n = 1; n < m_nodes.size(); ++n) {
        if (recheck[n] == 0) {
            continue;
        }
        TreeNode* node = m_nodes[n];
        const int item = m_syncedItemOf[n];
        const MenuItem& shown = items.at(item);
        // A node that showed a text of its own or another item's caption is repainted, as is one
        // whose caption changed.
        bool differs = node->hasOwnText || node->itemHint != item
            || (captionMayDiffer[size_t(item)] != 0 && before.items.at(item).caption != shown.caption);
        node->itemHint = item;
        if (node->hasOwnText) {
            setOwnText(node, false);
        }
        const NodeStyle style = NodeStyle::forItem(shown);
        if (style != node->style) {
            node->style = style;
            differs = true;
        }
        if (differs) {
            changed.push_back(node);
        }
        node->showsSyncedRecord = true;
    }
    // Expanded marks follow the shape, which stands; only a mark the tree was told to change can differ.
    std::vector<TreeNode*> expandNow;
    if (m_allUnsettled) {
        expandNow = settleMarks(unmarked);
    } else {
        std::vector<TreeNode*> marked;
        marked.reserve(unsettled.size());
        for (const int ordinal : unsettled) {
            marked.push_back(m_nodes[size_t(ordinal)]);
        }
        expandNow = settleMarksOf(marked, unmarked);
    }
    // The shape is the synced one: these records describe it as well, and the older ones can go.
    m_syncedArray = items;
    m_unsettled.clear();
    m_allUnsettled = false;
    announceChanged(changed);
    return expandNow;
}

TreeNode* NodeTree::addNode(const QString& parentKey, const QString& key, const QString& text,
                            const MenuDocument& document)
{
    if (parentKey.isEmpty()) {
        if (root() != nullptr) {
            return nullptr; // the tree has one root
        }
        if (m_observer != nullptr) {
            m_observer->treeAboutToBeReset();
        }
        TreeNode* created = newNode(key, nullptr);
        setOwnText(created, true, text);
        created->style = NodeStyle::forRoot();
        registerNode(created);
        if (m_observer != nullptr) {
            m_observer->treeReset();
        }
        return created;
    }
    NewNode single { parentKey, key, text };
    const std::vector<TreeNode*> made = addNodes({ single }, document);
    return made.empty() ? nullptr : made.front();
}

std::vector<TreeNode*> NodeTree::addNodes(const QList<NewNode>& nodes, const MenuDocument& document)
{
    // Nodes whose parent is new hang on it while it is not in the tree yet; a node whose parent is in
    // the tree starts a branch that joins the tree once every node is made.
    std::vector<TreeNode*> made;
    std::vector<std::pair<TreeNode*, TreeNode*>> branches; // (parent in the tree, top)
    const int firstNew = nodeCount();
    for (const NewNode& wanted : nodes) {
        if (wanted.key.isEmpty() || m_byKey.contains(wanted.key)) {
            continue; // the tree keeps one node per key, as addNode does
        }
        TreeNode* parent = nodeByKey(wanted.parentKey);
        if (parent == nullptr) {
            continue;
        }
        const bool parentIsNew = parent->ordinal >= firstNew;
        TreeNode* created = newNode(wanted.key, parentIsNew ? parent : nullptr);
        registerNode(created);
        made.push_back(created);
        if (!parentIsNew) {
            branches.emplace_back(parent, created);
        }
        const int item = itemOf(created, document);
        if (item < 0 || document.items.at(item).caption != wanted.text) {
            setOwnText(created, true, wanted.text);
        }
    }
    for (const auto& [parent, top] : branches) {
        const int row = int(parent->children.size());
        if (m_observer != nullptr) {
            m_observer->nodesAboutToBeInserted(parent, row, row);
        }
        attach(top, parent, row);
        if (m_observer != nullptr) {
            m_observer->nodesInserted();
        }
    }
    return made;
}

void NodeTree::removeBranch(TreeNode* top, std::vector<TreeNode*>& gone)
{
    if (m_observer != nullptr) {
        m_observer->nodesAboutToBeRemoved(top->parent, top->row, top->row);
    }
    detach(top);
    const std::vector<TreeNode*> branch = branchInPreOrder(top);
    for (TreeNode* node : branch) {
        if (m_byKey.value(node->key, nullptr) == node) {
            m_byKey.remove(node->key);
        }
        node->ordinal = -1;
    }
    if (m_observer != nullptr) {
        m_observer->nodesRemoved();
    }
    gone.insert(gone.end(), branch.begin(), branch.end());
}

void NodeTree::finishRemovals(std::vector<TreeNode*>& gone)
{
    if (gone.empty()) {
        return;
    }
    m_nodes.erase(
        std::remove_if(m_nodes.begin(), m_nodes.end(), [](const TreeNode* node) { return node->ordinal < 0; }),
        m_nodes.end());
    renumber();
    for (TreeNode* node : gone) {
        deleteNode(node);
    }
    gone.clear();
}

void NodeTree::removeNode(TreeNode* node)
{
    if (node == nullptr || node->parent == nullptr) {
        return; // the root goes only with the whole tree
    }
    std::vector<TreeNode*> gone;
    removeBranch(node, gone);
    finishRemovals(gone);
}

void NodeTree::moveNode(TreeNode* node, TreeNode* parent, int row)
{
    if (node == nullptr || parent == nullptr || node->parent == nullptr || isWithin(parent, node)) {
        return; // a node cannot move into its own branch
    }
    const bool sameParent = node->parent == parent;
    const int lastRow = int(parent->children.size()) - (sameParent ? 1 : 0);
    const int newRow = std::clamp(row, 0, lastRow);
    if (sameParent && newRow == node->row) {
        return;
    }
    if (m_observer != nullptr) {
        m_observer->nodeAboutToBeMoved(node->parent, node->row, parent, newRow);
    }
    detach(node);
    attach(node, parent, newRow);
    if (m_observer != nullptr) {
        m_observer->nodeMoved();
    }
}

TreeNode* NodeTree::moveAmongSiblings(TreeNode* node, int offset)
{
    TreeNode* parent = node != nullptr ? node->parent : nullptr;
    if (parent == nullptr) {
        return node;
    }
    const int newRow = node->row + offset;
    if (newRow < 0 || newRow >= int(parent->children.size())) {
        return node;
    }
    TreeNode* other = parent->children[size_t(newRow)];
    if (!node->children.empty() || !other->children.empty()) {
        moveNode(node, parent, newRow);
        return node;
    }
    // Two leaves trade what they show and their places in the collection, so that every key keeps
    // its node number and the view lays nothing out again.
    shapeChanged();
    std::swap(node->key, other->key);
    std::swap(node->itemHint, other->itemHint);
    std::swap(node->style, other->style);
    const bool nodeHadText = node->hasOwnText;
    const QString nodeText = m_ownTexts.value(node);
    setOwnText(node, other->hasOwnText, m_ownTexts.value(other));
    setOwnText(other, nodeHadText, nodeText);
    std::swap(node->ordinal, other->ordinal);
    m_nodes[size_t(node->ordinal)] = node;
    m_nodes[size_t(other->ordinal)] = other;
    m_byKey.insert(node->key, node);
    m_byKey.insert(other->key, other);
    if (m_observer != nullptr) {
        m_observer->nodesChanged(parent, std::min(node->row, other->row), std::max(node->row, other->row));
    }
    return other;
}

void NodeTree::setText(TreeNode* node, const QString& text, const MenuDocument& document)
{
    if (node == nullptr) {
        return;
    }
    if (node == root()) {
        // The root shows no item's caption: when its text stands, nothing needs painting again.
        if (node->hasOwnText && m_ownTexts.value(node) == text) {
            return;
        }
        setOwnText(node, true, text);
    } else {
        const int item = itemOf(node, document);
        setOwnText(node, item < 0 || document.items.at(item).caption != text, text);
    }
    if (m_observer != nullptr) {
        m_observer->nodesChanged(node->parent, node->row, node->row);
    }
}

void NodeTree::setColour(TreeNode* node, NodeStyle::Colour colour)
{
    if (node == nullptr || node->style.colour == colour) {
        return;
    }
    node->style.colour = colour;
    unsettle(node);
    if (m_observer != nullptr) {
        m_observer->nodesChanged(node->parent, node->row, node->row);
    }
}

void NodeTree::colorize(const MenuDocument& document)
{
    documentChanged();
    const auto& items = document.items;
    std::vector<TreeNode*> changed;
    for (TreeNode* node : m_nodes) {
        if (node == root()) {
            continue;
        }
        // Resetting to black and then applying the submenu and command rows ends in the item's style;
        // it is applied in one step so that each node changes at most once.
        const int item = itemOf(node, document);
        const NodeStyle style = item >= 0 ? NodeStyle::forItem(items.at(item)) : NodeStyle();
        if (style != node->style) {
            node->style = style;
            unsettle(node);
            changed.push_back(node);
        }
    }
    announceChanged(changed);
}

void NodeTree::announceChanged(std::vector<TreeNode*>& changed)
{
    if (m_observer == nullptr || changed.empty()) {
        return;
    }
    // Siblings side by side are told of in one run.
    std::sort(changed.begin(), changed.end(), [](const TreeNode* left, const TreeNode* right) {
        return left->parent != right->parent ? std::less<const TreeNode*>()(left->parent, right->parent)
                                             : left->row < right->row;
    });
    size_t start = 0;
    for (size_t n = 1; n <= changed.size(); ++n) {
        if (n == changed.size() || changed[n]->parent != changed[start]->parent
            || changed[n]->row != changed[n - 1]->row + 1) {
            m_observer->nodesChanged(changed[start]->parent, changed[start]->row, changed[n - 1]->row);
            start = n;
        }
    }
}
