#include "randommenu.h"

#include "model/menudocument.h"

#include <QList>
#include <QRandomGenerator>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

const char* const extensions[] = { "", "txt", "TXT", "exe" };
const char* const commandTexts[] = { "del ", "copy $fs-001$ $dest$", "rename " };

template <typename T, std::size_t N> QString pick(QRandomGenerator& random, const T (&choices)[N])
{
    return QString::fromLatin1(choices[random.bounded(int(N))]);
}

QList<Command> randomCommands(QRandomGenerator& random)
{
    QList<Command> commands = MenuItem::placeholderCommands();
    // Mostly zero to two commands, so that identical lists turn up often.
    const int count = std::min(random.bounded(4), random.bounded(4));
    for (int s = 0; s < count; ++s) {
        commands.append(Command { pick(random, extensions), pick(random, commandTexts) });
    }
    return commands;
}

/// Parent, in creation order, of item `i` for the given tree shape.
int randomParent(QRandomGenerator& random, int shape, int i)
{
    if (i == 0) {
        return -1;
    }
    switch (shape) {
    case 0: // flat
        return random.bounded(8) == 0 ? 0 : -1;
    case 1: // one long chain with a few side branches
        return random.bounded(6) == 0 ? random.bounded(i) : i - 1;
    case 2: // bushy: parents among the most recent items
        return random.bounded(5) == 0 ? -1 : std::max(0, i - 1 - random.bounded(4));
    default: // anywhere
        return random.bounded(i + 1) - 1;
    }
}

void numberSiblings(QRandomGenerator& random, std::vector<int> siblings, std::vector<int>& siblingOrders)
{
    std::shuffle(siblings.begin(), siblings.end(), random);
    for (std::size_t n = 0; n < siblings.size(); ++n) {
        siblingOrders[std::size_t(siblings[n])] = int(n) + 1;
    }
}

} // namespace

namespace RandomMenu {

MenuDocument generate(QRandomGenerator& random, int itemCount)
{
    const int shape = random.bounded(4);
    const auto size = std::size_t(itemCount);
    std::vector<int> parents(size, -1);
    std::vector<int> levels(size, 0);
    std::vector<std::vector<int>> children(size);
    std::vector<int> topLevel;
    for (int i = 0; i < itemCount; ++i) {
        const int parent = randomParent(random, shape, i);
        parents[std::size_t(i)] = parent;
        if (parent < 0) {
            topLevel.push_back(i);
        } else {
            levels[std::size_t(i)] = levels[std::size_t(parent)] + 1;
            children[std::size_t(parent)].push_back(i);
        }
    }

    // Sibling orders in a random order among siblings, array slots in a random order.
    std::vector<int> siblingOrders(size, 0);
    numberSiblings(random, topLevel, siblingOrders);
    for (const auto& siblings : children) {
        numberSiblings(random, siblings, siblingOrders);
    }
    std::vector<int> slotOf(size);
    std::iota(slotOf.begin(), slotOf.end(), 0);
    if (random.bounded(4) != 0) {
        std::shuffle(slotOf.begin(), slotOf.end(), random);
    }

    // Distinct key numbers, not tied to the slots, as after earlier deletions.
    std::vector<int> keyNumbers(size + std::size_t(random.bounded(5)));
    std::iota(keyNumbers.begin(), keyNumbers.end(), 0);
    std::shuffle(keyNumbers.begin(), keyNumbers.end(), random);
    keyNumbers.resize(size);

    MenuDocument document;
    document.items.resize(itemCount);
    int highestKey = 0;
    for (int i = 0; i < itemCount; ++i) {
        MenuItem& item = document.items[slotOf[std::size_t(i)]];
        const int parent = parents[std::size_t(i)];
        item.caption = QStringLiteral("Item %1").arg(i);
        item.level = qint16(levels[std::size_t(i)]);
        item.parent = qint16(parent < 0 ? -1 : slotOf[std::size_t(parent)]);
        item.childCount = qint16(children[std::size_t(i)].size());
        item.siblingOrder = qint16(siblingOrders[std::size_t(i)]);
        item.key = QStringLiteral("E%1").arg(keyNumbers[std::size_t(i)]);
        item.commands = randomCommands(random);
        if (random.bounded(5) == 0) {
            item.lastCopyKey = QStringLiteral("E%1").arg(random.bounded(itemCount + 5));
        }
        highestKey = std::max(highestKey, keyNumbers[std::size_t(i)]);
    }
    document.lastIndex = qint16(highestKey + random.bounded(3));
    document.hideMode = random.bounded(4);

    // Existing links: to any item, earlier or later, to other links (chains), now and then to the
    // item itself; the linking item holds the target's commands, a stale list or none at all.
    const int linkChance = 1 + random.bounded(4);
    for (int i = 0; i < itemCount; ++i) {
        MenuItem& item = document.items[i];
        const int dice = random.bounded(10);
        if (dice < linkChance) {
            const int target = random.bounded(itemCount);
            item.copiesCommands = true;
            item.copyKey = document.items.at(target).key;
            const int held = random.bounded(3);
            if (held == 0) {
                item.commands = document.items.at(target).commands;
            } else if (held == 1) {
                item.commands = MenuItem::placeholderCommands();
            }
        } else if (dice == 9) {
            // An unlinked item that still names an item, as normalisation leaves behind.
            item.copyKey = document.items.at(random.bounded(itemCount)).key;
        } else if (dice == 8) {
            item.copyKey.clear();
        }
    }
    return document;
}

QString treeNumbersProblem(const MenuDocument& document)
{
    const auto& items = document.items;
    const int count = int(items.size());
    std::vector<std::vector<int>> orders(std::size_t(count) + 1);
    for (int i = 0; i < count; ++i) {
        const int parent = items.at(i).parent;
        if (parent < -1 || parent >= count || parent == i) {
            return QStringLiteral("item %1 (%2) has parent %3").arg(i).arg(items.at(i).key).arg(parent);
        }
        orders[std::size_t(parent + 1)].push_back(items.at(i).siblingOrder);
    }
    for (int p = -1; p < count; ++p) {
        auto& siblingOrders = orders[std::size_t(p + 1)];
        if (p >= 0 && int(siblingOrders.size()) != items.at(p).childCount) {
            return QStringLiteral("item %1 (%2) has childCount %3 but %4 children")
                .arg(p)
                .arg(items.at(p).key)
                .arg(items.at(p).childCount)
                .arg(siblingOrders.size());
        }
        std::sort(siblingOrders.begin(), siblingOrders.end());
        for (std::size_t n = 0; n < siblingOrders.size(); ++n) {
            if (siblingOrders[n] != int(n) + 1) {
                return QStringLiteral("children of %1 have sibling orders with a gap").arg(p);
            }
        }
    }
    // Every item must reach the top level: no cycles.
    for (int i = 0; i < count; ++i) {
        int steps = 0;
        for (int k = i; k != -1; k = items.at(k).parent) {
            if (++steps > count) {
                return QStringLiteral("item %1 (%2) lies on a parent cycle").arg(i).arg(items.at(i).key);
            }
        }
    }
    return QString();
}

QString firstDifference(const MenuDocument& left, const MenuDocument& right)
{
    if (left.items.size() != right.items.size()) {
        return QStringLiteral("item counts %1 and %2").arg(left.items.size()).arg(right.items.size());
    }
    for (qsizetype i = 0; i < left.items.size(); ++i) {
        const MenuItem& a = left.items.at(i);
        const MenuItem& b = right.items.at(i);
        if (a != b) {
            return QStringLiteral("slot %1: key %2/%3 parent %4/%5 childCount %6/%7 siblingOrder %8/%9 "
                                  "copyKey %10/%11 copies %12/%13 commands %14/%15")
                .arg(i)
                .arg(a.key, b.key)
                .arg(a.parent)
                .arg(b.parent)
                .arg(a.childCount)
                .arg(b.childCount)
                .arg(a.siblingOrder)
                .arg(b.siblingOrder)
                .arg(a.copyKey, b.copyKey)
                .arg(a.copiesCommands)
                .arg(b.copiesCommands)
                .arg(a.commands.size())
                .arg(b.commands.size());
        }
    }
    if (left != right) {
        return QStringLiteral("document fields differ");
    }
    return QString();
}

} // namespace RandomMenu
