#include "treeplan.h"

#include "hidemode.h"
#include "model/int16.h"
#include "model/menudocument.h"

#include <vector>

namespace {

const char* const kSource = "generateTree";

/// What the plan reads of an item, gathered in one pass over the items so that the passes after it
/// run over a small array instead of the item records.
struct ItemShape
{
    qint16 parent = -1;
    qint16 siblingOrder = 0;
    qint16 childCount = 0;
    bool visible = false;
};

std::vector<ItemShape> shapesOf(const MenuItemArray& items, int hideMode)
{
    std::vector<ItemShape> shapes;
    shapes.reserve(size_t(items.size()));
    for (const MenuItem& item : items) {
        shapes.push_back(
            ItemShape { item.parent, item.siblingOrder, item.childCount, HideMode::isVisible(item, hideMode) });
    }
    return shapes;
}

/// Children of every item, grouped by parent, each group in siblingOrder and, among equal orders,
/// in array order: the order in which the rebuild visits them. Only children the rebuild can reach
/// are kept (siblingOrder 1 .. childCount of their parent).
struct ChildBuckets
{
    std::vector<int> start; // group of item p is children[start[p] .. start[p + 1])
    std::vector<int> children;
};

ChildBuckets bucketChildren(const std::vector<ItemShape>& shapes)
{
    const int count = int(shapes.size());
    std::vector<int> reachable;
    reachable.reserve(size_t(count));
    int maxOrder = 0;
    for (int j = 0; j < count; ++j) {
        const ItemShape& item = shapes[size_t(j)];
        if (item.parent < 0 || item.parent >= count) {
            continue;
        }
        if (item.siblingOrder < 1 || item.siblingOrder > shapes[size_t(item.parent)].childCount) {
            continue;
        }
        reachable.push_back(j);
        maxOrder = qMax(maxOrder, int(item.siblingOrder));
    }

    // Two stable counting sorts: by siblingOrder, then by parent. Array order survives among equal
    // orders of one parent, which is the order the rebuild shows duplicates in.
    std::vector<int> orderStart(size_t(maxOrder) + 2, 0);
    for (const int j : reachable) {
        ++orderStart[size_t(shapes[size_t(j)].siblingOrder) + 1];
    }
    for (size_t o = 1; o < orderStart.size(); ++o) {
        orderStart[o] += orderStart[o - 1];
    }
    std::vector<int> byOrder(reachable.size());
    for (const int j : reachable) {
        byOrder[size_t(orderStart[size_t(shapes[size_t(j)].siblingOrder)]++)] = j;
    }

    ChildBuckets buckets;
    buckets.start.assign(size_t(count) + 1, 0);
    for (const int j : byOrder) {
        ++buckets.start[size_t(shapes[size_t(j)].parent) + 1];
    }
    for (size_t p = 1; p < buckets.start.size(); ++p) {
        buckets.start[p] += buckets.start[p - 1];
    }
    std::vector<int> next(buckets.start.begin(), buckets.start.end() - 1);
    buckets.children.resize(byOrder.size());
    for (const int j : byOrder) {
        buckets.children[size_t(next[size_t(shapes[size_t(j)].parent)]++)] = j;
    }
    return buckets;
}

/// The top-level items in the order shown: for siblingOrder 1, 2, 3 ... the first item in array
/// order, up to the first order no top-level item has.
std::vector<int> topLevelItems(const std::vector<ItemShape>& shapes)
{
    std::vector<int> firstOfOrder;
    for (int j = 0; j < int(shapes.size()); ++j) {
        const ItemShape& item = shapes[size_t(j)];
        if (item.parent != -1 || item.siblingOrder < 1) {
            continue;
        }
        const size_t order = size_t(item.siblingOrder);
        if (firstOfOrder.size() <= order) {
            firstOfOrder.resize(order + 1, -1);
        }
        if (firstOfOrder[order] < 0) {
            firstOfOrder[order] = j;
        }
    }
    std::vector<int> result;
    for (size_t order = 1; order < firstOfOrder.size() && firstOfOrder[order] >= 0; ++order) {
        result.push_back(firstOfOrder[order]);
    }
    return result;
}

struct Visit
{
    int item;
    /// Index of the nearest shown ancestor, -1 for the root node.
    int shownAncestor;
};

} // namespace

std::vector<PlannedItem> planTreeItems(const MenuDocument& document, int hideMode)
{
    const std::vector<ItemShape> shapes = shapesOf(document.items, hideMode);
    const ChildBuckets buckets = bucketChildren(shapes);
    const std::vector<int> topLevel = topLevelItems(shapes);

    std::vector<PlannedItem> plan;
    plan.reserve(shapes.size());

    // Pre-order walk with an explicit stack: siblings are pushed last-first so they come off in
    // order, each with its whole subtree before the next.
    std::vector<Visit> stack;
    stack.reserve(shapes.size());
    for (auto it = topLevel.rbegin(); it != topLevel.rend(); ++it) {
        stack.push_back(Visit { *it, -1 });
    }
    while (!stack.empty()) {
        const Visit visit = stack.back();
        stack.pop_back();
        int childAncestor = visit.shownAncestor;
        if (shapes[size_t(visit.item)].visible) {
            // A node's index is a 16-bit number, as every index of the model.
            plan.push_back(PlannedItem { Int16::checked(visit.item, kSource), visit.shownAncestor });
            childAncestor = visit.item;
        }
        const int first = buckets.start[size_t(visit.item)];
        for (int c = buckets.start[size_t(visit.item) + 1] - 1; c >= first; --c) {
            stack.push_back(Visit { buckets.children[size_t(c)], childAncestor });
        }
    }
    return plan;
}

QList<PlannedNode> planTree(const MenuDocument& document, int hideMode)
{
    const auto& items = document.items;
    const std::vector<PlannedItem> planned = planTreeItems(document, hideMode);
    const QString rootKey = QStringLiteral("Root");
    QList<PlannedNode> plan;
    plan.reserve(qsizetype(planned.size()));
    for (const PlannedItem& entry : planned) {
        PlannedNode node;
        const MenuItem& item = items.at(entry.item);
        node.key = item.key;
        node.parentKey = entry.parentItem < 0 ? rootKey : items.at(entry.parentItem).key;
        node.caption = item.caption;
        node.itemIndex = qint16(entry.item);
        plan.append(node);
    }
    return plan;
}
