#include "testmenus.h"

#include <QRandomGenerator>

#include <algorithm>
#include <vector>

namespace TestMenus {

MenuItem item(const QString& key, qint16 parent, qint16 childCount, qint16 siblingOrder, int commandCount)
{
    MenuItem result;
    result.caption = key;
    result.key = key;
    result.parent = parent;
    result.childCount = childCount;
    result.siblingOrder = siblingOrder;
    for (int c = 1; c <= commandCount; ++c) {
        result.commands.append(Command { QStringLiteral("*"), QStringLiteral("echo %1").arg(c) });
    }
    return result;
}

MenuItem linked(MenuItem item, const QString& targetKey)
{
    item.copyKey = targetKey;
    item.copiesCommands = true;
    return item;
}

namespace {

qint16 small(QRandomGenerator& random, int lowest, int highest)
{
    return qint16(random.bounded(lowest, highest + 1));
}

/// A well-formed tree: parents before children, exact childCounts and siblingOrders 1..n, then the
/// array shuffled and every parent index carried along.
QList<MenuItem> wellFormedItems(QRandomGenerator& random, int count)
{
    std::vector<int> parentOf(size_t(count), -1);
    std::vector<int> childCount(size_t(count) + 1, 0); // slot count is the top level
    std::vector<int> order(size_t(count), 0);
    for (int i = 0; i < count; ++i) {
        const int parent = (i == 0 || random.bounded(4) == 0) ? -1 : int(random.bounded(i));
        parentOf[size_t(i)] = parent;
        const size_t slot = parent < 0 ? size_t(count) : size_t(parent);
        order[size_t(i)] = ++childCount[slot];
    }
    std::vector<int> position(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        position[size_t(i)] = i;
    }
    std::shuffle(position.begin(), position.end(), random);

    QList<MenuItem> items(count);
    for (int i = 0; i < count; ++i) {
        const int parent = parentOf[size_t(i)];
        MenuItem& target = items[position[size_t(i)]];
        target = item(QStringLiteral("E%1").arg(i), qint16(parent < 0 ? -1 : position[size_t(parent)]),
                      qint16(childCount[size_t(i)]), qint16(order[size_t(i)]));
    }
    return items;
}

/// Items whose numbers are drawn freely: any parent (itself and later items included), any order.
QList<MenuItem> arbitraryItems(QRandomGenerator& random, int count)
{
    QList<MenuItem> items;
    for (int i = 0; i < count; ++i) {
        qint16 parent = -1;
        const int draw = int(random.bounded(10));
        if (draw >= 3) {
            parent = small(random, 0, count - 1);
        } else if (draw == 0) {
            parent = small(random, -3, count + 2);
        }
        items.append(item(QStringLiteral("E%1").arg(i), parent, small(random, -1, 4), small(random, -1, 5)));
    }
    return items;
}

void damage(QRandomGenerator& random, QList<MenuItem>& items)
{
    const int count = int(items.size());
    const int damages = int(random.bounded(4));
    for (int d = 0; d < damages && count > 0; ++d) {
        MenuItem& target = items[random.bounded(count)];
        switch (random.bounded(5)) {
        case 0: // a duplicate order
            target.siblingOrder = qint16(qMax(1, target.siblingOrder - 1));
            break;
        case 1: // a gap or an order above childCount
            target.siblingOrder = qint16(target.siblingOrder + small(random, 1, 3));
            break;
        case 2:
            target.childCount = qint16(target.childCount + small(random, -2, 2));
            break;
        case 3:
            target.siblingOrder = 0;
            break;
        default:
            target.parent = small(random, -1, count - 1);
            break;
        }
    }
}

} // namespace

MenuDocument randomMenu(quint32 seed)
{
    QRandomGenerator random(seed);
    const int count = int(random.bounded(0, 41));
    MenuDocument document;
    QList<MenuItem> items = random.bounded(3) == 0 ? arbitraryItems(random, count) : wellFormedItems(random, count);
    if (random.bounded(2) == 0) {
        damage(random, items);
    }
    document.items = MenuItemArray(items);
    for (MenuItem& entry : document.items) {
        const int commands = int(random.bounded(3));
        for (int c = 1; c <= commands; ++c) {
            entry.commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") });
        }
        if (count > 0 && random.bounded(3) == 0) {
            entry.copyKey = document.items.at(random.bounded(count)).key;
            entry.copiesCommands = random.bounded(4) != 0;
        }
    }
    document.lastIndex = qint16(count - 1);
    return document;
}

MenuDocument chainMenu(int depth)
{
    MenuDocument document;
    document.items.reserve(depth);
    for (int i = 0; i < depth; ++i) {
        document.items.append(
            item(QStringLiteral("E%1").arg(i), qint16(i - 1), qint16(i + 1 < depth ? 1 : 0), qint16(1)));
    }
    document.lastIndex = qint16(depth - 1);
    return document;
}

} // namespace TestMenus
