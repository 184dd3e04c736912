#include "commands/commandtext.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

const QString crLf = QStringLiteral("\r\n");

/// The stored form, read from left to right: an empty line (two line breaks in a row) and a single
/// line break each become one "||".
QString literalStored(const QString& displayed)
{
    const QString blankLine = crLf + crLf;
    QString stored;
    qsizetype i = 0;
    while (i < displayed.size()) {
        if (displayed.mid(i, 4) == blankLine) {
            stored += QStringLiteral("||");
            i += 4;
        } else if (displayed.mid(i, 2) == crLf) {
            stored += QStringLiteral("||");
            i += 2;
        } else {
            stored += displayed.at(i);
            ++i;
        }
    }
    return stored;
}

/// The displayed form, read from left to right: each "||" becomes two line breaks.
QString literalDisplayed(const QString& stored)
{
    QString displayed;
    qsizetype i = 0;
    while (i < stored.size()) {
        if (stored.mid(i, 2) == QLatin1String("||")) {
            displayed += crLf + crLf;
            i += 2;
        } else {
            displayed += stored.at(i);
            ++i;
        }
    }
    return displayed;
}

QString randomText(QRandomGenerator& random, const QStringList& pieces)
{
    QString text;
    const int count = int(random.bounded(16));
    for (int i = 0; i < count; ++i) {
        text += pieces.at(int(random.bounded(int(pieces.size()))));
    }
    return text;
}

QString visible(QString text)
{
    text.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    return text;
}

} // namespace

class TestCommandText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineBreakCountsTwoCharacters() { QCOMPARE(CommandText::lineBreak(), QStringLiteral("\r\n")); }

    void anEmptyLineBetweenTwoLinesIsStoredAsOneSeparator()
    {
        QCOMPARE(CommandText::toStored(QStringLiteral("a\r\n\r\nb")), QStringLiteral("a||b"));
    }

    void aSingleLineBreakIsStoredAsOneSeparatorToo()
    {
        QCOMPARE(CommandText::toStored(QStringLiteral("a\r\nb")), QStringLiteral("a||b"));
    }

    void aStoredCommandShowsItsLinesSeparatedByAnEmptyLine()
    {
        QCOMPARE(CommandText::toDisplayed(QStringLiteral("a||b")), QStringLiteral("a\r\n\r\nb"));
        QCOMPARE(CommandText::toDisplayed(QStringLiteral("del $fs-001$||copy $fs-all$ x||rename y z")),
                 QStringLiteral("del $fs-001$\r\n\r\ncopy $fs-all$ x\r\n\r\nrename y z"));
    }

    void editingAndStoringUnchangedGivesTheSameCommand()
    {
        const QString stored = CommandText::toStored(QStringLiteral("a\r\n\r\nb"));
        QCOMPARE(CommandText::toStored(CommandText::toDisplayed(stored)), QStringLiteral("a||b"));
    }

    void separatorsTypedInTheTextAreKeptAndShowAsLineBreaksNextTime()
    {
        const QString stored = CommandText::toStored(QStringLiteral("a||b\r\nc"));
        QCOMPARE(stored, QStringLiteral("a||b||c"));
        QCOMPARE(CommandText::toDisplayed(stored), QStringLiteral("a\r\n\r\nb\r\n\r\nc"));
    }

    void runsOfLineBreaksArePairedFromTheLeft_data()
    {
        QTest::addColumn<QString>("displayed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("three line breaks") << QStringLiteral("a\r\n\r\n\r\nb") << QStringLiteral("a||||b");
        QTest::newRow("four line breaks") << QStringLiteral("a\r\n\r\n\r\n\r\nb") << QStringLiteral("a||||b");
        QTest::newRow("five line breaks") << QStringLiteral("\r\n\r\n\r\n\r\n\r\n") << QStringLiteral("||||||");
        QTest::newRow("a trailing line break") << QStringLiteral("a\r\n") << QStringLiteral("a||");
        QTest::newRow("a leading empty line") << QStringLiteral("\r\n\r\na") << QStringLiteral("||a");
        QTest::newRow("nothing") << QString() << QString();
    }

    void runsOfLineBreaksArePairedFromTheLeft()
    {
        QFETCH(QString, displayed);
        QFETCH(QString, stored);
        QCOMPARE(CommandText::toStored(displayed), stored);
    }

    void aLoneCrOrLfIsNoLineBreak()
    {
        QCOMPARE(CommandText::toStored(QStringLiteral("a\rb\nc\n\rd")), QStringLiteral("a\rb\nc\n\rd"));
        QCOMPARE(CommandText::toStored(QStringLiteral("a\r\r\nb")), QStringLiteral("a\r||b"));
    }

    void oddRunsOfBarsArePairedFromTheLeft()
    {
        QCOMPARE(CommandText::toDisplayed(QStringLiteral("a|||b")), QStringLiteral("a\r\n\r\n|b"));
        QCOMPARE(CommandText::toDisplayed(QStringLiteral("a|b")), QStringLiteral("a|b"));
        QCOMPARE(CommandText::toDisplayed(QStringLiteral("||||")), QStringLiteral("\r\n\r\n\r\n\r\n"));
    }

    void bothFormsMatchTheirLeftToRightReading()
    {
        const QStringList pieces { QStringLiteral("a"),  QStringLiteral("|"),  QStringLiteral("||"),
                                   QStringLiteral("\r"), QStringLiteral("\n"), QStringLiteral("\r\n"),
                                   QStringLiteral(" "),  QStringLiteral("$") };
        for (quint32 seed = 1; seed <= 4000; ++seed) {
            QRandomGenerator random(seed);
            const QString text = randomText(random, pieces);
            QVERIFY2(CommandText::toStored(text) == literalStored(text), qPrintable(visible(text)));
            QVERIFY2(CommandText::toDisplayed(text) == literalDisplayed(text), qPrintable(visible(text)));
        }
    }

    void aStoredCommandComesBackUnchangedFromTheEditor()
    {
        // A stored command holds no line break; showing and storing it again gives it back.
        const QStringList pieces { QStringLiteral("a"),  QStringLiteral("|"),  QStringLiteral("||"),
                                   QStringLiteral("\r"), QStringLiteral("\n"), QStringLiteral("$") };
        for (quint32 seed = 1; seed <= 4000; ++seed) {
            QRandomGenerator random(seed);
            const QString stored = randomText(random, pieces);
            if (stored.contains(crLf)) {
                continue;
            }
            QVERIFY2(CommandText::toStored(CommandText::toDisplayed(stored)) == stored, qPrintable(visible(stored)));
        }
    }

    void whatTheEditorStoresHoldsNoLineBreak()
    {
        const QStringList pieces { QStringLiteral("a"), QStringLiteral("|"), QStringLiteral("\r"), QStringLiteral("\n"),
                                   QStringLiteral("\r\n") };
        for (quint32 seed = 1; seed <= 4000; ++seed) {
            QRandomGenerator random(seed);
            const QString displayed = randomText(random, pieces);
            const QString stored = CommandText::toStored(displayed);
            QVERIFY2(!stored.contains(crLf), qPrintable(visible(displayed)));
            QCOMPARE(CommandText::toStored(CommandText::toDisplayed(stored)), stored);
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandText)
#include "test_commandtext.moc"
