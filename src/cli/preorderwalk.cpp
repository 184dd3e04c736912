#include "preorderwalk.h"

#include "model/menudocument.h"

#include <algorithm>
#include <vector>

namespace {

/// The children of every item, each list in the order the walk visits them. Slot 0 holds the
/// top-level items, slot i + 1 the children of item i. Grouping once keeps large menus linear
/// instead of scanning the whole array for every sibling position.
std::vector<std::vector<int>> childrenInVisitOrder(const MenuDocument& document)
{
    const int count = int(document.items.size());
    std::vector<std::vector<int>> children(std::size_t(count) + 1);
    int topLevelCount = 0;
    for (const MenuItem& item : document.items) {
        if (item.parent == -1) {
            ++topLevelCount;
        }
    }
    for (int i = 0; i < count; ++i) {
        const int parent = document.items.at(i).parent;
        if (parent < -1 || parent >= count) {
            continue;
        }
        const int lastOrder = parent == -1 ? topLevelCount : document.items.at(parent).childCount;
        const int order = document.items.at(i).siblingOrder;
        if (order >= 1 && order <= lastOrder) {
            children[std::size_t(parent + 1)].push_back(i);
        }
    }
    for (std::vector<int>& list : children) {
        // Stable, so that items sharing a siblingOrder keep their array order.
        std::stable_sort(list.begin(), list.end(), [&document](int left, int right) {
            return document.items.at(left).siblingOrder < document.items.at(right).siblingOrder;
        });
    }
    return children;
}

} // namespace

QList<PreOrderEntry> preOrderWalk(const MenuDocument& document)
{
    const std::vector<std::vector<int>> children = childrenInVisitOrder(document);

    QList<PreOrderEntry> order;
    order.reserve(document.items.size());
    // An explicit stack: a menu file may nest items thousands of levels deep.
    std::vector<PreOrderEntry> pending;
    const std::vector<int>& topLevel = children.front();
    for (auto it = topLevel.rbegin(); it != topLevel.rend(); ++it) {
        pending.push_back({ *it, 0 });
    }
    while (!pending.empty()) {
        const PreOrderEntry entry = pending.back();
        pending.pop_back();
        order.append(entry);
        if (document.items.at(entry.index).childCount < 1) {
            continue;
        }
        const std::vector<int>& list = children[std::size_t(entry.index) + 1];
        for (auto it = list.rbegin(); it != list.rend(); ++it) {
            pending.push_back({ *it, entry.depth + 1 });
        }
    }
    return order;
}
