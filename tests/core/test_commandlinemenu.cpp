#include "core/commandlinemenu.h"

#include <QTest>

class TestCommandLineMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menuPath_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<QString>("expected");
        const QString folder = QStringLiteral("/opt/KELV Editor");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("plain path") << QStringLiteral("/home/u/Menus/Tools.ini")
                                    << QStringLiteral("/home/u/Menus/Tools.ini");
        QTest::newRow("program folder") << QStringLiteral("$exepath$/menus/archive.ini")
                                        << folder + QStringLiteral("/menus/archive.ini");
        QTest::newRow("program folder in capitals")
            << QStringLiteral("$EXEPATH$/Menus/Archive.INI") << folder + QStringLiteral("/Menus/Archive.INI");
        QTest::newRow("mixed case kept") << QStringLiteral("$ExePath$/Sub/MyMenu.Ini")
                                         << folder + QStringLiteral("/Sub/MyMenu.Ini");
        QTest::newRow("not ini") << QStringLiteral("$exepath$/menus/archive.txt") << QString();
        QTest::newRow("ini inside the name only") << QStringLiteral("/home/u/menu.ini.bak") << QString();
        QTest::newRow("ends in ini without a dot") << QStringLiteral("/home/u/mini") << QStringLiteral("/home/u/mini");
    }

    void menuPath()
    {
        QFETCH(QString, commandLine);
        QFETCH(QString, expected);
        QCOMPARE(menuPathFromCommandLine(commandLine, QStringLiteral("/opt/KELV Editor")), expected);
    }
};

QTEST_GUILESS_MAIN(TestCommandLineMenu)
#include "test_commandlinemenu.moc"
