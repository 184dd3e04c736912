#include "history/historytable.h"
#include "model/runtimeerror.h"

#include <QTest>

class TestHistoryTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithOnlyThePlaceholder()
    {
        const HistoryTable table;
        QCOMPARE(table.lastSlot(), qint16(0));
        QVERIFY(!table.isDocumentIndex(0));
        try {
            table.history(0);
            QFAIL("the placeholder was given out as a history");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 9);
            QCOMPARE(error.description(), QStringLiteral("Subscript out of range"));
        }
    }

    void slotsAreAppendedAndDroppedLikeDocuments()
    {
        HistoryTable table;
        QCOMPARE(table.appendSlot(), qint16(1));
        QCOMPARE(table.appendSlot(), qint16(2));
        QCOMPARE(table.history(2).undoCount(), qint16(0));
        QCOMPARE(table.history(2).redoCount(), qint16(0));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, table.history(3));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, table.history(-1));

        table.history(2).pushUndoState(MenuDocument {});
        table.removeLastSlot();
        QCOMPARE(table.lastSlot(), qint16(1));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, table.history(2));
        table.removeLastSlot();
        table.removeLastSlot();
        QCOMPARE(table.lastSlot(), qint16(0));

        // A slot given out again starts with empty stacks.
        QCOMPARE(table.appendSlot(), qint16(1));
        QCOMPARE(table.appendSlot(), qint16(2));
        QCOMPARE(table.history(2).undoCount(), qint16(0));
    }

    void aHistoryStaysInPlaceWhileDocumentsAreAdded()
    {
        HistoryTable table;
        table.appendSlot();
        DocumentHistory& first = table.history(1);
        first.pushUndoState(MenuDocument {});
        for (int i = 0; i < 100; ++i) {
            table.appendSlot();
        }
        QCOMPARE(&table.history(1), &first);
        QCOMPARE(first.undoCount(), qint16(1));
    }
};

QTEST_GUILESS_MAIN(TestHistoryTable)
#include "test_historytable.moc"
