#include "cli/preorderwalk.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

MenuItem makeItem(const QString& caption, qint16 parent, qint16 siblingOrder, qint16 childCount = 0)
{
    MenuItem item;
    item.caption = caption;
    item.key = caption;
    item.parent = parent;
    item.siblingOrder = siblingOrder;
    item.childCount = childCount;
    return item;
}

/// "caption/depth" for every entry, so that a failure shows the whole walk.
QStringList describe(const MenuDocument& document, const QList<PreOrderEntry>& order)
{
    QStringList lines;
    for (const PreOrderEntry& entry : order) {
        lines << document.items.at(entry.index).caption + QLatin1Char('/') + QString::number(entry.depth);
    }
    return lines;
}

} // namespace

class TestPreOrderWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyDocumentGivesNothing() { QVERIFY(preOrderWalk(MenuDocument()).isEmpty()); }

    void walksByParentAndSiblingOrderNotByArrayOrder()
    {
        // The array order an editing session leaves behind after moves and deletions.
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("Delete"), -1, 2),   makeItem(QStringLiteral("View"), 3, 2),
                           makeItem(QStringLiteral("Pack"), 4, 1),      makeItem(QStringLiteral("Text"), 4, 2, 2),
                           makeItem(QStringLiteral("Tools"), -1, 1, 2), makeItem(QStringLiteral("Edit"), 3, 1) };
        const QList<PreOrderEntry> order = preOrderWalk(document);
        QCOMPARE(describe(document, order),
                 QStringList({ QStringLiteral("Tools/0"), QStringLiteral("Pack/1"), QStringLiteral("Text/1"),
                               QStringLiteral("Edit/2"), QStringLiteral("View/2"), QStringLiteral("Delete/0") }));
        QCOMPARE(order.at(0).index, 4);
        QCOMPARE(order.at(5).index, 0);
    }

    void itemsSharingASiblingOrderComeInArrayOrder()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("B"), -1, 1), makeItem(QStringLiteral("A"), -1, 1),
                           makeItem(QStringLiteral("C"), -1, 2) };
        QCOMPARE(describe(document, preOrderWalk(document)),
                 QStringList({ QStringLiteral("B/0"), QStringLiteral("A/0"), QStringLiteral("C/0") }));
    }

    void itemsOutsideTheirParentsRangeAreLeftOut()
    {
        MenuDocument document;
        document.items = {
            makeItem(QStringLiteral("Top"), -1, 1, 1),
            makeItem(QStringLiteral("Child"), 0, 1),
            makeItem(QStringLiteral("Beyond childCount"), 0, 2),
            makeItem(QStringLiteral("Order zero"), 0, 0),
            makeItem(QStringLiteral("Beyond top-level count"), -1, 9),
            makeItem(QStringLiteral("Parent out of range"), 40, 1),
            // Two items that name each other as parent never reach the top level.
            makeItem(QStringLiteral("Loop A"), 7, 1, 1),
            makeItem(QStringLiteral("Loop B"), 6, 1, 1),
        };
        QCOMPARE(describe(document, preOrderWalk(document)),
                 QStringList({ QStringLiteral("Top/0"), QStringLiteral("Child/1") }));
    }

    void childrenOfAnItemWithoutChildCountAreNotVisited()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("Top"), -1, 1, 0), makeItem(QStringLiteral("Child"), 0, 1) };
        QCOMPARE(describe(document, preOrderWalk(document)), QStringList({ QStringLiteral("Top/0") }));
    }

    void deepMenuIsWalkedWithoutRecursion()
    {
        const int depth = 30000;
        MenuDocument document;
        for (int i = 0; i < depth; ++i) {
            document.items.append(makeItem(QString::number(i), qint16(i - 1), 1, qint16(i + 1 < depth ? 1 : 0)));
        }
        const QList<PreOrderEntry> order = preOrderWalk(document);
        QCOMPARE(order.size(), depth);
        QCOMPARE(order.last().index, depth - 1);
        QCOMPARE(order.last().depth, depth - 1);
    }
};

QTEST_GUILESS_MAIN(TestPreOrderWalk)
#include "test_preorderwalk.moc"
