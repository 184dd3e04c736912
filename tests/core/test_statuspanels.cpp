#include "core/statuspanels.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

/// Tools (E0, two children) > Pack (E1), Unpack (E2); Notes (E3).
MenuDocument toolsMenu()
{
    MenuDocument document;
    const auto item = [](const QString& key, qint16 parent, qint16 childCount, qint16 siblingOrder) {
        MenuItem result;
        result.key = key;
        result.parent = parent;
        result.childCount = childCount;
        result.siblingOrder = siblingOrder;
        return result;
    };
    document.items = { item(QStringLiteral("E0"), -1, 2, 1), item(QStringLiteral("E1"), 0, 0, 1),
                       item(QStringLiteral("E2"), 0, 0, 2), item(QStringLiteral("E3"), -1, 0, 2) };
    return document;
}

} // namespace

class TestStatusPanels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingOpenShowsTheStartUpPanels()
    {
        const StatusPanels panels;
        QVERIFY(panels.itemIndex.isEmpty());
        QVERIFY(panels.itemCount.isEmpty());
        QCOMPARE(panels.position, QStringLiteral("(Position ; Children)"));
    }

    void selectedItemShowsItsIndexAndPlace()
    {
        const MenuDocument document = toolsMenu();
        StatusPanels expected;
        expected.itemIndex = QStringLiteral("2");
        expected.itemCount = QStringLiteral("4");
        expected.position = QStringLiteral("(2 ; 0)");
        QCOMPARE(StatusPanels::of(document, QStringLiteral("E2")), expected);
        QCOMPARE(StatusPanels::of(document, QStringLiteral("E0")).position, QStringLiteral("(1 ; 2)"));
        QCOMPARE(StatusPanels::of(document, QStringLiteral("E0")).itemIndex, QStringLiteral("0"));
    }

    void rootOrNoItemLeavesTheItemPanelsBlank()
    {
        const MenuDocument document = toolsMenu();
        for (const QString& key : { QString(), QStringLiteral("Root"), QStringLiteral("E9") }) {
            const StatusPanels panels = StatusPanels::of(document, key);
            QVERIFY(panels.itemIndex.isEmpty());
            QCOMPARE(panels.itemCount, QStringLiteral("4"));
            QCOMPARE(panels.position, StatusPanels::designPosition());
        }
        QCOMPARE(StatusPanels::of(MenuDocument(), QString()).itemCount, QStringLiteral("0"));
    }
};

QTEST_GUILESS_MAIN(TestStatusPanels)
#include "test_statuspanels.moc"
