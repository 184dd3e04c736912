#include "menufile/menufixtures.h"
#include "model/itemrangecheck.h"
#include "model/menuitemarray.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr qsizetype Chunk = MenuItemArray::ChunkSize;

/// Item number `n`: its caption and key tell it apart from every other item of a test.
MenuItem numbered(int n)
{
    MenuItem item = makeItem(QStringLiteral("Item %1").arg(n), n, qint16(n % 7 - 1), qint16(n % 11));
    if (n % 3 == 0) {
        item.commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad %1").arg(n) });
    }
    return item;
}

MenuItemArray numberedArray(int count, int first = 0)
{
    MenuItemArray array;
    for (int n = first; n < first + count; ++n) {
        array.append(numbered(n));
    }
    return array;
}

/// Empty when `array` holds exactly `expected`, read through every reading path; otherwise what
/// differs.
QString differenceFrom(const MenuItemArray& array, const QList<MenuItem>& expected)
{
    if (array.size() != expected.size() || array.count() != expected.size() || array.isEmpty() != expected.isEmpty()) {
        return QStringLiteral("size %1, expected %2").arg(array.size()).arg(expected.size());
    }
    for (qsizetype i = 0; i < expected.size(); ++i) {
        if (array.at(i) != expected.at(i) || array[i] != expected.at(i)) {
            return QStringLiteral("item %1 is %2, expected %3").arg(i).arg(array.at(i).caption, expected.at(i).caption);
        }
    }
    if (!std::equal(array.begin(), array.end(), expected.cbegin(), expected.cend())) {
        return QStringLiteral("iteration differs");
    }
    if (!std::equal(array.rbegin(), array.rend(), expected.crbegin(), expected.crend())) {
        return QStringLiteral("reverse iteration differs");
    }
    if (array.end() - array.begin() != expected.size()) {
        return QStringLiteral("iterator distance differs");
    }
    if (!expected.isEmpty()
        && (array.constFirst() != expected.constFirst() || array.constLast() != expected.constLast()
            || array.first() != expected.first() || array.last() != expected.last())) {
        return QStringLiteral("first or last differs");
    }
    if (array.toList() != expected) {
        return QStringLiteral("toList differs");
    }
    if (array != MenuItemArray(expected) || !(array == MenuItemArray(expected))) {
        return QStringLiteral("comparison with a fresh array differs");
    }
    return QString();
}

/// A random change to `array` and the same change to `expected`; `counter` numbers new items.
void randomChange(QRandomGenerator& random, MenuItemArray& array, QList<MenuItem>& expected, int& counter)
{
    const qsizetype size = expected.size();
    switch (random.bounded(12)) {
    case 0:
    case 1:
    case 2: {
        const MenuItem item = numbered(++counter);
        array.append(item);
        expected.append(item);
        break;
    }
    case 3:
        if (size > 0) {
            array.removeLast();
            expected.removeLast();
        }
        break;
    case 4:
    case 5:
    case 6:
        if (size > 0) {
            const qsizetype index = random.bounded(size);
            const QString caption = QStringLiteral("Renamed %1").arg(++counter);
            array[index].caption = caption;
            expected[index].caption = caption;
        }
        break;
    case 7: {
        const qsizetype newSize = random.bounded(4 * Chunk);
        array.resize(newSize);
        expected.resize(newSize);
        break;
    }
    case 8:
        if (size > 0) {
            const qsizetype index = random.bounded(size);
            if (random.bounded(2) == 0) {
                array.removeAt(index);
                expected.removeAt(index);
            } else {
                array.removeFirst();
                expected.removeFirst();
            }
        }
        break;
    case 9:
        if (size > 0) {
            if (random.bounded(2) == 0) {
                array.first().level = qint16(++counter);
                expected.first().level = qint16(counter);
            } else {
                array.last().level = qint16(++counter);
                expected.last().level = qint16(counter);
            }
        }
        break;
    case 10:
        if (random.bounded(4) == 0) {
            for (MenuItem& item : array) {
                item.childCount = qint16(item.childCount + 1);
            }
            for (MenuItem& item : expected) {
                item.childCount = qint16(item.childCount + 1);
            }
        } else {
            array.reserve(random.bounded(5 * Chunk));
        }
        break;
    default:
        if (random.bounded(8) == 0) {
            array.clear();
            expected.clear();
        } else if (random.bounded(2) == 0) {
            array.detach();
        }
        break;
    }
}

} // namespace

class TestMenuItemArray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationMatchesAPlainListOnRandomSequences()
    {
        for (quint32 seed = 1; seed <= 60; ++seed) {
            QRandomGenerator random(seed);
            MenuItemArray array;
            QList<MenuItem> expected;
            // Copies taken along the way, each with what it held when taken.
            std::vector<std::pair<MenuItemArray, QList<MenuItem>>> copies;
            int counter = 0;
            for (int step = 0; step < 400; ++step) {
                const int choice = int(random.bounded(20));
                if (choice == 0) {
                    copies.emplace_back(array, expected);
                } else if (choice == 1 && !copies.empty()) {
                    // Going back to an earlier copy, as Undo does.
                    const auto& earlier = copies[std::size_t(random.bounded(int(copies.size())))];
                    array = earlier.first;
                    expected = earlier.second;
                } else {
                    randomChange(random, array, expected, counter);
                }
                const QString problem = differenceFrom(array, expected);
                if (!problem.isEmpty()) {
                    QFAIL(qPrintable(QStringLiteral("seed %1 step %2: %3").arg(seed).arg(step).arg(problem)));
                }
            }
            for (const auto& [copy, held] : copies) {
                const QString problem = differenceFrom(copy, held);
                if (!problem.isEmpty()) {
                    QFAIL(qPrintable(QStringLiteral("seed %1, a copy: %2").arg(seed).arg(problem)));
                }
            }
        }
    }

    void constructionFromAListOrAnInitializerList()
    {
        const QList<MenuItem> list { numbered(1), numbered(2), numbered(3) };
        QVERIFY(differenceFrom(MenuItemArray(list), list).isEmpty());
        const MenuItemArray fromBraces { numbered(1), numbered(2), numbered(3) };
        QVERIFY(differenceFrom(fromBraces, list).isEmpty());
        QVERIFY(differenceFrom(MenuItemArray(), {}).isEmpty());
        QCOMPARE(MenuItemArray(), MenuItemArray(QList<MenuItem>()));
    }

    void aCopyIsNotReachedByWritesToTheOriginalAtChunkBoundaries()
    {
        MenuItemArray original = numberedArray(int(3 * Chunk + 5));
        const MenuItemArray copy = original;
        const QList<MenuItem> held = copy.toList();
        QVERIFY(copy.isSharedWith(original));
        for (const qsizetype index : { qsizetype(0), Chunk - 1, Chunk, 2 * Chunk - 1, 3 * Chunk, 3 * Chunk + 4 }) {
            original[index].caption = QStringLiteral("changed");
            QCOMPARE(original.at(index).caption, QStringLiteral("changed"));
        }
        QVERIFY(!copy.isSharedWith(original));
        QVERIFY(differenceFrom(copy, held).isEmpty());
    }

    void theOriginalIsNotReachedByWritesToACopy()
    {
        const MenuItemArray original = numberedArray(int(2 * Chunk + 1));
        const QList<MenuItem> held = original.toList();
        MenuItemArray copy = original;
        copy[Chunk].caption = QStringLiteral("changed");
        copy.last().key = QStringLiteral("E-changed");
        copy.append(numbered(9999));
        QVERIFY(differenceFrom(original, held).isEmpty());
        QCOMPARE(copy.at(Chunk).caption, QStringLiteral("changed"));
        QCOMPARE(copy.size(), 2 * Chunk + 2);
    }

    void aWriteCopiesOnlyTheChunkItWritesTo()
    {
        MenuItemArray original = numberedArray(int(4 * Chunk));
        const MenuItemArray copy = original;
        original[Chunk + 3].caption = QStringLiteral("renamed");
        for (qsizetype i = 0; i < original.size(); ++i) {
            // Outside the written chunk both arrays hold the very same records.
            const bool sameRecord = &original.at(i) == &copy.at(i);
            QCOMPARE(sameRecord, i < Chunk || i >= 2 * Chunk);
        }
        QCOMPARE(original.rangesDifferentFrom(copy), QList<ItemRange>({ ItemRange { Chunk, 2 * Chunk } }));
    }

    void appendingToAFullOrPartlyFilledSharedChunk()
    {
        MenuItemArray full = numberedArray(int(Chunk));
        const MenuItemArray fullCopy = full;
        full.append(numbered(1000));
        QCOMPARE(fullCopy.size(), Chunk);
        QCOMPARE(full.size(), Chunk + 1);
        // A new chunk was started; the full one is still shared.
        QCOMPARE(&full.at(0), &fullCopy.at(0));
        QCOMPARE(full.rangesDifferentFrom(fullCopy), QList<ItemRange>({ ItemRange { Chunk, Chunk + 1 } }));

        MenuItemArray partly = numberedArray(int(Chunk + 10));
        const MenuItemArray partlyCopy = partly;
        const QList<MenuItem> held = partlyCopy.toList();
        for (int n = 0; n < int(Chunk); ++n) {
            partly.append(numbered(2000 + n));
        }
        QVERIFY(differenceFrom(partlyCopy, held).isEmpty());
        QCOMPARE(partly.size(), 2 * Chunk + 10);
        QCOMPARE(partly.at(Chunk + 10), numbered(2000));
        QCOMPARE(partly.last(), numbered(2000 + int(Chunk) - 1));
        QCOMPARE(&partly.at(0), &partlyCopy.at(0));
    }

    void removingTheLastItemOfASharedArray()
    {
        MenuItemArray original = numberedArray(int(Chunk + 2));
        const MenuItemArray copy = original;
        const QList<MenuItem> held = copy.toList();
        original.removeLast();
        original.removeLast();
        QCOMPARE(original.size(), Chunk);
        QVERIFY(differenceFrom(copy, held).isEmpty());
        // Down to a full first chunk, which the two still share.
        QVERIFY(original.rangesDifferentFrom(copy) == QList<ItemRange>({ ItemRange { Chunk, Chunk + 2 } }));
        QCOMPARE(&original.at(0), &copy.at(0));
        original.removeLast();
        QCOMPARE(original.last(), numbered(int(Chunk) - 2));
        QVERIFY(differenceFrom(copy, held).isEmpty());
        while (!original.isEmpty()) {
            original.removeLast();
        }
        QVERIFY(differenceFrom(copy, held).isEmpty());
        QCOMPARE(original, MenuItemArray());
    }

    void clearingLeavesACopyWhole()
    {
        MenuItemArray original = numberedArray(int(2 * Chunk + 7));
        MenuItemArray copy = original;
        const QList<MenuItem> held = copy.toList();
        original.clear();
        QVERIFY(original.isEmpty());
        QVERIFY(differenceFrom(copy, held).isEmpty());
        copy.clear();
        original.append(numbered(1));
        QVERIFY(copy.isEmpty());
        QCOMPARE(original.size(), qsizetype(1));
    }

    void writableIterationAndDetachLeaveCopiesAlone()
    {
        MenuItemArray original = numberedArray(int(Chunk + 1));
        const MenuItemArray copy = original;
        const QList<MenuItem> held = copy.toList();
        for (MenuItem& item : original) {
            item.caption += QStringLiteral("!");
        }
        QVERIFY(differenceFrom(copy, held).isEmpty());
        QCOMPARE(original.at(Chunk).caption, held.at(Chunk).caption + QStringLiteral("!"));

        MenuItemArray detached = copy;
        detached.detach();
        QVERIFY(!detached.isSharedWith(copy));
        QVERIFY(&detached.at(0) != &copy.at(0));
        QCOMPARE(detached, copy);
        QVERIFY(detached.rangesDifferentFrom(copy) == QList<ItemRange>({ ItemRange { 0, Chunk + 1 } }));
    }

    void comparisonLooksAtContentNotSharing()
    {
        const MenuItemArray first = numberedArray(int(Chunk + 3));
        MenuItemArray second = numberedArray(int(Chunk + 3));
        QVERIFY(first == second);
        second[Chunk + 2].copiesCommands = true;
        QVERIFY(first != second);
        second[Chunk + 2].copiesCommands = false;
        QVERIFY(first == second);
        second.removeLast();
        QVERIFY(first != second);
        MenuItemArray emptied = numberedArray(1);
        emptied.removeLast();
        QVERIFY(emptied == MenuItemArray());
    }

    void rangesOfArraysThatShareNothingOrEverything()
    {
        const MenuItemArray array = numberedArray(int(2 * Chunk + 1));
        const MenuItemArray copy = array;
        QVERIFY(array.rangesDifferentFrom(copy).isEmpty());
        QVERIFY(MenuItemArray().rangesDifferentFrom(MenuItemArray()).isEmpty());
        const MenuItemArray unrelated = numberedArray(int(Chunk - 1));
        QVERIFY(array.rangesDifferentFrom(unrelated) == QList<ItemRange>({ ItemRange { 0, 2 * Chunk + 1 } }));
        QVERIFY(MenuItemArray().rangesDifferentFrom(array) == QList<ItemRange>({ ItemRange { 0, 2 * Chunk + 1 } }));
    }

    void rangesCoverEveryDifferenceOnRandomEditSequences()
    {
        for (quint32 seed = 1; seed <= 80; ++seed) {
            QRandomGenerator random(seed);
            int counter = 0;
            MenuItemArray array = numberedArray(int(random.bounded(6 * Chunk)));
            QList<MenuItem> expected = array.toList();
            // Earlier states of the array, as the undo stack keeps them.
            std::vector<MenuItemArray> states { array };
            for (int step = 0; step < 40; ++step) {
                const int edits = int(random.bounded(1, 4));
                for (int edit = 0; edit < edits; ++edit) {
                    randomChange(random, array, expected, counter);
                }
                if (random.bounded(3) == 0) {
                    states.push_back(array);
                    if (states.size() > 15) {
                        states.erase(states.begin());
                    }
                }
                for (const MenuItemArray& state : states) {
                    const QList<ItemRange> ranges = array.rangesDifferentFrom(state);
                    if (ranges != state.rangesDifferentFrom(array)) {
                        QFAIL(qPrintable(
                            QStringLiteral("seed %1 step %2: the ranges depend on the side").arg(seed).arg(step)));
                    }
                    const QString problem = rangeProblem(array, state, ranges);
                    if (!problem.isEmpty()) {
                        QFAIL(qPrintable(QStringLiteral("seed %1 step %2: %3").arg(seed).arg(step).arg(problem)));
                    }
                }
            }
        }
    }

    void aCopyReadOnAnotherThreadWhileTheOriginalIsEdited()
    {
        MenuItemArray original = numberedArray(int(12 * Chunk + 9));
        const QList<MenuItem> held = original.toList();
        std::atomic<bool> editing { true };
        std::atomic<int> mismatches { 0 };
        std::atomic<int> passes { 0 };
        // The reader holds its own copy and only reads it, as the autosave writer does.
        std::thread reader([copy = MenuItemArray(original), held, &editing, &mismatches, &passes] {
            do {
                for (qsizetype i = 0; i < held.size(); ++i) {
                    if (copy.at(i) != held.at(i)) {
                        ++mismatches;
                    }
                }
                ++passes;
            } while (editing.load());
        });
        QRandomGenerator random(7);
        int counter = 0;
        QList<MenuItem> expected = held;
        for (int step = 0; step < 3000; ++step) {
            randomChange(random, original, expected, counter);
            if (step % 100 == 0 && !original.isEmpty()) {
                // Copies taken and dropped on this thread move the same reference counts.
                const MenuItemArray snapshot = original;
                original[0].caption = QStringLiteral("renamed %1").arg(step);
                original = snapshot;
            }
        }
        editing = false;
        reader.join();
        QCOMPARE(mismatches.load(), 0);
        QVERIFY(passes.load() >= 1);
        QVERIFY(differenceFrom(original, expected).isEmpty());
    }

    void aCopyDroppedOnAnotherThreadLetsTheOriginalWriteInPlace()
    {
        for (int round = 0; round < 50; ++round) {
            MenuItemArray original = numberedArray(int(3 * Chunk));
            std::thread reader([copy = MenuItemArray(original)]() mutable {
                // Reads, then lets go of the copy on this thread.
                qsizetype total = 0;
                for (const MenuItem& item : std::as_const(copy)) {
                    total += item.caption.size();
                }
                copy = MenuItemArray();
                return total;
            });
            for (qsizetype i = 0; i < original.size(); i += 17) {
                original[i].caption = QStringLiteral("while read %1").arg(i);
            }
            reader.join();
            for (qsizetype i = 0; i < original.size(); ++i) {
                const QString caption = i % 17 == 0 ? QStringLiteral("while read %1").arg(i) : numbered(int(i)).caption;
                QCOMPARE(original.at(i).caption, caption);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestMenuItemArray)
#include "test_menuitemarray.moc"
