#include "model/documentlist.h"
#include "model/runtimeerror.h"

#include <QTest>

class TestDocumentList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithOnlyThePlaceholder()
    {
        const DocumentList list;
        QCOMPARE(list.lastSlot(), qint16(0));
        QVERIFY(!list.isDocumentIndex(0));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, list.document(0));
    }

    void appendGivesIndicesFromOneAndRemoveLastNeverDropsThePlaceholder()
    {
        DocumentList list;
        QCOMPARE(list.append(), qint16(1));
        QCOMPARE(list.append(), qint16(2));
        list.document(2).filePath = QStringLiteral("b.ini");
        list.removeLast();
        QCOMPARE(list.lastSlot(), qint16(1));
        list.removeLast();
        list.removeLast();
        QCOMPARE(list.lastSlot(), qint16(0));
        QCOMPARE(list.append(), qint16(1));
        QVERIFY(list.document(1).filePath.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDocumentList)
#include "test_documentlist.moc"
