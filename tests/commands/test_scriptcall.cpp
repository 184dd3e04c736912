#include "commands/commandtext.h"
#include "commands/scriptcall.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString runner = QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe");

/// How a call names the script /s.tvp, which lies outside the program folder /kelv.
const QString elsewhere = QDir::toNativeSeparators(QStringLiteral("/S.TVP"));

/// The prompts a script call asked, and the values given in turn.
struct Prompter
{
    QStringList values;
    QStringList prompts;
    QStringList descriptions;

    ScriptCall::AskValue asker()
    {
        return [this](const QString& prompt, const QString& description) {
            prompts.append(prompt);
            descriptions.append(description);
            return values.isEmpty() ? QString() : values.takeFirst();
        };
    }
};

QStringList linesOf(std::initializer_list<const char*> lines)
{
    QStringList list;
    for (const char* line : lines) {
        list.append(QString::fromLatin1(line));
    }
    return list;
}

/// A program folder with a script file beside the program, one in a folder below it, and one in a
/// folder next to it whose name starts with the program folder's name.
class Folders
{
public:
    Folders()
    {
        QDir(root.path()).mkpath(QStringLiteral("kelv/scripts"));
        QDir(root.path()).mkpath(QStringLiteral("kelvx"));
        QDir(root.path()).mkpath(QStringLiteral("other"));
        for (const QString& file :
             { program() + QStringLiteral("/myscript.tvp"), program() + QStringLiteral("/scripts/copy.tvs"),
               root.path() + QStringLiteral("/kelvx/x.tvp"), root.path() + QStringLiteral("/other/b.tvs") }) {
            QFile script(file);
            if (!script.open(QIODevice::WriteOnly)) {
                qFatal("cannot write %s", qPrintable(file));
            }
        }
    }

    QString program() const { return root.path() + QStringLiteral("/kelv"); }
    QString path(const char* relative) const { return root.path() + QLatin1Char('/') + QString::fromLatin1(relative); }

    QTemporaryDir root;
};

} // namespace

class TestScriptCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The script's lines.

    void scriptLinesAreWindows1252()
    {
        const QByteArray bytes("[var]\r\nr\xe9pertoire\r\nprix \x80\r\n\x93quoted\x94\r\n[/var]\r\n");
        QCOMPARE(
            ScriptCall::scriptLines(bytes),
            QStringList({ QStringLiteral("[var]"), QStringLiteral("r\u00e9pertoire"), QStringLiteral("prix \u20ac"),
                          QStringLiteral("\u201cquoted\u201d"), QStringLiteral("[/var]") }));
    }

    void scriptLinesEndInCrLfLfOrCr_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("lines");
        const QStringList abc { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") };
        QTest::newRow("CR LF") << QByteArray("a\r\nb\r\nc\r\n") << abc;
        QTest::newRow("LF") << QByteArray("a\nb\nc\n") << abc;
        QTest::newRow("CR") << QByteArray("a\rb\rc\r") << abc;
        QTest::newRow("mixed") << QByteArray("a\r\nb\nc\r") << abc;
        QTest::newRow("no line end after the last line") << QByteArray("a\r\nb\r\nc") << abc;
        QTest::newRow("empty lines") << QByteArray("a\r\n\r\nb\n\nc\r\r")
                                     << QStringList({ QStringLiteral("a"), QString(), QStringLiteral("b"), QString(),
                                                      QStringLiteral("c"), QString() });
        QTest::newRow("LF then CR is two line ends")
            << QByteArray("a\n\rb") << QStringList({ QStringLiteral("a"), QString(), QStringLiteral("b") });
        QTest::newRow("an empty file") << QByteArray() << QStringList();
        QTest::newRow("one line end") << QByteArray("\r\n") << QStringList({ QString() });
    }

    void scriptLinesEndInCrLfLfOrCr()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, lines);
        QCOMPARE(ScriptCall::scriptLines(bytes), lines);
    }

    // The script's path.

    void aScriptBesideTheProgramIsCalledThroughExepath()
    {
        const Folders folders;
        QCOMPARE(ScriptCall::scriptPath(folders.path("kelv/myscript.tvp"), folders.program()),
                 QStringLiteral("$exepath$\\MYSCRIPT.TVP"));
        QCOMPARE(ScriptCall::scriptPath(folders.path("kelv/myscript.tvp"), folders.program() + QLatin1Char('/')),
                 QStringLiteral("$exepath$\\MYSCRIPT.TVP"));
    }

    void aScriptBelowTheProgramKeepsItsFoldersAfterExepath()
    {
        const Folders folders;
        QCOMPARE(ScriptCall::scriptPath(folders.path("kelv/scripts/copy.tvs"), folders.program()),
                 QStringLiteral("$exepath$\\SCRIPTS\\COPY.TVS"));
    }

    void aScriptInAnotherFolderKeepsItsFullPath()
    {
        const Folders folders;
        for (const char* relative : { "other/b.tvs", "kelvx/x.tvp" }) {
            const QString path = folders.path(relative);
            const QString called = ScriptCall::scriptPath(path, folders.program());
            QVERIFY2(!called.contains(QLatin1String("$exepath$")), qPrintable(called));
            QCOMPARE(called, called.toUpper());
#ifndef Q_OS_WIN
            QCOMPARE(called, path.toUpper());
#endif
            QVERIFY2(called.endsWith(QDir::toNativeSeparators(QString::fromLatin1(relative)).toUpper()),
                     qPrintable(called));
        }
    }

    // Appending the call.

    void theExampleCallOfTwoParameters()
    {
        const Folders folders;
        Prompter prompter { { QStringLiteral("$fs-001$"), QStringLiteral("#pop#") }, {}, {} };
        const ScriptCall::Result result = ScriptCall::append(
            QString(), folders.path("kelv/myscript.tvp"), folders.program(),
            linesOf({ "; copies a file", "[var]", "source", "target", "[/var]", "copy" }), prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(result.text,
                 QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe $exepath$\\MYSCRIPT.TVP 001=$fs-001$ 002=#pop#"));
        QCOMPARE(prompter.prompts,
                 QStringList({ QStringLiteral("Enter source value :"), QStringLiteral("Enter target value :") }));
        QCOMPARE(prompter.descriptions,
                 QStringList({ QStringLiteral("source - myscript.tvp"), QStringLiteral("target - myscript.tvp") }));
    }

    void emptyLinesAndCommentsGetNoNumber()
    {
        Prompter prompter { { QStringLiteral("x"), QStringLiteral("y") }, {}, {} };
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/elsewhere/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "a", "", ".comment", "b", "[/var]" }), prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(prompter.prompts,
                 QStringList({ QStringLiteral("Enter a value :"), QStringLiteral("Enter b value :") }));
        QVERIFY2(result.text.endsWith(QLatin1String(" 001=x 002=y")), qPrintable(result.text));
        QVERIFY(!result.text.contains(QLatin1String("003=")));
    }

    void onlyALeadingDotMakesAComment()
    {
        Prompter prompter;
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", " .not a comment", " ", "a.b", "[/var]" }), prompter.asker());
        QCOMPARE(prompter.prompts,
                 QStringList({ QStringLiteral("Enter  .not a comment value :"), QStringLiteral("Enter   value :"),
                               QStringLiteral("Enter a.b value :") }));
        QVERIFY(result.text.endsWith(QLatin1String(" 001= 002= 003=")));
    }

    void theBlockMarkersAreRecognisedInAnyCase()
    {
        Prompter prompter { { QStringLiteral("1"), QStringLiteral("2") }, {}, {} };
        const ScriptCall::Result result = ScriptCall::append(
            QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
            linesOf({ "before", "[VAR]", "First", "SECOND", "[/Var]", "after" }), prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(prompter.prompts,
                 QStringList({ QStringLiteral("Enter First value :"), QStringLiteral("Enter SECOND value :") }));
        QVERIFY(result.text.endsWith(QLatin1String(" 001=1 002=2")));
    }

    void onlyTheFirstBlockIsRead()
    {
        Prompter prompter;
        const ScriptCall::Result result = ScriptCall::append(
            QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
            linesOf({ "source", "[/var]", "[var]", "target", "[/VAR]", "[var]", "more", "[/var]" }), prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(prompter.prompts, QStringList({ QStringLiteral("Enter target value :") }));
    }

    void aMarkerMustBeTheWholeLine()
    {
        Prompter prompter;
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ " [var]", "[var] ", "a", "[/var]" }), prompter.asker());
        QVERIFY(!result.complete);
        QVERIFY(prompter.prompts.isEmpty());
        QCOMPARE(result.text, runner + QLatin1Char(' ') + elsewhere);
    }

    void parameterNumbersHaveThreeDigits()
    {
        Prompter prompter;
        QStringList lines { QStringLiteral("[var]") };
        for (int i = 1; i <= 12; ++i) {
            lines.append(QStringLiteral("p%1").arg(i));
            prompter.values.append(QStringLiteral("v%1").arg(i));
        }
        lines.append(QStringLiteral("[/var]"));
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"), lines, prompter.asker());
        QVERIFY(result.text.endsWith(QLatin1String(" 009=v9 010=v10 011=v11 012=v12")));
        QVERIFY(result.text.contains(QString(QLatin1Char(' ') + elsewhere + QStringLiteral(" 001=v1 002=v2 "))));
    }

    void aCancelledPromptWritesTheNumberAlone()
    {
        Prompter prompter { { QString(), QStringLiteral("b") }, {}, {} };
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "one", "two", "[/var]" }), prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(result.text, runner + QLatin1Char(' ') + elsewhere + QStringLiteral(" 001= 002=b"));
    }

    void theCallFollowsAnExistingCommandAfterAnEmptyLine()
    {
        Prompter prompter { { QStringLiteral("$fs-001$") }, {}, {} };
        const ScriptCall::Result result
            = ScriptCall::append(QStringLiteral("del $fs-001$"), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "x", "[/var]" }), prompter.asker());
        QCOMPARE(result.text,
                 QStringLiteral("del $fs-001$\r\n\r\n") + runner + QLatin1Char(' ') + elsewhere
                     + QStringLiteral(" 001=$fs-001$"));
        QCOMPARE(CommandText::toStored(result.text),
                 QStringLiteral("del $fs-001$||") + runner + QLatin1Char(' ') + elsewhere
                     + QStringLiteral(" 001=$fs-001$"));
    }

    void twoScriptsInTurnAreSeparatedByAnEmptyLine()
    {
        Prompter prompter { { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") }, {}, {} };
        const ScriptCall::Result first
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "one", "[/var]" }), prompter.asker());
        const ScriptCall::Result second
            = ScriptCall::append(first.text, QStringLiteral("/t.tvs"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "two", "three", "[/var]" }), prompter.asker());
        QVERIFY(second.complete);
        QCOMPARE(second.text,
                 runner + QLatin1Char(' ') + elsewhere + QStringLiteral(" 001=a\r\n\r\n") + runner + QLatin1Char(' ')
                     + QDir::toNativeSeparators(QStringLiteral("/T.TVS")) + QStringLiteral(" 001=b 002=c"));
        QCOMPARE(prompter.descriptions.last(), QStringLiteral("three - t.tvs"));
    }

    void aBlockWithoutItsEndKeepsWhatWasAppended()
    {
        Prompter prompter { { QStringLiteral("x"), QStringLiteral("y") }, {}, {} };
        const ScriptCall::Result result
            = ScriptCall::append(QStringLiteral("rename a b"), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "one", "", "two" }), prompter.asker());
        QVERIFY(!result.complete);
        QCOMPARE(result.text,
                 QStringLiteral("rename a b\r\n\r\n") + runner + QLatin1Char(' ') + elsewhere
                     + QStringLiteral(" 001=x 002=y"));
    }

    void aScriptWithoutABlockGivesTheRunnerAndPathOnly()
    {
        Prompter prompter;
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "one", "[/var]" }), prompter.asker());
        QVERIFY(!result.complete);
        QVERIFY(prompter.prompts.isEmpty());
        QCOMPARE(result.text, runner + QLatin1Char(' ') + elsewhere);
        const ScriptCall::Result empty
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"), {}, prompter.asker());
        QVERIFY(!empty.complete);
        QCOMPARE(empty.text, runner + QLatin1Char(' ') + elsewhere);
    }

    void anEmptyBlockAsksNothing()
    {
        Prompter prompter;
        const ScriptCall::Result result
            = ScriptCall::append(QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
                                 linesOf({ "[var]", "[/var]" }), prompter.asker());
        QVERIFY(result.complete);
        QVERIFY(prompter.prompts.isEmpty());
        QCOMPARE(result.text, runner + QLatin1Char(' ') + elsewhere);
    }

    void aScriptReadFromItsBytesAsksInWindows1252()
    {
        Prompter prompter { { QStringLiteral("C:\\d\u00e9j\u00e0") }, {}, {} };
        const ScriptCall::Result result = ScriptCall::append(
            QString(), QStringLiteral("/s.tvp"), QStringLiteral("/kelv"),
            ScriptCall::scriptLines(QByteArray("\xab script \xbb\n[var]\rdossier d'arriv\xe9\x65\r\n[/var]\r\n")),
            prompter.asker());
        QVERIFY(result.complete);
        QCOMPARE(prompter.prompts, QStringList({ QStringLiteral("Enter dossier d'arriv\u00e9e value :") }));
        QCOMPARE(result.text, runner + QLatin1Char(' ') + elsewhere + QStringLiteral(" 001=C:\\d\u00e9j\u00e0"));
    }
};

QTEST_GUILESS_MAIN(TestScriptCall)
#include "test_scriptcall.moc"
