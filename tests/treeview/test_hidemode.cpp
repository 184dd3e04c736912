#include "testmenus.h"
#include "treeview/hidemode.h"

#include <QTest>

class TestHideMode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void applyModeChange_data()
    {
        QTest::addColumn<int>("hideMode");
        QTest::addColumn<int>("modeChange");
        QTest::addColumn<int>("expected");
        QTest::newRow("refresh keeps the mode") << 2 << -3 << 2;
        QTest::newRow("refresh keeps no hiding") << 0 << -3 << 0;
        QTest::newRow("hide copies") << 0 << 1 << 1;
        QTest::newRow("hide copies twice adds up") << 1 << 1 << 2;
        QTest::newRow("hide without command") << 0 << 2 << 2;
        QTest::newRow("copies then without command") << 1 << 2 << 3;
        QTest::newRow("show copies again after both") << 3 << -1 << 2;
        QTest::newRow("show without command again after both") << 3 << -2 << 1;
        QTest::newRow("hide both forces three") << 1 << 3 << 3;
        QTest::newRow("hide both when already both") << 3 << 3 << 3;
        QTest::newRow("show all forces zero") << 2 << 0 << 0;
        QTest::newRow("show all from both") << 3 << 0 << 0;
    }

    void applyModeChange()
    {
        QFETCH(int, hideMode);
        QFETCH(int, modeChange);
        QFETCH(int, expected);
        QCOMPARE(HideMode::applyModeChange(hideMode, modeChange), expected);
    }

    void hideBothThenShowCopiesKeepsHiddenSuffix()
    {
        int hideMode = HideMode::applyModeChange(0, 3);
        hideMode = HideMode::applyModeChange(hideMode, -1);
        QCOMPARE(hideMode, 2);
        QCOMPARE(HideMode::rootText(hideMode), QStringLiteral("KELV (Some items may be hidded)"));
    }

    void rootTextNamesHiding()
    {
        QCOMPARE(HideMode::rootText(0), QStringLiteral("KELV"));
        QCOMPARE(HideMode::rootText(1), QStringLiteral("KELV (Some items may be hidded)"));
        QCOMPARE(HideMode::rootText(3), QStringLiteral("KELV (Some items may be hidded)"));
    }

    void isVisible_data()
    {
        QTest::addColumn<int>("commandCount");
        QTest::addColumn<bool>("copiesCommands");
        QTest::addColumn<int>("childCount");
        QTest::addColumn<bool>("inMode0");
        QTest::addColumn<bool>("inMode1");
        QTest::addColumn<bool>("inMode2");
        QTest::addColumn<bool>("inMode3");
        QTest::newRow("leaf without commands") << 0 << false << 0 << true << true << false << false;
        QTest::newRow("leaf with commands") << 2 << false << 0 << true << true << true << true;
        QTest::newRow("link leaf without own commands") << 0 << true << 0 << true << false << false << false;
        QTest::newRow("link leaf keeping own commands") << 1 << true << 0 << true << false << true << false;
        QTest::newRow("submenu without commands") << 0 << false << 3 << true << true << true << true;
        QTest::newRow("submenu with commands") << 1 << false << 1 << true << true << true << true;
        QTest::newRow("link submenu") << 0 << true << 1 << true << false << true << true;
        QTest::newRow("link submenu keeping commands") << 1 << true << 2 << true << false << true << true;
    }

    void isVisible()
    {
        QFETCH(int, commandCount);
        QFETCH(bool, copiesCommands);
        QFETCH(int, childCount);
        QFETCH(bool, inMode0);
        QFETCH(bool, inMode1);
        QFETCH(bool, inMode2);
        QFETCH(bool, inMode3);
        MenuItem subject = TestMenus::item(QStringLiteral("E0"), -1, qint16(childCount), 1, commandCount);
        subject.copiesCommands = copiesCommands;
        QCOMPARE(HideMode::isVisible(subject, 0), inMode0);
        QCOMPARE(HideMode::isVisible(subject, 1), inMode1);
        QCOMPARE(HideMode::isVisible(subject, 2), inMode2);
        QCOMPARE(HideMode::isVisible(subject, 3), inMode3);
    }

    void unknownModeHidesNothing()
    {
        MenuItem subject = TestMenus::item(QStringLiteral("E0"), -1, 0, 1);
        subject.copiesCommands = true;
        QVERIFY(HideMode::isVisible(subject, 4));
        QVERIFY(HideMode::isVisible(subject, -1));
    }

    void marksFollowMode_data()
    {
        QTest::addColumn<int>("hideMode");
        QTest::addColumn<bool>("copies");
        QTest::addColumn<bool>("withoutCommand");
        QTest::addColumn<bool>("both");
        QTest::newRow("none") << 0 << false << false << false;
        QTest::newRow("copies") << 1 << true << false << false;
        QTest::newRow("without command") << 2 << false << true << false;
        QTest::newRow("both") << 3 << true << true << true;
        QTest::newRow("unknown") << 5 << false << false << false;
    }

    void marksFollowMode()
    {
        QFETCH(int, hideMode);
        QFETCH(bool, copies);
        QFETCH(bool, withoutCommand);
        QFETCH(bool, both);
        const HideMode::Marks marks = HideMode::marksFor(hideMode);
        QCOMPARE(marks.copies, copies);
        QCOMPARE(marks.withoutCommand, withoutCommand);
        QCOMPARE(marks.both, both);
    }
};

QTEST_GUILESS_MAIN(TestHideMode)
#include "test_hidemode.moc"
