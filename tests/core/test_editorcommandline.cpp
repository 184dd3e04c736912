#include "core/editorcommandline.h"

#include <QTest>

Q_DECLARE_METATYPE(EditorCommandLine::Request)

class TestEditorCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void request_data()
    {
        using Request = EditorCommandLine::Request;
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<Request>("expected");
        QTest::newRow("nothing") << QStringList() << Request::StartEditor;
        QTest::newRow("a menu file") << QStringList { QStringLiteral("/home/u/tools.ini") } << Request::StartEditor;
        QTest::newRow("a path in pieces")
            << QStringList { QStringLiteral("/home/u/My"), QStringLiteral("Menus.ini") } << Request::StartEditor;
        QTest::newRow("--help") << QStringList { QStringLiteral("--help") } << Request::ShowUsage;
        QTest::newRow("-h") << QStringList { QStringLiteral("-h") } << Request::ShowUsage;
        QTest::newRow("--version") << QStringList { QStringLiteral("--version") } << Request::ShowVersion;
        // Anything more is the one menu-file argument, split at its blanks, and keeps its rules.
        QTest::newRow("--help and more") << QStringList { QStringLiteral("--help"), QStringLiteral("tools.ini") }
                                         << Request::StartEditor;
        QTest::newRow("--version and more")
            << QStringList { QStringLiteral("--version"), QStringLiteral("x") } << Request::StartEditor;
        QTest::newRow("other case") << QStringList { QStringLiteral("--HELP") } << Request::StartEditor;
        QTest::newRow("unknown option") << QStringList { QStringLiteral("--verbose") } << Request::StartEditor;
        QTest::newRow("a file named like an option")
            << QStringList { QStringLiteral("--help.ini") } << Request::StartEditor;
    }

    void request()
    {
        QFETCH(QStringList, arguments);
        QFETCH(EditorCommandLine::Request, expected);
        QCOMPARE(EditorCommandLine::requestOf(arguments), expected);
    }

    void usageNamesTheMenuFileAndBothOptions()
    {
        const QString usage = EditorCommandLine::usageText();
        QVERIFY(usage.startsWith(QStringLiteral("Usage: KELVEditor [MENU-FILE]\n")));
        QVERIFY(usage.contains(QStringLiteral("  -h, --help ")));
        QVERIFY(usage.contains(QStringLiteral("  --version ")));
        QVERIFY(usage.contains(QStringLiteral("$exepath$")));
        QVERIFY(usage.endsWith(QLatin1Char('\n')));
        QVERIFY(!usage.contains(QLatin1Char('\r')));
    }
};

QTEST_GUILESS_MAIN(TestEditorCommandLine)
#include "test_editorcommandline.moc"
