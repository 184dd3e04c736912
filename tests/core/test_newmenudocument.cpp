#include "core/newmenudocument.h"

#include "model/menudocument.h"

#include <QTest>

class TestNewMenuDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsOneTopLevelItem()
    {
        const MenuDocument document = newMenuDocument(7);
        QCOMPARE(document.items.size(), 1);
        const MenuItem& item = document.items.constFirst();
        QCOMPARE(item.caption, QStringLiteral("New Item 1"));
        QCOMPARE(item.key, QStringLiteral("E0"));
        QCOMPARE(item.level, qint16(1));
        QCOMPARE(item.parent, qint16(-1));
        QCOMPARE(item.childCount, qint16(0));
        QCOMPARE(item.siblingOrder, qint16(1));
        QCOMPARE(item.commands, MenuItem::placeholderCommands());
        QCOMPARE(item.copyKey, QStringLiteral("-1"));
        QVERIFY(!item.copiesCommands);
        QVERIFY(item.lastCopyKey.isEmpty());
    }

    void isANeverSavedDocumentShowingEverything()
    {
        const MenuDocument document = newMenuDocument(7);
        QCOMPARE(document.hideMode, 0);
        QVERIFY(document.filePath.isEmpty());
        QCOMPARE(document.lastIndex, qint16(0));
        QCOMPARE(document.windowIndex, qint16(7));
        QVERIFY(!document.saved);
    }
};

QTEST_GUILESS_MAIN(TestNewMenuDocument)
#include "test_newmenudocument.moc"
