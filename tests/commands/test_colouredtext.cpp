#include "literalcolouring.h"

#include "commands/colouredtext.h"

#include <QRandomGenerator>
#include <QTest>

#include <array>

namespace {

using Occasion = ColouredText::Occasion;
using Scope = ColouredText::Scope;
using Reset = ColouredText::Reset;

const std::array<Occasion, 7> everyOccasion { Occasion::VariableChosen, Occasion::EditorOpened,
                                              Occasion::ScriptLoaded,   Occasion::MouseReleased,
                                              Occasion::MousePressed,   Occasion::RefusedKeyReleased,
                                              Occasion::KeyReleased };

const QString runner = QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe ");

QString occasionName(Occasion occasion)
{
    switch (occasion) {
    case Occasion::VariableChosen:
        return QStringLiteral("variable chosen");
    case Occasion::EditorOpened:
        return QStringLiteral("editor opened");
    case Occasion::ScriptLoaded:
        return QStringLiteral("script loaded");
    case Occasion::MouseReleased:
        return QStringLiteral("mouse released");
    case Occasion::MousePressed:
        return QStringLiteral("mouse pressed");
    case Occasion::RefusedKeyReleased:
        return QStringLiteral("refused key released");
    case Occasion::KeyReleased:
        return QStringLiteral("key released");
    }
    return QString();
}

QChar colourLetter(TextColour colour)
{
    switch (colour) {
    case TextColour::Black:
        return QLatin1Char('.');
    case TextColour::Maroon:
        return QLatin1Char('m');
    case TextColour::Navy:
        return QLatin1Char('n');
    case TextColour::Green:
        return QLatin1Char('g');
    }
    return QLatin1Char('?');
}

/// One letter per character: "." black, "m" maroon, "n" navy, "g" green.
QString colours(const std::vector<CharFormat>& formats)
{
    QString letters;
    for (const CharFormat& format : formats) {
        letters += colourLetter(format.colour);
    }
    return letters;
}

QString colours(const ColouredText& text)
{
    return colours(text.formats());
}

/// One letter per character: "B" bold, "." not.
QString bolds(const std::vector<CharFormat>& formats)
{
    QString letters;
    for (const CharFormat& format : formats) {
        letters += format.bold ? QLatin1Char('B') : QLatin1Char('.');
    }
    return letters;
}

QString bolds(const ColouredText& text)
{
    return bolds(text.formats());
}

/// `text` with the formats spelled by `colourLetters` and `boldLetters` (as colours() and bolds()
/// write them) and the given selection.
ColouredText formatted(const QString& text, const QString& colourLetters, const QString& boldLetters, int start,
                       int length = 0)
{
    std::vector<CharFormat> formats(std::size_t(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = colourLetters.at(i);
        formats[std::size_t(i)].colour = c == QLatin1Char('m') ? TextColour::Maroon
            : c == QLatin1Char('n')                            ? TextColour::Navy
            : c == QLatin1Char('g')                            ? TextColour::Green
                                                               : TextColour::Black;
        formats[std::size_t(i)].bold = boldLetters.at(i) == QLatin1Char('B');
    }
    return ColouredText(text, formats, start, length);
}

ColouredText plain(const QString& text, int start = 0, int length = 0)
{
    ColouredText coloured(text);
    coloured.setSelection(start, length);
    return coloured;
}

QString repeated(QChar c, qsizetype count)
{
    return QString(count, c);
}

/// Shows the line breaks of a text in a failure message.
QString visible(const QString& text)
{
    QString shown = text;
    shown.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    shown.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    return shown;
}

/// Empty when the product's text holds exactly what the literal box holds; otherwise what differs.
QString difference(const LiteralColouring::TextBox& expected, const ColouredText& actual)
{
    if (actual.text() != expected.text) {
        return QStringLiteral("text \"%1\", expected \"%2\"").arg(visible(actual.text()), visible(expected.text));
    }
    if (actual.formats() != expected.formats) {
        return QStringLiteral("formats\n  colours %1\n  expected %2\n  bold    %3\n  expected %4")
            .arg(colours(actual), colours(expected.formats), bolds(actual), bolds(expected.formats));
    }
    if (actual.selectionStart() != expected.selStart || actual.selectionLength() != expected.selLength) {
        return QStringLiteral("selection %1+%2, expected %3+%4")
            .arg(actual.selectionStart())
            .arg(actual.selectionLength())
            .arg(expected.selStart)
            .arg(expected.selLength);
    }
    if (actual.typingFormat() != expected.typing) {
        return QStringLiteral("typing format %1%2, expected %3%4")
            .arg(colourLetter(actual.typingFormat().colour))
            .arg(actual.typingFormat().bold ? QLatin1Char('B') : QLatin1Char('.'))
            .arg(colourLetter(expected.typing.colour))
            .arg(expected.typing.bold ? QLatin1Char('B') : QLatin1Char('.'));
    }
    return QString();
}

/// Pieces that random command texts are made of: rich in "$", "|", line breaks, parameter numbers
/// and keywords, so that variables, keywords and "||" meet, overlap and straddle lines.
const std::array<const char*, 27> pieces { "$",
                                           "$",
                                           "|",
                                           "||",
                                           "\r\n",
                                           "\r\n",
                                           "0",
                                           "1",
                                           "3",
                                           "=",
                                           "a",
                                           " ",
                                           "del ",
                                           "del",
                                           "copy ",
                                           "xcopy ",
                                           "rename ",
                                           "regsvr32 ",
                                           "regsvr32.exe ",
                                           "DEL ",
                                           "001=",
                                           "010=",
                                           "030=",
                                           "031=",
                                           "$fs-001$",
                                           "$exepath$\\Tolvexer\\Tolvexer.exe ",
                                           "$exepath$" };

QString randomText(QRandomGenerator& random, int maximumPieces, bool loneLineEnds)
{
    QString text;
    const int count = int(random.bounded(maximumPieces + 1));
    for (int i = 0; i < count; ++i) {
        if (loneLineEnds && random.bounded(6) == 0) {
            text += random.bounded(2) == 0 ? QLatin1Char('\r') : QLatin1Char('\n');
            continue;
        }
        text += QString::fromLatin1(pieces[random.bounded(int(pieces.size()))]);
    }
    return text;
}

/// A random text with a random earlier formatting, caret and selection.
ColouredText randomState(QRandomGenerator& random, bool loneLineEnds)
{
    const QString text = randomText(random, 24, loneLineEnds);
    std::vector<CharFormat> formats(std::size_t(text.size()));
    const bool everPlain = random.bounded(4) == 0;
    for (CharFormat& format : formats) {
        if (!everPlain) {
            format.colour = TextColour(random.bounded(4));
            format.bold = random.bounded(3) == 0;
        }
    }
    const int start = int(random.bounded(int(text.size()) + 1));
    const int room = int(text.size()) - start;
    const int length = random.bounded(2) == 0 ? 0 : int(random.bounded(room + 1));
    return ColouredText(text, formats, start, length);
}

} // namespace

class TestColouredText : public QObject
{
    Q_OBJECT

private:
    /// Runs `occasion` on the product and on the literal box from the same state and compares.
    static QString compareOccasion(const ColouredText& start, Occasion occasion)
    {
        ColouredText actual = start;
        actual.recolour(occasion);
        LiteralColouring::TextBox expected = LiteralColouring::boxOf(start);
        LiteralColouring::recolour(expected, occasion);
        const QString different = difference(expected, actual);
        if (different.isEmpty()) {
            return QString();
        }
        return QStringLiteral("%1 on \"%2\" with selection %3+%4: %5")
            .arg(occasionName(occasion), visible(start.text()))
            .arg(start.selectionStart())
            .arg(start.selectionLength())
            .arg(different);
    }

    static void compareOnRandomTexts(bool loneLineEnds, quint32 firstSeed)
    {
        for (quint32 seed = firstSeed; seed < firstSeed + 2500; ++seed) {
            QRandomGenerator random(seed);
            const ColouredText start = randomState(random, loneLineEnds);
            for (const Occasion occasion : everyOccasion) {
                const QString different = compareOccasion(start, occasion);
                QVERIFY2(different.isEmpty(), qPrintable(QStringLiteral("seed %1: ").arg(seed) + different));
            }
        }
    }

private Q_SLOTS:
    // The text box's state.

    void aNewTextIsBlackNotBoldWithTheCaretAtItsStart()
    {
        const ColouredText text(QStringLiteral("del $a$"));
        QCOMPARE(colours(text), QStringLiteral("......."));
        QCOMPARE(bolds(text), QStringLiteral("......."));
        QCOMPARE(text.selectionStart(), 0);
        QCOMPARE(text.selectionLength(), 0);
        QCOMPARE(text.typingFormat(), CharFormat());
    }

    void theSelectionStaysWithinTheText()
    {
        ColouredText text(QStringLiteral("abcd"));
        text.setSelection(2, 10);
        QCOMPARE(text.selectionStart(), 2);
        QCOMPARE(text.selectionLength(), 2);
        text.setSelection(9, 1);
        QCOMPARE(text.selectionStart(), 4);
        QCOMPARE(text.selectionLength(), 0);
        text.setSelection(-3, 2);
        QCOMPARE(text.selectionStart(), 0);
        QCOMPARE(text.selectionLength(), 2);
    }

    // The current line.

    void theCurrentLineRunsBetweenTheLineBreaksAroundTheCaret_data()
    {
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        // "ab" CR LF "cd" CR LF CR LF "ef": a0 b1 CR2 LF3 c4 d5 CR6 LF7 CR8 LF9 e10 f11.
        QTest::newRow("at the start") << 0 << 0 << 2;
        QTest::newRow("inside the first line") << 1 << 0 << 2;
        QTest::newRow("before the first line break") << 2 << 0 << 2;
        QTest::newRow("between CR and LF") << 3 << 0 << 2;
        QTest::newRow("just after a line break") << 4 << 4 << 6;
        QTest::newRow("at the end of the second line") << 6 << 4 << 6;
        QTest::newRow("on the empty line") << 8 << 8 << 8;
        QTest::newRow("between the CR and LF after the empty line") << 9 << 8 << 8;
        QTest::newRow("on the last line") << 10 << 10 << 12;
        QTest::newRow("at the end of the text") << 12 << 10 << 12;
    }

    void theCurrentLineRunsBetweenTheLineBreaksAroundTheCaret()
    {
        QFETCH(int, caret);
        QFETCH(int, start);
        QFETCH(int, end);
        const ColouredText text = plain(QStringLiteral("ab\r\ncd\r\n\r\nef"), caret, 3);
        QCOMPARE(text.lineStart(), start);
        QCOMPARE(text.lineEnd(), end);
        LiteralColouring::TextBox box = LiteralColouring::boxOf(text);
        QCOMPARE(LiteralColouring::currentLineStart(box), start);
        QCOMPARE(LiteralColouring::currentLineEnd(box), end);
    }

    void onlyCrLfEndsALine()
    {
        // A lone CR or LF is a character of the line like any other.
        const ColouredText text = plain(QStringLiteral("a\rb\nc\r\nd\n\re"), 4);
        QCOMPARE(text.lineStart(), 0);
        QCOMPARE(text.lineEnd(), 5);
        const ColouredText last = plain(text.text(), 9);
        QCOMPARE(last.lineStart(), 7);
        QCOMPARE(last.lineEnd(), 11);
    }

    // The routines one by one.

    void colourRangeColoursTheRangeAndLeavesTheSelectionAndTypingInBlack()
    {
        ColouredText text = plain(QStringLiteral("abcdefgh"), 5, 2);
        text.colourRange(1, 3, TextColour::Navy);
        QCOMPARE(colours(text), QStringLiteral(".nnn...."));
        QCOMPARE(bolds(text), QStringLiteral("........"));
        QCOMPARE(text.selectionStart(), 5);
        QCOMPARE(text.selectionLength(), 2);
        QCOMPARE(text.typingFormat(), CharFormat());
        // A range that runs past the end is cut at the end.
        text.colourRange(6, 5, TextColour::Green);
        QCOMPARE(colours(text), QStringLiteral(".nnn..gg"));
    }

    void resetFormattingClearsWhatItsModeSays_data()
    {
        QTest::addColumn<int>("scope");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("colourLetters");
        QTest::addColumn<QString>("boldLetters");
        // "mg" CR LF "nmg" CR LF "gg", all bold, caret on the middle line.
        QTest::newRow("whole text, colour and bold")
            << 0 << 0 << QStringLiteral("...........") << QStringLiteral("...........");
        QTest::newRow("whole text, bold only")
            << 0 << 1 << QStringLiteral("mg..nmg..gg") << QStringLiteral("...........");
        QTest::newRow("whole text, colour only")
            << 0 << 2 << QStringLiteral("...........") << QStringLiteral("BBBBBBBBBBB");
        QTest::newRow("current line, colour and bold")
            << 1 << 0 << QStringLiteral("mg.......gg") << QStringLiteral("BBBB...BBBB");
        QTest::newRow("current line, bold only")
            << 1 << 1 << QStringLiteral("mg..nmg..gg") << QStringLiteral("BBBB...BBBB");
        QTest::newRow("current line, colour only")
            << 1 << 2 << QStringLiteral("mg.......gg") << QStringLiteral("BBBBBBBBBBB");
    }

    void resetFormattingClearsWhatItsModeSays()
    {
        QFETCH(int, scope);
        QFETCH(int, mode);
        QFETCH(QString, colourLetters);
        QFETCH(QString, boldLetters);
        ColouredText text = formatted(QStringLiteral("mg\r\nnmg\r\ngg"), QStringLiteral("mg..nmg..gg"),
                                      QStringLiteral("BBBBBBBBBBB"), 5, 3);
        text.resetFormatting(scope == 0 ? Scope::WholeText : Scope::CurrentLine, Reset(mode));
        QCOMPARE(colours(text), colourLetters);
        QCOMPARE(bolds(text), boldLetters);
        QCOMPARE(text.selectionStart(), 5);
        QCOMPARE(text.selectionLength(), 3);
        QCOMPARE(text.typingFormat(), CharFormat());
    }

    void aVariableRunsFromOneDollarToTheNextBothIncluded()
    {
        ColouredText text = plain(QStringLiteral("del $fs-001$ x"));
        text.colourVariables(Scope::WholeText);
        QCOMPARE(colours(text), QStringLiteral("....mmmmmmmm.."));
    }

    void twoVariablesWrittenTogetherAreBothFound()
    {
        ColouredText text = plain(QStringLiteral("$a$$b$"));
        text.colourVariables(Scope::WholeText);
        QCOMPARE(colours(text), QStringLiteral("mmmmmm"));
    }

    void textBetweenTwoVariablesStaysBlack()
    {
        ColouredText text = plain(QStringLiteral("$a$ - $b$"));
        text.colourVariables(Scope::WholeText);
        QCOMPARE(colours(text), QStringLiteral("mmm...mmm"));
    }

    void anOddNumberOfDollarsLeavesTheLastOneAndWhatFollowsBlack()
    {
        ColouredText text = plain(QStringLiteral("$a$ $b x"));
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), QStringLiteral("mmm....."));
        ColouredText lone = plain(QStringLiteral("cost $5"));
        lone.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(lone), QStringLiteral("......."));
        // On the caret's line alone: the line's pair is found, a "$" whose partner lies on the next
        // line is left black.
        ColouredText lines = plain(QStringLiteral("$a$ $b\r\nc$"), 2);
        lines.recolour(Occasion::MouseReleased);
        QCOMPARE(colours(lines), QStringLiteral("mmm......."));
    }

    void overTheWholeTextAVariableMayStraddleALineBreak()
    {
        ColouredText whole = plain(QStringLiteral("$a\r\nb$"), 0);
        whole.colourVariables(Scope::WholeText);
        QCOMPARE(colours(whole), QStringLiteral("mmmmmm"));
        ColouredText line = plain(QStringLiteral("$a\r\nb$"), 0);
        line.colourVariables(Scope::CurrentLine);
        QCOMPARE(colours(line), QStringLiteral("......"));
    }

    void onTheCurrentLineTheSearchStartsAtTheLinesStart()
    {
        ColouredText text = plain(QStringLiteral("$x\r\n$y$ del \r\ndel $z$"), 5);
        text.recolour(Occasion::MousePressed);
        QCOMPARE(colours(text), QStringLiteral("....mmm.gggg........."));
    }

    void copyInsideXcopyIsGreen()
    {
        ColouredText text = plain(QStringLiteral("xcopy a b"));
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), QStringLiteral(".ggggg..."));
    }

    void onlyTheParameterNumbersOneToThirtyAreNavy()
    {
        ColouredText text = plain(QStringLiteral("a 010=x 031=y 000=z 001= 030="));
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), QStringLiteral("..nnnn..............nnnn.nnnn"));
    }

    void keywordsAreCaseSensitiveAndNeedTheirBlank()
    {
        ColouredText text = plain(QStringLiteral("del\r\nDEL x\r\nCopy y\r\nregsvr32.exe z"));
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), repeated(QLatin1Char('.'), 20) + repeated(QLatin1Char('g'), 13) + QStringLiteral("."));
        ColouredText word = plain(QStringLiteral("del x rename y regsvr32 z"));
        word.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(word), QStringLiteral("gggg..ggggggg..ggggggggg."));
    }

    void theRunnersCallEndsUpWhollyGreen()
    {
        const QString call = runner + QStringLiteral("$exepath$\\X.TVP 001=$fs-001$");
        ColouredText text = plain(call);
        text.recolour(Occasion::ScriptLoaded);
        QCOMPARE(colours(text),
                 repeated(QLatin1Char('g'), runner.size()) + QStringLiteral("mmmmmmmmm.......nnnnmmmmmmmm"));
        // Without its trailing blank the runner is no keyword: only its variable is coloured.
        ColouredText bare = plain(runner.trimmed());
        bare.recolour(Occasion::ScriptLoaded);
        QCOMPARE(colours(bare), QStringLiteral("mmmmmmmmm") + repeated(QLatin1Char('.'), runner.size() - 10));
    }

    void keywordsAreColouredAfterVariables()
    {
        ColouredText text = plain(QStringLiteral("$del $"));
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), QStringLiteral("mggggm"));
    }

    void onTheCurrentLineAKeywordOnAnotherLineStaysBlack()
    {
        ColouredText text = plain(QStringLiteral("a 001=\r\ndel x"), 1);
        text.colourKeywords(Scope::CurrentLine);
        QCOMPARE(colours(text), QStringLiteral("..nnnn......."));
        QCOMPARE(text.selectionStart(), 1);
    }

    void boldCurrentLineEmboldensTheCaretsLineOnly()
    {
        ColouredText text = plain(QStringLiteral("ab\r\ncd\r\nef"), 5, 4);
        text.boldCurrentLine();
        QCOMPARE(bolds(text), QStringLiteral("....BB...."));
        QCOMPARE(text.selectionStart(), 5);
        QCOMPARE(text.selectionLength(), 4);
        QCOMPARE(text.typingFormat(), CharFormat());
        // An empty line has nothing to embolden, and typing stays plain.
        ColouredText empty = plain(QStringLiteral("ab\r\n\r\nef"), 4);
        empty.boldCurrentLine();
        QCOMPARE(bolds(empty), QStringLiteral("........"));
        QCOMPARE(empty.typingFormat(), CharFormat());
    }

    void expandingSeparatorsKeepsTheCaretOnTheSameText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("expanded");
        QTest::addColumn<int>("expandedStart");
        QTest::addColumn<int>("expandedLength");
        const QString twoLines = QStringLiteral("ab\r\n\r\ncd");
        QTest::newRow("caret before the bars") << QStringLiteral("ab||cd") << 2 << 0 << twoLines << 2 << 0;
        QTest::newRow("caret between the bars") << QStringLiteral("ab||cd") << 3 << 0 << twoLines << 6 << 0;
        QTest::newRow("caret after the bars") << QStringLiteral("ab||cd") << 4 << 0 << twoLines << 6 << 0;
        QTest::newRow("caret at the end") << QStringLiteral("ab||cd") << 6 << 0 << twoLines << 8 << 0;
        QTest::newRow("selection over the bars") << QStringLiteral("ab||cd") << 1 << 4 << twoLines << 1 << 6;
        QTest::newRow("three bars") << QStringLiteral("a|||b") << 5 << 0 << QStringLiteral("a\r\n\r\n|b") << 7 << 0;
        QTest::newRow("four bars") << QStringLiteral("||||") << 2 << 1 << QStringLiteral("\r\n\r\n\r\n\r\n") << 4 << 4;
        QTest::newRow("no bars") << QStringLiteral("a|b") << 1 << 2 << QStringLiteral("a|b") << 1 << 2;
    }

    void expandingSeparatorsKeepsTheCaretOnTheSameText()
    {
        QFETCH(QString, text);
        QFETCH(int, start);
        QFETCH(int, length);
        QFETCH(QString, expanded);
        QFETCH(int, expandedStart);
        QFETCH(int, expandedLength);
        ColouredText coloured = plain(text, start, length);
        coloured.expandSeparators();
        QCOMPARE(coloured.text(), expanded);
        QCOMPARE(coloured.selectionStart(), expandedStart);
        QCOMPARE(coloured.selectionLength(), expandedLength);
        QCOMPARE(coloured.formats().size(), std::size_t(expanded.size()));
        LiteralColouring::TextBox box = LiteralColouring::boxOf(plain(text, start, length));
        LiteralColouring::expandSeparators(box);
        QVERIFY2(difference(box, coloured).isEmpty(), qPrintable(difference(box, coloured)));
    }

    // The occasions.

    void theEditorOpenedColoursWithoutResettingOrEmboldening()
    {
        ColouredText text
            = formatted(QStringLiteral("a $b$\r\ncd"), QStringLiteral("gn......n"), QStringLiteral("B.......B"), 8);
        text.recolour(Occasion::EditorOpened);
        QCOMPARE(colours(text), QStringLiteral("gnmmm...n"));
        QCOMPARE(bolds(text), QStringLiteral("B.......B"));
    }

    void aChosenVariableRecoloursEverythingAndEmboldensTheCaretsLine()
    {
        ColouredText text = formatted(QStringLiteral("a $b$\r\ndel c"), QStringLiteral("gn.....nnnnn"),
                                      QStringLiteral("BBBBBBB....."), 9, 2);
        text.recolour(Occasion::VariableChosen);
        QCOMPARE(colours(text), QStringLiteral("..mmm..gggg."));
        QCOMPARE(bolds(text), QStringLiteral(".......BBBBB"));
        QCOMPARE(text.selectionStart(), 9);
        QCOMPARE(text.selectionLength(), 2);
    }

    void aLoadedScriptRecoloursEverythingWithoutBold()
    {
        ColouredText text = formatted(QStringLiteral("a $b$\r\ndel c"), QStringLiteral("gn.....nnnnn"),
                                      QStringLiteral("BBBBBBBBBBBB"), 9);
        text.recolour(Occasion::ScriptLoaded);
        QCOMPARE(colours(text), QStringLiteral("..mmm..gggg."));
        QCOMPARE(bolds(text), QStringLiteral("............"));
    }

    void aMouseReleaseRecoloursOnlyTheCaretsLine()
    {
        // Line 1 keeps its stale colours but loses its bold; line 2 is coloured afresh and bold.
        ColouredText text = formatted(QStringLiteral("$a$ x\r\ndel $b$ y"), QStringLiteral("....g..nnnnnnnnn"),
                                      QStringLiteral("BBBBBBB.......B."), 10);
        text.recolour(Occasion::MouseReleased);
        QCOMPARE(colours(text), QStringLiteral("....g..ggggmmm.."));
        QCOMPARE(bolds(text), QStringLiteral(".......BBBBBBBBB"));
    }

    void aMousePressColoursTheCaretsLineOnly()
    {
        ColouredText text = formatted(QStringLiteral("$a$ x\r\ndel $b$ y"), QStringLiteral("....g..nnnnnnnnn"),
                                      QStringLiteral("BBBBBBB.......B."), 10);
        text.recolour(Occasion::MousePressed);
        QCOMPARE(colours(text), QStringLiteral("....g..ggggmmmnn"));
        QCOMPARE(bolds(text), QStringLiteral("BBBBBBB.......B."));
    }

    void aRefusedKeysReleaseMovesTheBoldToTheCaretsLine()
    {
        ColouredText text = formatted(QStringLiteral("ab\r\ncd\r\nef"), QStringLiteral("gg..mm..nn"),
                                      QStringLiteral("BB......BB"), 4);
        text.recolour(Occasion::RefusedKeyReleased);
        QCOMPARE(colours(text), QStringLiteral("gg..mm..nn"));
        QCOMPARE(bolds(text), QStringLiteral("....BB...."));
    }

    void aKeysReleaseExpandsSeparatorsAndRecoloursEverything()
    {
        ColouredText text
            = formatted(QStringLiteral("del $a$||x"), QStringLiteral("nnnnnnnnnn"), QStringLiteral("BBBBBBBBBB"), 9);
        text.recolour(Occasion::KeyReleased);
        QCOMPARE(text.text(), QStringLiteral("del $a$\r\n\r\nx"));
        QCOMPARE(colours(text), QStringLiteral("ggggmmm....."));
        QCOMPARE(bolds(text), QStringLiteral("...........B"));
        QCOMPARE(text.selectionStart(), 11);
        QCOMPARE(text.selectionLength(), 0);
    }

    void afterEveryOccasionTheCaretAndSelectionStayAndTypingIsPlain()
    {
        const QString text = QStringLiteral("del $fs-001$\r\n") + runner + QStringLiteral("A.TVP 001=$x$\r\nz");
        for (const Occasion occasion : everyOccasion) {
            for (int start = 0; start <= int(text.size()); start += 3) {
                for (const int length : { 0, 1, 5 }) {
                    ColouredText coloured = formatted(text, repeated(QLatin1Char('n'), text.size()),
                                                      repeated(QLatin1Char('B'), text.size()), start, length);
                    const int expectedLength = std::min(length, int(text.size()) - start);
                    coloured.recolour(occasion);
                    const QString where
                        = QStringLiteral("%1 at %2+%3").arg(occasionName(occasion)).arg(start).arg(length);
                    QVERIFY2(coloured.selectionStart() == start, qPrintable(where));
                    QVERIFY2(coloured.selectionLength() == expectedLength, qPrintable(where));
                    QVERIFY2(coloured.typingFormat() == CharFormat(), qPrintable(where));
                    QVERIFY2(coloured.text() == text, qPrintable(where));
                }
            }
        }
    }

    void theColouringNeverChangesTheText()
    {
        for (quint32 seed = 1; seed <= 300; ++seed) {
            QRandomGenerator random(seed);
            const ColouredText start = randomState(random, true);
            for (const Occasion occasion : everyOccasion) {
                if (occasion == Occasion::KeyReleased) {
                    continue; // the one pass that turns "||" into line breaks
                }
                ColouredText coloured = start;
                coloured.recolour(occasion);
                QCOMPARE(coloured.text(), start.text());
            }
        }
    }

    // The step-by-step box against the product.

    void everyOccasionMatchesTheStepByStepBox() { compareOnRandomTexts(false, 1); }

    void textsWithLoneCrOrLfMatchTheStepByStepBoxToo() { compareOnRandomTexts(true, 100001); }

    void sequencesOfOccasionsMatchTheStepByStepBox()
    {
        // As in the editor: clicks and key releases one after another, the caret moving in between.
        for (quint32 seed = 1; seed <= 800; ++seed) {
            QRandomGenerator random(seed);
            ColouredText actual = randomState(random, seed % 3 == 0);
            LiteralColouring::TextBox expected = LiteralColouring::boxOf(actual);
            const int steps = 1 + int(random.bounded(6));
            for (int step = 0; step < steps; ++step) {
                const Occasion occasion = everyOccasion[random.bounded(int(everyOccasion.size()))];
                const int size = int(actual.text().size());
                const int start = int(random.bounded(size + 1));
                const int length = random.bounded(3) == 0 ? int(random.bounded(size - start + 1)) : 0;
                actual.setSelection(start, length);
                expected.setSelStart(start);
                expected.setSelLength(length);
                actual.recolour(occasion);
                LiteralColouring::recolour(expected, occasion);
                const QString different = difference(expected, actual);
                QVERIFY2(
                    different.isEmpty(),
                    qPrintable(QStringLiteral("seed %1, step %2 (%3): ").arg(seed).arg(step).arg(occasionName(occasion))
                               + different));
            }
        }
    }

    void eachRoutineMatchesTheStepByStepBox()
    {
        for (quint32 seed = 1; seed <= 1500; ++seed) {
            QRandomGenerator random(seed);
            const ColouredText start = randomState(random, seed % 2 == 0);
            const QString where = QStringLiteral("seed %1 \"%2\" at %3+%4: ")
                                      .arg(seed)
                                      .arg(visible(start.text()))
                                      .arg(start.selectionStart())
                                      .arg(start.selectionLength());
            const auto check = [&](const char* routine, const std::function<void(ColouredText&)>& product,
                                   const std::function<void(LiteralColouring::TextBox&)>& literal) {
                ColouredText actual = start;
                product(actual);
                LiteralColouring::TextBox expected = LiteralColouring::boxOf(start);
                literal(expected);
                return difference(expected, actual).isEmpty()
                    ? QString()
                    : where + QString::fromLatin1(routine) + QStringLiteral(": ") + difference(expected, actual);
            };
            const int size = int(start.text().size());
            const int rangeStart = int(random.bounded(size + 1));
            const int rangeLength = int(random.bounded(size - rangeStart + 3));
            const TextColour colour = TextColour(random.bounded(4));
            QStringList problems;
            problems << check(
                "colourRange", [&](ColouredText& t) { t.colourRange(rangeStart, rangeLength, colour); },
                [&](LiteralColouring::TextBox& b) {
                    LiteralColouring::colourRange(b, rangeStart, rangeLength, colour);
                });
            for (const bool line : { false, true }) {
                const Scope scope = line ? Scope::CurrentLine : Scope::WholeText;
                for (const int mode : { 0, 1, 2 }) {
                    problems << check(
                        "resetFormatting", [&](ColouredText& t) { t.resetFormatting(scope, Reset(mode)); },
                        [&](LiteralColouring::TextBox& b) { LiteralColouring::resetFormatting(b, line, mode); });
                }
                problems << check(
                    "colourVariables", [&](ColouredText& t) { t.colourVariables(scope); },
                    [&](LiteralColouring::TextBox& b) { LiteralColouring::colourVariables(b, line); });
                problems << check(
                    "colourKeywords", [&](ColouredText& t) { t.colourKeywords(scope); },
                    [&](LiteralColouring::TextBox& b) { LiteralColouring::colourKeywords(b, line); });
            }
            problems << check(
                "boldCurrentLine", [](ColouredText& t) { t.boldCurrentLine(); },
                [](LiteralColouring::TextBox& b) { LiteralColouring::boldCurrentLine(b); });
            problems << check(
                "expandSeparators", [](ColouredText& t) { t.expandSeparators(); },
                [](LiteralColouring::TextBox& b) { LiteralColouring::expandSeparators(b); });
            problems.removeAll(QString());
            QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
        }
    }
};

QTEST_GUILESS_MAIN(TestColouredText)
#include "test_colouredtext.moc"
