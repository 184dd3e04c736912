#include "menufile/menufilewriter.h"
#include "menufile/saveorder.h"
#include "menufile/windows1252codec.h"
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
QStringList describe(const MenuDocument& document, const QList<SaveOrderEntry>& order)
{
    QStringList lines;
    for (const SaveOrderEntry& entry : order) {
        lines << document.items.at(entry.index).caption + QLatin1Char('/') + QString::number(entry.depth);
    }
    return lines;
}

/// The item lines of the [Menu] section of a written menu file, markers included.
QStringList writtenItemLines(const MenuDocument& document)
{
    const QString text = Windows1252Codec::decode(menuFileBytes(document));
    const qsizetype start = text.indexOf(QStringLiteral("[Menu]\r\n\r\n")) + 10;
    const qsizetype end = text.indexOf(QStringLiteral("\r\n\r\n[/Menu]"));
    if (end <= start) {
        return {};
    }
    return text.mid(start, end - start).split(QStringLiteral("\r\n"));
}

} // namespace

class TestSaveOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyDocumentGivesNothing() { QVERIFY(saveOrder(MenuDocument()).isEmpty()); }

    void walksByParentAndSiblingOrderNotByArrayOrder()
    {
        // The array order an editing session leaves behind after moves and deletions.
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("Delete"), -1, 2),   makeItem(QStringLiteral("View"), 3, 2),
                           makeItem(QStringLiteral("Pack"), 4, 1),      makeItem(QStringLiteral("Text"), 4, 2, 2),
                           makeItem(QStringLiteral("Tools"), -1, 1, 2), makeItem(QStringLiteral("Edit"), 3, 1) };
        const QList<SaveOrderEntry> order = saveOrder(document);
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
        QCOMPARE(describe(document, saveOrder(document)),
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
            makeItem(QStringLiteral("Parent out of range"), 40, 1),
            // Two items that name each other as parent never reach the top level.
            makeItem(QStringLiteral("Loop A"), 7, 1, 1),
            makeItem(QStringLiteral("Loop B"), 6, 1, 1),
        };
        QCOMPARE(describe(document, saveOrder(document)),
                 QStringList({ QStringLiteral("Top/0"), QStringLiteral("Child/1") }));
    }

    void topLevelItemAfterAGapInTheOrdersIsKept()
    {
        // The tree view stops at the first missing top-level order; the file keeps every item.
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("Four"), -1, 4), makeItem(QStringLiteral("One"), -1, 1),
                           makeItem(QStringLiteral("Two"), -1, 2) };
        QCOMPARE(describe(document, saveOrder(document)),
                 QStringList({ QStringLiteral("One/0"), QStringLiteral("Two/0"), QStringLiteral("Four/0") }));
    }

    void childrenOfAnItemWithoutChildCountAreNotVisited()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("Top"), -1, 1, 0), makeItem(QStringLiteral("Child"), 0, 1) };
        QCOMPARE(describe(document, saveOrder(document)), QStringList({ QStringLiteral("Top/0") }));
    }

    void listsItemsInTheOrderTheMenuFileIsWritten()
    {
        // The tree listing and the saved file must never disagree about the order, whatever the
        // array holds.
        MenuDocument document;
        document.items = {
            makeItem(QStringLiteral("Delete"), -1, 3),   makeItem(QStringLiteral("View"), 3, 2),
            makeItem(QStringLiteral("Pack"), 4, 1),      makeItem(QStringLiteral("Text"), 4, 2, 2),
            makeItem(QStringLiteral("Tools"), -1, 1, 2), makeItem(QStringLiteral("Edit"), 3, 1),
            makeItem(QStringLiteral("Shared"), -1, 1),   makeItem(QStringLiteral("Lost"), 3, 5),
            makeItem(QStringLiteral("Orphan"), 40, 1),   makeItem(QStringLiteral("Loop"), 9, 1, 1),
        };
        QStringList walked;
        for (const SaveOrderEntry& entry : saveOrder(document)) {
            walked << QString(entry.depth * 3, QChar(0xB7)) + document.items.at(entry.index).caption;
        }
        QCOMPARE(walked.size(), 7);
        QCOMPARE(walked, writtenItemLines(document));
    }

    void deepMenuIsWalkedWithoutRecursion()
    {
        const int depth = 30000;
        MenuDocument document;
        for (int i = 0; i < depth; ++i) {
            document.items.append(makeItem(QString::number(i), qint16(i - 1), 1, qint16(i + 1 < depth ? 1 : 0)));
        }
        const QList<SaveOrderEntry> order = saveOrder(document);
        QCOMPARE(order.size(), depth);
        QCOMPARE(order.last().index, depth - 1);
        QCOMPARE(order.last().depth, depth - 1);
    }
};

QTEST_GUILESS_MAIN(TestSaveOrder)
#include "test_saveorder.moc"
