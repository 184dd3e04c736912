#include "testmenus.h"
#include "treeview/nodestyle.h"

#include <QTest>

Q_DECLARE_METATYPE(NodeStyle::Colour)

class TestNodeStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rootIsNavyAndBold()
    {
        const NodeStyle root = NodeStyle::forRoot();
        QCOMPARE(root.colour, NodeStyle::Colour::Navy);
        QVERIFY(root.bold);
    }

    void forItem_data()
    {
        QTest::addColumn<int>("commandCount");
        QTest::addColumn<bool>("copiesCommands");
        QTest::addColumn<int>("childCount");
        QTest::addColumn<NodeStyle::Colour>("colour");
        QTest::addColumn<bool>("bold");
        QTest::newRow("leaf without commands") << 0 << false << 0 << NodeStyle::Colour::Black << false;
        QTest::newRow("leaf with commands") << 1 << false << 0 << NodeStyle::Colour::Maroon << false;
        QTest::newRow("linked leaf") << 0 << true << 0 << NodeStyle::Colour::Black << false;
        QTest::newRow("linked leaf keeping own commands") << 3 << true << 0 << NodeStyle::Colour::Black << false;
        QTest::newRow("parent without commands") << 0 << false << 2 << NodeStyle::Colour::Navy << true;
        QTest::newRow("parent with own commands") << 1 << false << 1 << NodeStyle::Colour::Maroon << true;
        QTest::newRow("linked parent") << 2 << true << 1 << NodeStyle::Colour::Navy << true;
    }

    void forItem()
    {
        QFETCH(int, commandCount);
        QFETCH(bool, copiesCommands);
        QFETCH(int, childCount);
        QFETCH(NodeStyle::Colour, colour);
        QFETCH(bool, bold);
        MenuItem subject = TestMenus::item(QStringLiteral("E0"), -1, qint16(childCount), 1, commandCount);
        subject.copiesCommands = copiesCommands;
        const NodeStyle style = NodeStyle::forItem(subject);
        QCOMPARE(style.colour, colour);
        QCOMPARE(style.bold, bold);
    }
};

QTEST_GUILESS_MAIN(TestNodeStyle)
#include "test_nodestyle.moc"
