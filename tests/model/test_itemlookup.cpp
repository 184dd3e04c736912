#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QTest>

namespace {

MenuItem makeItem(const QString& key, qint16 level, qint16 parent)
{
    MenuItem item;
    item.caption = key;
    item.key = key;
    item.level = level;
    item.parent = parent;
    return item;
}

} // namespace

class TestItemLookup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findItemByKeyReturnsFirstExactMatch()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("E0"), 0, -1), makeItem(QStringLiteral("E1"), 0, -1),
                           makeItem(QStringLiteral("E1"), 0, -1) };
        QCOMPARE(findItemByKey(document, QStringLiteral("E0")), qint16(0));
        QCOMPARE(findItemByKey(document, QStringLiteral("E1")), qint16(1));
        QCOMPARE(findItemByKey(document, QStringLiteral("e1")), qint16(-1));
    }

    void findItemByKeyOfMinusOneOrDeletedKeyIsMinusOne()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("E2"), 0, -1), makeItem(QStringLiteral("E1"), 0, -1) };
        QCOMPARE(findItemByKey(document, QStringLiteral("-1")), qint16(-1));
        QCOMPARE(findItemByKey(document, QStringLiteral("E0")), qint16(-1));
        QCOMPARE(findItemByKey(document, QStringLiteral("E2")), qint16(0));
    }

    void findParentOfTopLevelItemIsMinusOneEvenWithEarlierItems()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("E0"), 0, -1), makeItem(QStringLiteral("E1"), 1, 0),
                           makeItem(QStringLiteral("E2"), 0, -1) };
        QCOMPARE(findParent(document, 2), qint16(-1));
        QCOMPARE(findParent(document, 0), qint16(-1));
    }

    void findParentIsNearestEarlierItemOneLevelUp()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("E0"), 0, -1), makeItem(QStringLiteral("E1"), 1, 0),
                           makeItem(QStringLiteral("E2"), 0, -1), makeItem(QStringLiteral("E3"), 1, 2),
                           makeItem(QStringLiteral("E4"), 2, 3),  makeItem(QStringLiteral("E5"), 1, 2) };
        QCOMPARE(findParent(document, 1), qint16(0));
        QCOMPARE(findParent(document, 3), qint16(2));
        QCOMPARE(findParent(document, 4), qint16(3));
        QCOMPARE(findParent(document, 5), qint16(2));
        QCOMPARE(findParent(document, -1), qint16(-1));
    }

    void findParentPastTheLastItemIsError9()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("E0"), 0, -1), makeItem(QStringLiteral("E1"), 1, 0) };
        for (const int index : { 2, 40 }) {
            try {
                findParent(document, index);
                QFAIL("an index past the last item was accepted");
            } catch (const RunTimeError& error) {
                QCOMPARE(error.number(), 9);
            }
        }
        QVERIFY_THROWS_EXCEPTION(RunTimeError, findParent(MenuDocument(), 0));
        QCOMPARE(findParent(document, 1), qint16(0));
    }

    void countTopLevelCountsParentMinusOne()
    {
        MenuDocument document;
        QCOMPARE(countTopLevel(document), qint16(0));
        document.items = { makeItem(QStringLiteral("E0"), 0, -1) };
        QCOMPARE(countTopLevel(document), qint16(1));
        document.items.append(makeItem(QStringLiteral("E1"), 1, 0));
        document.items.append(makeItem(QStringLiteral("E2"), 7, -1));
        QCOMPARE(countTopLevel(document), qint16(2));
    }

    void newItemHasPlaceholderCommandAndNoLink()
    {
        const MenuItem item;
        QCOMPARE(item.commands.size(), qsizetype(1));
        QCOMPARE(item.commandUpperBound(), 0);
        QVERIFY(!item.hasOwnCommands());
        QCOMPARE(item.copyKey, QStringLiteral("-1"));
        QVERIFY(!item.copiesCommands);
        QVERIFY(item.lastCopyKey.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestItemLookup)
#include "test_itemlookup.moc"
