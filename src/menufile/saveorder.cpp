#include "saveorder.h"

#include "model/int16.h"
#include "model/menudocument.h"

#include <algorithm>

namespace {

/// Puts `bucket` in the order the tree walk visits it: for ord = 1 .. limit, every item with that
/// siblingOrder, in array order among items that share one. Other items are dropped.
void orderSiblings(QList<qint32>& bucket, const MenuItemArray& items, qint32 limit)
{
    bucket.removeIf([&items, limit](qint32 index) {
        const qint16 order = items.at(index).siblingOrder;
        return order < 1 || order > limit;
    });
    std::stable_sort(bucket.begin(), bucket.end(), [&items](qint32 left, qint32 right) {
        return items.at(left).siblingOrder < items.at(right).siblingOrder;
    });
}

} // namespace

QList<SaveOrderEntry> saveOrder(const MenuDocument& document)
{
    const MenuItemArray& items = document.items;
    QList<QList<qint32>> children(items.size());
    QList<qint32> topLevel;
    for (qint32 i = 0; i < items.size(); ++i) {
        const qint16 parent = items.at(i).parent;
        if (parent == -1) {
            topLevel.append(i);
        } else if (parent >= 0 && parent < items.size()) {
            children[parent].append(i);
        }
    }
    // The top level is walked up to its highest order rather than only up to the number of
    // top-level items, so that an item after a gap in the top-level numbering (orders 1, 2, 4) is
    // still saved: the file keeps every top-level item even where the tree view stops at the gap.
    qint32 highestTopOrder = 0;
    for (const qint32 index : std::as_const(topLevel)) {
        highestTopOrder = std::max<qint32>(highestTopOrder, items.at(index).siblingOrder);
    }
    orderSiblings(topLevel, items, highestTopOrder);

    QList<SaveOrderEntry> order;
    order.reserve(items.size());
    QList<SaveOrderEntry> pending;
    for (auto it = topLevel.crbegin(); it != topLevel.crend(); ++it) {
        pending.append({ *it, 0 });
    }
    while (!pending.isEmpty()) {
        const SaveOrderEntry entry = pending.takeLast();
        order.append(entry);
        const MenuItem& item = items.at(entry.index);
        if (item.childCount < 1) {
            continue;
        }
        QList<qint32>& bucket = children[entry.index];
        orderSiblings(bucket, items, item.childCount);
        const qint16 childDepth = Int16::incremented(entry.depth, "saveOrder");
        for (auto it = bucket.crbegin(); it != bucket.crend(); ++it) {
            pending.append({ *it, childDepth });
        }
    }
    return order;
}
