#include "commands/richtextconversion.h"
#include "commands/variablecatalogue.h"

#include <QColor>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>

namespace {

/// A piece of the shown text with one look.
struct Run
{
    QString text;
    QTextCharFormat format;
};

/// The HTML as a text box shows it: its text, line by line, and its runs of equal format.
struct Shown
{
    QString text;
    QList<Run> runs;

    /// The run that holds `piece`, or an empty run when none does.
    Run runHolding(const QString& piece) const
    {
        for (const Run& run : runs) {
            if (run.text.contains(piece)) {
                return run;
            }
        }
        return Run();
    }
};

Shown show(const QString& html)
{
    QTextDocument document;
    document.setHtml(html);
    Shown shown;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block != document.begin()) {
            shown.text += QLatin1Char('\n');
        }
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextFragment piece = fragment.fragment();
            QString text = piece.text();
            text.replace(QChar::LineSeparator, QLatin1Char('\n'));
            shown.text += text;
            shown.runs.append({ text, piece.charFormat() });
        }
    }
    return shown;
}

bool hasColour(const QTextCharFormat& format, int red, int green, int blue)
{
    return format.foreground().style() != Qt::NoBrush && format.foreground().color() == QColor(red, green, blue);
}

bool hasNoColour(const QTextCharFormat& format)
{
    return format.foreground().style() == Qt::NoBrush || format.foreground().color() == QColor(0, 0, 0);
}

bool isBold(const QTextCharFormat& format)
{
    return format.fontWeight() >= QFont::Bold;
}

QString rtf(const char* body)
{
    return QStringLiteral("{\\rtf1\\ansi\\ansicpg1252\\deff0") + QString::fromLatin1(body) + QLatin1Char('}');
}

} // namespace

class TestRichTextConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRichHelpReadsAsThreeLinesOfPlainText()
    {
        const Shown shown = show(rtfToHtml(VariableCatalogue::help(32)));
        const QStringList lines = shown.text.split(QLatin1Char('\n'));
        QVERIFY2(lines.size() >= 3, qPrintable(shown.text));
        QCOMPARE(lines.at(0), QStringLiteral("Menu mode required : -"));
        QCOMPARE(lines.at(1),
                 QStringLiteral("Description : Tolvexer parameter that ask the user for a value once per "
                                "$datetime$ (KELV execution)"));
        QCOMPARE(lines.at(2),
                 QStringLiteral("Comments : Replace the Tolvexer parameter value by this : tolvexer.exe myscript.tvp "
                                "001=#pop:$datetime$#. Useful to let the user enter a value once even if Tolvexer is "
                                "executed a lot of times. ATTENTION : If you want to use this parameter more than "
                                "once, add a number inside : #pop:$datetime$here# otherwise the second one wont pop "
                                "and will take the first entered value."));
        for (int i = 3; i < lines.size(); ++i) {
            QVERIFY2(lines.at(i).isEmpty(), qPrintable(shown.text));
        }
    }

    void noControlWordOrTableIsLeft()
    {
        const QString html = rtfToHtml(VariableCatalogue::help(32));
        const Shown shown = show(html);
        QVERIFY2(!shown.text.contains(QLatin1Char('\\')), qPrintable(shown.text));
        QVERIFY(!shown.text.contains(QLatin1Char('{')));
        QVERIFY(!shown.text.contains(QLatin1Char('}')));
        QVERIFY(!shown.text.contains(QLatin1String("MS Sans Serif")));
        QVERIFY(!shown.text.contains(QLatin1String("Msftedit")));
        QVERIFY(!shown.text.contains(QLatin1String("red255")));
        QVERIFY2(!html.contains(QRegularExpression(QStringLiteral("\\\\[a-z]+"))), qPrintable(html));
    }

    void theWarningIsRedWithHereGreenUnderlinedAndBold()
    {
        const Shown shown = show(rtfToHtml(VariableCatalogue::help(32)));
        const Run warning = shown.runHolding(QStringLiteral("ATTENTION : If you want"));
        QVERIFY2(hasColour(warning.format, 255, 0, 0), qPrintable(warning.text));
        QVERIFY(!isBold(warning.format));
        QVERIFY(!warning.format.fontUnderline());
        QVERIFY(warning.text.endsWith(QLatin1String("#pop:$datetime$")));

        const Run here = shown.runHolding(QStringLiteral("here"));
        QCOMPARE(here.text, QStringLiteral("here"));
        QVERIFY(hasColour(here.format, 0, 128, 0));
        QVERIFY(isBold(here.format));
        QVERIFY(here.format.fontUnderline());

        const Run rest = shown.runHolding(QStringLiteral("# otherwise"));
        QCOMPARE(rest.text,
                 QStringLiteral("# otherwise the second one wont pop and will take the first entered value"));
        QVERIFY(hasColour(rest.format, 255, 0, 0));
        QVERIFY(!isBold(rest.format));
        QVERIFY(!rest.format.fontUnderline());

        // The closing full stop is in colour 1, black.
        const Run stop
            = shown.runs.last().text.trimmed().isEmpty() ? shown.runs.at(shown.runs.size() - 2) : shown.runs.last();
        QVERIFY2(stop.text.startsWith(QLatin1Char('.')), qPrintable(stop.text));
        QVERIFY(hasNoColour(stop.format));
    }

    void theTextBeforeTheWarningHasTheBoxsOwnLook()
    {
        const Shown shown = show(rtfToHtml(VariableCatalogue::help(32)));
        for (const QString& piece : { QStringLiteral("Menu mode required"), QStringLiteral("once per $datetime$"),
                                      QStringLiteral("Useful to let the user") }) {
            const Run run = shown.runHolding(piece);
            QVERIFY2(!run.text.isEmpty(), qPrintable(piece));
            QVERIFY2(hasNoColour(run.format), qPrintable(piece));
            QVERIFY2(!isBold(run.format), qPrintable(piece));
            QVERIFY2(!run.format.fontUnderline(), qPrintable(piece));
        }
    }

    void anEscapedCharacterIsReadAsWindows1252()
    {
        QCOMPARE(show(rtfToHtml(rtf(" caf\\'e9 na\\'EFve"))).text, QStringLiteral("caf\u00e9 na\u00efve"));
        // Bytes 0x80 to 0x9F are Windows-1252 characters, not control characters.
        QCOMPARE(show(rtfToHtml(rtf(" \\'80 \\'93quoted\\'94 \\'85"))).text,
                 QStringLiteral("\u20ac \u201cquoted\u201d \u2026"));
    }

    void escapedBracesAndBackslashesAreText()
    {
        QCOMPARE(show(rtfToHtml(rtf(" a\\{b\\}c\\\\d"))).text, QStringLiteral("a{b}c\\d"));
    }

    void parStartsANewLine()
    {
        const Shown shown = show(rtfToHtml(rtf(" one\\par two\\par\r\nthree")));
        QCOMPARE(shown.text, QStringLiteral("one\ntwo\nthree"));
    }

    void theBlankThatEndsAControlWordIsNoText()
    {
        QCOMPARE(show(rtfToHtml(rtf("\\fs16 a\\b b\\b0  c"))).text, QStringLiteral("ab c"));
    }

    void markupCharactersInTheTextStayText()
    {
        QCOMPARE(show(rtfToHtml(rtf(" <b>&amp; \"x\""))).text, QStringLiteral("<b>&amp; \"x\""));
    }

    void aGroupKeepsItsFormattingToItself()
    {
        const Shown shown = show(rtfToHtml(rtf(" a{\\b bold{\\i both}}\\ul c\\ulnone d")));
        QCOMPARE(shown.text, QStringLiteral("aboldbothcd"));
        QVERIFY(!isBold(shown.runHolding(QStringLiteral("a")).format));
        QVERIFY(isBold(shown.runHolding(QStringLiteral("bold")).format));
        QVERIFY(!shown.runHolding(QStringLiteral("bold")).format.fontItalic());
        QVERIFY(isBold(shown.runHolding(QStringLiteral("both")).format));
        QVERIFY(shown.runHolding(QStringLiteral("both")).format.fontItalic());
        QVERIFY(!isBold(shown.runHolding(QStringLiteral("c")).format));
        QVERIFY(shown.runHolding(QStringLiteral("c")).format.fontUnderline());
        QVERIFY(!shown.runHolding(QStringLiteral("d")).format.fontUnderline());
    }

    void coloursComeFromTheColourTable()
    {
        const Shown shown = show(rtfToHtml(
            rtf("{\\colortbl ;\\red0\\green0\\blue255;\\red200\\green100\\blue50;}\\cf1 blue\\cf2 brown\\cf0 none")));
        QCOMPARE(shown.text, QStringLiteral("bluebrownnone"));
        QVERIFY(hasColour(shown.runHolding(QStringLiteral("blue")).format, 0, 0, 255));
        QVERIFY(hasColour(shown.runHolding(QStringLiteral("brown")).format, 200, 100, 50));
        QVERIFY(hasNoColour(shown.runHolding(QStringLiteral("none")).format));
    }

    void ignorableDestinationsAndFontTablesAreSkipped()
    {
        const Shown shown = show(rtfToHtml(rtf(
            "{\\fonttbl{\\f0\\fswiss Arial;}}{\\*\\generator Some Editor 1.0;}{\\*\\unknown x}\\pard\\plain shown")));
        QCOMPARE(shown.text, QStringLiteral("shown"));
    }

    void plainTextWithoutControlWordsIsShownAsItIs()
    {
        QCOMPARE(show(rtfToHtml(QStringLiteral("just text"))).text, QStringLiteral("just text"));
        QCOMPARE(show(rtfToHtml(QString())).text, QString());
    }
};

QTEST_MAIN(TestRichTextConversion)
#include "test_richtextconversion.moc"
