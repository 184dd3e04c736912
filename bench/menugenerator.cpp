#include "menugenerator.h"

#include "model/itemlookup.h"

#include <QRandomGenerator>

#include <algorithm>
#include <vector>

namespace {

constexpr int chainLength = 200;
constexpr int mixedMaxDepth = 30;

const char* const extensions[] = { "", "txt", "jpg", "pdf", "exe", "dll" };
const char* const commandPatterns[] = {
    "del \"$fs-%1$\"",
    "copy \"$fs-%1$\" \"$dest$\\backup-%1\"",
    "rename \"$fs-%1$\" \"old-$datetime$-%1\"",
    "regsvr32 /s \"$fs-%1$\"",
    "C:\\Tools\\Tolvexer.exe \"C:\\Scripts\\convert%1.tvs\" -in \"$fs-001$\" -out \"$dest$\"",
    "cmd /c echo %1 > \"$dest$\\list.txt\"||type \"$dest$\\list.txt\"",
};

template <typename T, std::size_t N> const T& pick(QRandomGenerator& random, const T (&choices)[N])
{
    return choices[random.bounded(int(N))];
}

QList<Command> randomCommandList(QRandomGenerator& random, const MenuGenerator::Options& options, int tag)
{
    QList<Command> commands = MenuItem::placeholderCommands();
    const int count = options.minCommands + random.bounded(options.maxCommands - options.minCommands + 1);
    for (int s = 0; s < count; ++s) {
        commands.append(Command { QString::fromLatin1(pick(random, extensions)),
                                  QString::fromLatin1(pick(random, commandPatterns)).arg(tag + s) });
    }
    return commands;
}

/// Depths, in pre-order, of `count` items starting at depth `base` (the first one at `base`).
void appendDepths(std::vector<int>& depths, MenuShape shape, int count, int base, QRandomGenerator& random)
{
    int depth = base;
    for (int n = 0; n < count; ++n) {
        switch (shape) {
        case MenuShape::Flat:
            depth = (n == 0 || random.bounded(40) == 0) ? base : base + 1;
            break;
        case MenuShape::Deep:
            depth = base + n % chainLength;
            break;
        case MenuShape::Mixed:
            if (n == 0) {
                depth = base;
            } else {
                const int dice = random.bounded(20);
                if (dice < 9 && depth < base + mixedMaxDepth) {
                    ++depth;
                } else if (dice >= 16) {
                    depth = base + random.bounded(depth - base + 1);
                }
            }
            break;
        }
        depths.push_back(depth);
    }
}

} // namespace

MenuDocument MenuGenerator::generate(const Options& options)
{
    QRandomGenerator random(options.seed);
    const int itemCount = std::max(1, options.itemCount);
    const int branchItems = std::clamp(options.branchSize, 1, itemCount);

    // The first item's branch: the item itself, then its descendants one level further down.
    std::vector<int> depths { 0 };
    appendDepths(depths, options.shape, branchItems - 1, 1, random);
    appendDepths(depths, options.shape, itemCount - branchItems, 0, random);

    std::vector<QList<Command>> sharedLists;
    sharedLists.reserve(std::size_t(options.sharedListCount));
    for (int n = 0; n < options.sharedListCount; ++n) {
        sharedLists.push_back(randomCommandList(random, options, n));
    }

    MenuDocument document;
    document.items.resize(itemCount);
    // The nearest earlier item at each depth, and how many children it has so far.
    std::vector<int> openAtDepth;
    int topLevelCount = 0;
    for (int i = 0; i < itemCount; ++i) {
        const int depth = depths[std::size_t(i)];
        openAtDepth.resize(std::size_t(depth));
        MenuItem& item = document.items[i];
        item.caption = QStringLiteral("Item %1 at level %2").arg(i).arg(depth);
        item.key = QStringLiteral("E%1").arg(i);
        item.level = qint16(depth);
        if (depth == 0) {
            item.parent = -1;
            item.siblingOrder = qint16(++topLevelCount);
        } else {
            const int parent = openAtDepth.back();
            MenuItem& parentItem = document.items[parent];
            item.parent = qint16(parent);
            item.siblingOrder = ++parentItem.childCount;
        }
        openAtDepth.push_back(i);
        if (!sharedLists.empty() && random.bounded(100) < options.sharedListPercent) {
            item.commands = sharedLists[std::size_t(random.bounded(int(sharedLists.size())))];
        } else {
            item.commands = randomCommandList(random, options, 1000 + i);
        }
    }
    document.lastIndex = qint16(itemCount - 1);
    return document;
}

QList<MenuShape> MenuGenerator::allShapes()
{
    return { MenuShape::Flat, MenuShape::Deep, MenuShape::Mixed };
}

QString MenuGenerator::shapeName(MenuShape shape)
{
    switch (shape) {
    case MenuShape::Flat:
        return QStringLiteral("flat");
    case MenuShape::Deep:
        return QStringLiteral("deep");
    case MenuShape::Mixed:
        return QStringLiteral("mixed");
    }
    return QString();
}

int MenuGenerator::branchSize(const MenuDocument& document, const QString& key)
{
    const int root = findItemByKey(document, key);
    if (root < 0) {
        return 0;
    }
    const auto& items = document.items;
    std::vector<std::vector<int>> children(std::size_t(items.size()));
    for (int i = 0; i < items.size(); ++i) {
        const int parent = items.at(i).parent;
        if (parent >= 0 && parent < items.size()) {
            children[std::size_t(parent)].push_back(i);
        }
    }
    int count = 0;
    std::vector<int> pending { root };
    while (!pending.empty()) {
        const int index = pending.back();
        pending.pop_back();
        ++count;
        const auto& own = children[std::size_t(index)];
        pending.insert(pending.end(), own.cbegin(), own.cend());
    }
    return count;
}
