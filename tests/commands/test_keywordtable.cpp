#include "literalcolouring.h"

#include "commands/keywordtable.h"

#include <QTest>

class TestKeywordTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableHoldsTheRunnerTheParameterNumbersAndTheShellKeywordsInOrder()
    {
        const std::array<Keyword, 36>& table = keywordTable();
        QCOMPARE(table[0].text, QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe "));
        QCOMPARE(table[0].colour, TextColour::Green);
        QCOMPARE(table[1].text, QStringLiteral("001="));
        QCOMPARE(table[9].text, QStringLiteral("009="));
        QCOMPARE(table[10].text, QStringLiteral("010="));
        QCOMPARE(table[30].text, QStringLiteral("030="));
        for (int number = 1; number <= 30; ++number) {
            QCOMPARE(table[std::size_t(number)].colour, TextColour::Navy);
        }
        const QStringList words { QStringLiteral("del "), QStringLiteral("rename "), QStringLiteral("copy "),
                                  QStringLiteral("regsvr32 "), QStringLiteral("regsvr32.exe ") };
        for (int i = 0; i < words.size(); ++i) {
            QCOMPARE(table[std::size_t(31 + i)].text, words.at(i));
            QCOMPARE(table[std::size_t(31 + i)].colour, TextColour::Green);
        }
    }

    void theTableIsTheOneItsRuleBuilds()
    {
        const QList<LiteralColouring::KeywordEntry> expected = LiteralColouring::keywordTable();
        QCOMPARE(expected.size(), 36);
        const std::array<Keyword, 36>& table = keywordTable();
        for (int i = 0; i < 36; ++i) {
            QCOMPARE(table[std::size_t(i)].text, expected.at(i).text);
            QCOMPARE(table[std::size_t(i)].colour, expected.at(i).colour);
        }
    }

    void theRunnersPathIsTheTablesFirstEntryWithoutItsBlank()
    {
        QCOMPARE(scriptRunnerPath(), QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe"));
        QCOMPARE(scriptRunnerPath() + QLatin1Char(' '), keywordTable()[0].text);
    }
};

QTEST_GUILESS_MAIN(TestKeywordTable)
#include "test_keywordtable.moc"
