#include "menuproblemcheck.h"

#include "commandtextcheck.h"
#include "menufile/menufilereader.h"
#include "menufile/saveorder.h"
#include "menufile/saveproblemcheck.h"
#include "menufilelines.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <climits>
#include <utility>
#include <vector>

namespace {

constexpr int markersPerLevel = 3;

/// The paths shown for items: the captions from the top level down to an item, or the omission and
/// the last MenuProblem::PathCaptions of them for a deeper item. Walking no further than that keeps a
/// check of a deep menu linear. The problems of one item share one list.
class ItemPaths
{
public:
    explicit ItemPaths(const MenuItemArray& items)
        : m_items(items)
    {
    }

    QStringList of(qint32 index)
    {
        if (index == m_lastIndex) {
            return m_lastPath;
        }
        const qint32 count = qint32(m_items.size());
        // A parent chain is followed for at most one step more than the menu has items, so that one
        // turning in a circle ends.
        const auto continues
            = [count](qint32 at, std::size_t length) { return at >= 0 && at < count && qint32(length) <= count; };
        std::array<qint32, MenuProblem::PathCaptions> chain {};
        std::size_t length = 0;
        qint32 at = index;
        for (; length < chain.size() && continues(at, length); at = m_items.at(at).parent) {
            chain[length++] = at;
        }
        QStringList path;
        path.reserve(qsizetype(length) + 1);
        if (continues(at, length)) {
            path.append(MenuProblem::pathOmission());
        }
        while (length > 0) {
            path.append(m_items.at(chain[--length]).caption);
        }
        m_lastIndex = index;
        m_lastPath = path;
        return path;
    }

private:
    const MenuItemArray& m_items;
    qint32 m_lastIndex = -1;
    QStringList m_lastPath;
};

QString plural(qsizetype count, const char* one, const char* many)
{
    return QString::number(count) + QLatin1Char(' ') + QLatin1String(count == 1 ? one : many);
}

/// Goes through the items in the order of a file and collects their problems and those of the
/// commands written for them. With the lines of the file, problems carry lines, and the lines
/// themselves are checked too.
class DocumentChecker
{
public:
    DocumentChecker(const MenuDocument& document, const MenuFileLines* lines, QList<MenuProblem>& problems)
        : m_items(document.items)
        , m_lines(lines)
        , m_problems(problems)
        , m_paths(document.items)
    {
    }

    /// `order` holds the item indices in the order of the file: order[k] is item number k + 1.
    void check(const QList<qint32>& order)
    {
        prepareLinks(order);
        m_numbers.assign(std::size_t(m_items.size()), 0);
        for (qsizetype k = 0; k < order.size(); ++k) {
            m_numbers[std::size_t(order.at(k))] = int(k + 1);
        }
        QHash<std::pair<qint32, QString>, qint32> firstWithCaption;
        firstWithCaption.reserve(order.size());
        for (qsizetype k = 0; k < order.size(); ++k) {
            const qint32 index = order.at(k);
            const MenuItem& item = m_items.at(index);
            if (m_lines) {
                checkLine(index);
            }
            if (item.caption.trimmed().isEmpty()) {
                addItemProblem(index, MenuProblem::Kind::EmptyCaption,
                               item.caption.isEmpty() ? QStringLiteral("has an empty caption")
                                                      : QStringLiteral("has a caption of blanks only"));
            }
            const auto first = firstWithCaption.constFind({ item.parent, item.caption });
            if (first == firstWithCaption.constEnd()) {
                firstWithCaption.insert({ item.parent, item.caption }, index);
            } else {
                addItemProblem(index, MenuProblem::Kind::DuplicateCaption,
                               QStringLiteral("has the same caption as its sibling item %1")
                                   .arg(m_numbers[std::size_t(first.value())]));
            }
            checkCommands(index);
        }
    }

    /// Everything the file could not hold, from the save check, at the items it concerns.
    void checkSavable(const MenuDocument& document)
    {
        QHash<QString, qint32> indexOfKey;
        for (qint32 i = qint32(m_items.size()) - 1; i >= 0; --i) {
            indexOfKey.insert(m_items.at(i).key, i);
        }
        for (const SaveProblem& saveProblem : findSaveProblems(document)) {
            MenuProblem problem;
            problem.kind = MenuProblem::Kind::UnsavableValue;
            problem.message = saveProblem.description;
            const qint32 index = indexOfKey.value(saveProblem.itemKey, -1);
            if (index >= 0) {
                place(problem, index);
            }
            m_problems.append(std::move(problem));
        }
    }

private:
    /// The item whose commands are written for each item: a link's target, found as the file writer
    /// finds it (the first item that bears the key).
    void prepareLinks(const QList<qint32>& order)
    {
        m_writesOwn.assign(std::size_t(m_items.size()), false);
        m_checked.assign(std::size_t(m_items.size()), false);
        bool anyLink = false;
        for (const qint32 index : order) {
            const bool link = m_items.at(index).copiesCommands;
            m_writesOwn[std::size_t(index)] = !link;
            anyLink = anyLink || link;
        }
        if (!anyLink) {
            return;
        }
        for (qint32 i = qint32(m_items.size()) - 1; i >= 0; --i) {
            m_indexOfKey.insert(m_items.at(i).key, i);
        }
    }

    /// A line deeper than one level below the line before it, and markers that make no level.
    void checkLine(qint32 index)
    {
        const MenuItem& item = m_items.at(index);
        // Items of a file just read stand in the order of their lines, with the levels of their lines.
        const int levelBefore = index == 0 ? -1 : m_items.at(index - 1).level;
        const int jump = item.level - levelBefore;
        if (jump >= 2) {
            QString message = index == 0
                ? QStringLiteral("the first item line is %1 deep").arg(plural(item.level, "level", "levels"))
                : QStringLiteral("its line is %1 levels deeper than the item line before it").arg(jump);
            if (item.parent < 0) {
                message += QStringLiteral(", so it is read as a top-level item");
            } else {
                message
                    += QStringLiteral(", so it is read as a child of item %1 \"%2\"")
                           .arg(QString::number(item.parent + 1), m_paths.of(item.parent).join(QStringLiteral(" > ")));
            }
            addItemProblem(index, MenuProblem::Kind::LevelJump, message);
        }
        // A line of markers only has an empty caption, which is told; its markers are no stray ones.
        const int stray = m_lines->itemMarkers.value(index) % markersPerLevel;
        if (stray != 0 && !item.caption.isEmpty()) {
            addItemProblem(index, MenuProblem::Kind::StrayMarkers,
                           QStringLiteral("%1 before the caption: a level takes three markers, so %2 dropped when "
                                          "the file is read")
                               .arg(plural(stray, "stray marker", "stray markers"),
                                    QLatin1String(stray == 1 ? "it is" : "they are")));
        }
    }

    void checkCommands(qint32 index)
    {
        const MenuItem& item = m_items.at(index);
        qint32 source = index;
        if (item.copiesCommands) {
            source = m_indexOfKey.value(item.copyKey, -1);
            // A link names its target's commands, which are checked where the target writes them;
            // a target that writes none of its own is checked at the first link that writes them.
            if (source < 0 || m_writesOwn[std::size_t(source)] || m_checked[std::size_t(source)]) {
                return;
            }
        }
        m_checked[std::size_t(source)] = true;
        const QList<Command>& commands = m_items.at(source).commands;
        for (qsizetype slot = 1; slot < commands.size(); ++slot) {
            const qsizetype first = m_problems.size();
            CommandTextCheck::appendProblems(commands.at(slot).command, m_problems);
            for (qsizetype found = first; found < m_problems.size(); ++found) {
                MenuProblem& problem = m_problems[found];
                place(problem, index);
                problem.commandNumber = int(slot);
                problem.line = source == index ? commandLine(index, slot) : 0;
            }
        }
    }

    int commandLine(qint32 index, qsizetype slot) const
    {
        if (!m_lines || index >= m_lines->commandLines.size()) {
            return 0;
        }
        return m_lines->commandLines.at(index).value(slot - 1);
    }

    void place(MenuProblem& problem, qint32 index)
    {
        problem.itemPath = m_paths.of(index);
        problem.itemNumber = m_numbers[std::size_t(index)];
        problem.itemKey = m_items.at(index).key;
    }

    void addItemProblem(qint32 index, MenuProblem::Kind kind, const QString& message)
    {
        MenuProblem problem;
        problem.kind = kind;
        problem.message = message;
        place(problem, index);
        if (m_lines) {
            problem.line = m_lines->itemLines.value(index);
        }
        m_problems.append(std::move(problem));
    }

    const MenuItemArray& m_items;
    const MenuFileLines* m_lines;
    QList<MenuProblem>& m_problems;
    ItemPaths m_paths;
    std::vector<int> m_numbers;
    /// Items of the file that write their own commands (not links).
    std::vector<bool> m_writesOwn;
    /// Items whose commands were checked already.
    std::vector<bool> m_checked;
    QHash<QString, qint32> m_indexOfKey;
};

} // namespace

namespace MenuProblems {

QList<MenuProblem> checkDocument(const MenuDocument& document)
{
    const QList<SaveOrderEntry> saved = saveOrder(document);
    QList<qint32> order;
    order.reserve(saved.size());
    for (const SaveOrderEntry& entry : saved) {
        order.append(entry.index);
    }
    QList<MenuProblem> problems;
    DocumentChecker checker(document, nullptr, problems);
    checker.check(order);
    checker.checkSavable(document);
    return problems;
}

MenuFileCheck checkFileBytes(const QByteArray& bytes)
{
    MenuFileCheck result;
    result.read = readMenuBytes(bytes, result.document);
    if (!result.read.ok()) {
        return result;
    }
    const MenuFileLines lines = MenuFileLines::scan(bytes);
    const qsizetype itemCount = result.document.items.size();
    // The file is numbered by its own item lines, which is also the order the reader keeps.
    QList<qint32> order(itemCount);
    for (qsizetype i = 0; i < itemCount; ++i) {
        order[i] = qint32(i);
    }
    DocumentChecker checker(result.document, lines.itemLines.size() == itemCount ? &lines : nullptr, result.problems);
    checker.check(order);
    checker.checkSavable(result.document);
    // Problems without a line go last.
    std::stable_sort(result.problems.begin(), result.problems.end(),
                     [](const MenuProblem& left, const MenuProblem& right) {
                         return (left.line > 0 ? left.line : INT_MAX) < (right.line > 0 ? right.line : INT_MAX);
                     });
    return result;
}

MenuFileCheck checkFile(const QString& path)
{
    // The reader's own read refuses what is no regular file or is far too large for a menu.
    QByteArray bytes;
    MenuFileCheck result;
    result.read = readMenuFileBytes(path, bytes);
    if (!result.read.ok()) {
        return result;
    }
    return checkFileBytes(bytes);
}

} // namespace MenuProblems
