#include "core/commandtextcheck.h"

#include "problemtext.h"

#include <QTest>

namespace {

const QString runner = QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe");

QStringList checked(const QString& command)
{
    return kindsAndMessages(CommandTextCheck::check(command));
}

/// A call of the runner with the script and the parameter words given.
QString call(const QString& script, const QString& parameters = QString())
{
    return parameters.isEmpty() ? runner + QLatin1Char(' ') + script
                                : runner + QLatin1Char(' ') + script + QLatin1Char(' ') + parameters;
}

} // namespace

class TestCommandTextCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandsWithoutProblemsGiveNone_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("no variable") << QStringLiteral("notepad.exe");
        QTest::newRow("catalogue variables") << QStringLiteral("copy \"$fs-001$\" \"$fs-dest-all-ne$.bak\" /y");
        QTest::newRow("changed number and extension")
            << QStringLiteral("copy $fs-mkv-001$ $fs-dest-mkv-002-ne$.old $itemcaption-003$ $ass-002$");
        QTest::newRow("two variables side by side") << QStringLiteral("echo $fs-001$$fs-002$");
        QTest::newRow("variables over lines") << QStringLiteral("echo $fs-001$||del $fs-all$||$datetime$");
        QTest::newRow("script values") << call(QStringLiteral("$exepath$\\S.TVP"),
                                               QStringLiteral("001=#pop# 002=#ask# 003=#pop:$datetime$# "
                                                              "004=#pop:$datetime$2#"));
        QTest::newRow("the script call the editor writes")
            << call(QStringLiteral("$exepath$\\MYSCRIPT.TVP"), QStringLiteral("001=$fs-001$ 002=#pop#"));
        QTest::newRow("call after other lines")
            << QStringLiteral("del $fs-001$||||") + call(QStringLiteral("C:\\SCRIPTS\\A.TVS"), QStringLiteral("001="));
        QTest::newRow("script in quotes with blanks")
            << call(QStringLiteral("\"C:\\My Scripts\\pack.tvs\""), QStringLiteral("001=\"a b\" 002=c"));
        QTest::newRow("runner in quotes") << QLatin1Char('"') + runner + QStringLiteral("\" x.tvp 001=a");
        QTest::newRow("script in lower case") << call(QStringLiteral("x.tvs"));
        QTest::newRow("a value with blanks") << call(QStringLiteral("X.TVP"), QStringLiteral("001=a b c 002=d"));
        QTest::newRow("two calls each with 001") << call(QStringLiteral("A.TVS"), QStringLiteral("001=a"))
                + QStringLiteral("||") + call(QStringLiteral("B.TVP"), QStringLiteral("001=b"));
        QTest::newRow("two calls on one line") << call(QStringLiteral("A.TVS"), QStringLiteral("001=a"))
                + QLatin1Char(' ') + call(QStringLiteral("B.TVP"), QStringLiteral("001=b"));
        QTest::newRow("a line after the call reuses a number")
            << call(QStringLiteral("A.TVS"), QStringLiteral("001=a")) + QStringLiteral("||echo 001=b");
        QTest::newRow("no runner: parameters are not checked") << QStringLiteral("tool.exe 031=a 031=b");
        QTest::newRow("another program of that name") << runner + QStringLiteral("2 031=a");
    }

    void commandsWithoutProblemsGiveNone()
    {
        QFETCH(QString, command);
        QCOMPARE(checked(command), QStringList());
    }

    void everyParameterNumberFrom001To030IsValid()
    {
        QStringList parameters;
        for (int number = 1; number <= 30; ++number) {
            parameters.append(QStringLiteral("%1=v%2").arg(number, 3, 10, QLatin1Char('0')).arg(number));
        }
        QCOMPARE(checked(call(QStringLiteral("$exepath$\\ALL.TVP"), parameters.join(QLatin1Char(' ')))), QStringList());
    }

    void emptyCommands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("message");
        QTest::newRow("nothing") << QString() << QStringLiteral("empty command | the command is empty");
        QTest::newRow("blanks") << QStringLiteral("   ")
                                << QStringLiteral("empty command | the command holds nothing to run");
        QTest::newRow("empty lines") << QStringLiteral("||||")
                                     << QStringLiteral("empty command | the command holds nothing to run");
        QTest::newRow("blank lines") << QStringLiteral(" || \t|| ")
                                     << QStringLiteral("empty command | the command holds nothing to run");
    }

    void emptyCommands()
    {
        QFETCH(QString, command);
        QFETCH(QString, message);
        QCOMPARE(checked(command), QStringList { message });
    }

    void unknownVariables()
    {
        QCOMPARE(checked(QStringLiteral("del $fs-01$")),
                 QStringList { QStringLiteral("unknown variable | unknown variable \"$fs-01$\"") });
        QCOMPARE(checked(QStringLiteral("copy $fs-001$ $dest$\\x $fs-mkv$")),
                 (QStringList { QStringLiteral("unknown variable | unknown variable \"$dest$\""),
                                QStringLiteral("unknown variable | unknown variable \"$fs-mkv$\"") }));
        QCOMPARE(checked(QStringLiteral("echo $FS-001$")),
                 QStringList { QStringLiteral("unknown variable | unknown variable \"$FS-001$\"") });
    }

    void unknownVariablesAreFoundWhereTheyStand()
    {
        const QList<CommandTextCheck::UnknownVariable> found
            = CommandTextCheck::unknownVariables(QStringLiteral("copy $fs-001$ $dest$\n$fz-001$ $$ $fs-mkv-001$ $x"));
        QStringList messages;
        for (const CommandTextCheck::UnknownVariable& variable : found) {
            messages.append(variable.message);
        }
        QCOMPARE(
            messages.join(QStringLiteral(" / ")),
            (QStringList { QStringLiteral("unknown variable \"$dest$\""),
                           QStringLiteral("unknown variable \"$fz-001$\""), QStringLiteral("unknown variable \"$$\"") })
                .join(QStringLiteral(" / ")));
        QCOMPARE(found.at(0).start, qsizetype(14));
        QCOMPARE(found.at(0).length, qsizetype(6));
        QCOMPARE(found.at(0).message, QStringLiteral("unknown variable \"$dest$\""));
        QCOMPARE(found.at(1).start, qsizetype(21));
        QCOMPARE(found.at(1).message, QStringLiteral("unknown variable \"$fz-001$\""));
        QCOMPARE(found.at(2).start, qsizetype(30));
        QCOMPARE(found.at(2).length, qsizetype(2));
        // A "$" left open is no variable to mark; each unknown one is marked wherever it repeats.
        QCOMPARE(CommandTextCheck::unknownVariables(QStringLiteral("del $fs-001")).size(), 0);
        QCOMPARE(CommandTextCheck::unknownVariables(QStringLiteral("$a$ $a$")).size(), 2);
    }

    void theMarkedVariablesAreTheOnesTheCheckTells()
    {
        // Random commands of variables, known or not, and text: the check tells each unknown one once.
        const QStringList pieces = { QStringLiteral("$fs-001$"),   QStringLiteral("$fz-001$"), QStringLiteral("$"),
                                     QStringLiteral("a"),          QStringLiteral(" "),        QStringLiteral("||"),
                                     QStringLiteral("$datetime$"), QStringLiteral("fs-") };
        quint32 seed = 12345;
        for (int round = 0; round < 2000; ++round) {
            QString command;
            seed = seed * 1103515245u + 12345u;
            const int count = int(seed >> 16) % 12;
            for (int piece = 0; piece < count; ++piece) {
                seed = seed * 1103515245u + 12345u;
                command += pieces.at(int(seed >> 16) % pieces.size());
            }
            QStringList marked;
            for (const CommandTextCheck::UnknownVariable& variable : CommandTextCheck::unknownVariables(command)) {
                QCOMPARE(variable.message,
                         QStringLiteral("unknown variable \"%1\"").arg(command.mid(variable.start, variable.length)));
                if (!marked.contains(variable.message)) {
                    marked.append(variable.message);
                }
            }
            QStringList told;
            for (const MenuProblem& problem : CommandTextCheck::check(command)) {
                if (problem.kind == MenuProblem::Kind::UnknownVariable) {
                    told.append(problem.message);
                }
            }
            QCOMPARE(marked, told);
        }
    }

    void anUnknownVariableIsToldOncePerCommand()
    {
        QCOMPARE(checked(QStringLiteral("copy $dest$ $dest$||del $dest$")),
                 QStringList { QStringLiteral("unknown variable | unknown variable \"$dest$\"") });
    }

    void twoDollarsSideBySideAreAnEmptyVariable()
    {
        QCOMPARE(checked(QStringLiteral("echo $$")),
                 QStringList { QStringLiteral("unknown variable | unknown variable \"$$\"") });
        // Pairs are counted from the start, so a pair of its own between two variables is one too.
        QCOMPARE(checked(QStringLiteral("echo $fs-001$$$$fs-002$")),
                 (QStringList { QStringLiteral("unknown variable | unknown variable \"$$\"") }));
    }

    void oddNumbersOfDollars()
    {
        QCOMPARE(checked(QStringLiteral("del $fs-001")),
                 QStringList { QStringLiteral("odd dollar count | odd number of \"$\" (1): the last one opens a "
                                              "variable that is never closed") });
        QCOMPARE(checked(QStringLiteral("del $fs-001$ $")),
                 QStringList { QStringLiteral("odd dollar count | odd number of \"$\" (3): the last one opens a "
                                              "variable that is never closed") });
        // A missing "$" pairs the rest wrongly, and what it pairs is told too.
        QCOMPARE(checked(QStringLiteral("copy $fs-001 $fs-dest-001$")),
                 (QStringList { QStringLiteral("unknown variable | unknown variable \"$fs-001 $\""),
                                QStringLiteral("odd dollar count | odd number of \"$\" (3): the last one opens a "
                                               "variable that is never closed") }));
    }

    void parameterNumbersOutsideTheRange_data()
    {
        QTest::addColumn<QString>("parameters");
        QTest::addColumn<QStringList>("problems");
        const auto outOfRange = [](const char* number) {
            return QStringLiteral("parameter out of range | script parameter number %1 is not one of 001 to 030")
                .arg(QLatin1String(number));
        };
        QTest::newRow("031") << QStringLiteral("001=a 031=b") << QStringList { outOfRange("031") };
        QTest::newRow("000") << QStringLiteral("000=a") << QStringList { outOfRange("000") };
        QTest::newRow("one digit") << QStringLiteral("1=a") << QStringList { outOfRange("1") };
        QTest::newRow("four digits") << QStringLiteral("0001=a") << QStringList { outOfRange("0001") };
        QTest::newRow("999") << QStringLiteral("999=#pop#") << QStringList { outOfRange("999") };
        QTest::newRow("two of them") << QStringLiteral("040=a 002=b 050=")
                                     << QStringList { outOfRange("040"), outOfRange("050") };
    }

    void parameterNumbersOutsideTheRange()
    {
        QFETCH(QString, parameters);
        QFETCH(QStringList, problems);
        QCOMPARE(checked(call(QStringLiteral("X.TVP"), parameters)), problems);
    }

    void repeatedParameterNumbers()
    {
        const QString repeated = QStringLiteral(
            "repeated parameter | script parameter 002 is given more than once in one call of the script runner");
        QCOMPARE(checked(call(QStringLiteral("X.TVP"), QStringLiteral("001=a 002=b 002=c"))), QStringList { repeated });
        // Told once however often it repeats.
        QCOMPARE(checked(call(QStringLiteral("X.TVP"), QStringLiteral("002=a 002=b 002=c"))), QStringList { repeated });
        QCOMPARE(checked(call(QStringLiteral("X.TVP"), QStringLiteral("001=a 001=b 030=c 030=d"))),
                 (QStringList {
                     QStringLiteral("repeated parameter | script parameter 001 is given more than once in one call "
                                    "of the script runner"),
                     QStringLiteral("repeated parameter | script parameter 030 is given more than once in one call "
                                    "of the script runner") }));
    }

    void callsWithoutAScript_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("problem");
        const QString without = QStringLiteral("no script file | the script runner is called without a script");
        QTest::newRow("runner alone") << runner << without;
        QTest::newRow("runner and blanks") << runner + QStringLiteral("   ") << without;
        QTest::newRow("runner at the end of a line") << runner + QStringLiteral("||echo a.tvs") << without;
        QTest::newRow("batch file")
            << call(QStringLiteral("C:\\X.BAT"), QStringLiteral("001=a"))
            << QStringLiteral("no script file | the script runner is called with \"C:\\X.BAT\", which is no .tvs or "
                              ".tvp script");
        QTest::newRow("a parameter in place of the script")
            << call(QStringLiteral("001=$fs-001$"))
            << QStringLiteral("no script file | the script runner is called with \"001=$fs-001$\", which is no .tvs "
                              "or .tvp script");
        QTest::newRow("runner in lower case")
            << QStringLiteral("$exepath$\\tolvexer\\tolvexer.exe script.txt")
            << QStringLiteral("no script file | the script runner is called with \"script.txt\", which is no .tvs or "
                              ".tvp script");
        QTest::newRow("quoted")
            << call(QStringLiteral("\"C:\\My Scripts\\pack.tvs.txt\""))
            << QStringLiteral("no script file | the script runner is called with \"C:\\My Scripts\\pack.tvs.txt\", "
                              "which is no .tvs or .tvp script");
    }

    void callsWithoutAScript()
    {
        QFETCH(QString, command);
        QFETCH(QString, problem);
        QCOMPARE(checked(command), QStringList { problem });
    }

    void everyCallIsCheckedOnItsOwn()
    {
        const QString command = call(QStringLiteral("A.TVS"), QStringLiteral("001=a 040=b")) + QStringLiteral("||")
            + call(QStringLiteral("B.EXE"), QStringLiteral("001=a 001=b"));
        QCOMPARE(checked(command),
                 (QStringList {
                     QStringLiteral("parameter out of range | script parameter number 040 is not one of 001 to 030"),
                     QStringLiteral("no script file | the script runner is called with \"B.EXE\", which is no .tvs "
                                    "or .tvp script"),
                     QStringLiteral("repeated parameter | script parameter 001 is given more than once in one call "
                                    "of the script runner") }));
    }
};

QTEST_GUILESS_MAIN(TestCommandTextCheck)
#include "test_commandtextcheck.moc"
