#include "app/commandtextbox.h"
#include "commands/colouredtext.h"

#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>

namespace {

const QString crlf = QStringLiteral("\r\n");

/// The look of the character at `position` (CR LF counted as two) as the box shows it.
CharFormat lookAt(const CommandTextBox& box, int position)
{
    return box.colouredText().formats().at(std::size_t(position));
}

QString colourName(TextColour colour)
{
    switch (colour) {
    case TextColour::Black:
        return QStringLiteral("black");
    case TextColour::Maroon:
        return QStringLiteral("maroon");
    case TextColour::Navy:
        return QStringLiteral("navy");
    case TextColour::Green:
        return QStringLiteral("green");
    }
    return QString();
}

/// The looks of a text, one letter per character (b black, m maroon, n navy, g green; upper case
/// when bold) with line breaks left out, which the box never shows.
QString looks(const ColouredText& text)
{
    QString result;
    for (int at = 0; at < text.text().size(); ++at) {
        const QChar character = text.text().at(at);
        if (character == QLatin1Char('\r') || character == QLatin1Char('\n')) {
            result += character == QLatin1Char('\n') ? QStringLiteral("/") : QString();
            continue;
        }
        const CharFormat format = text.formats().at(std::size_t(at));
        QChar letter = colourName(format.colour).at(0);
        result += format.bold ? letter.toUpper() : letter;
    }
    return result;
}

} // namespace

/// The command editor's text box typed into and clicked as a user does, its colours and bold type
/// read back from the box after each occasion.
class TestCommandTextBox : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandTextBox> m_box;

    CommandTextBox& box() { return *m_box; }

    void type(const QString& text) { QTest::keyClicks(m_box.get(), text); }
    void press(Qt::Key key) { QTest::keyClick(m_box.get(), key); }

private Q_SLOTS:
    void init()
    {
        m_box = std::make_unique<CommandTextBox>();
        m_box->resize(500, 300);
        m_box->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_box.get()));
    }
    void cleanup() { m_box.reset(); }

    void isTheCommandBox()
    {
        QCOMPARE(box().objectName(), QStringLiteral("txtCommand"));
        QVERIFY(QFontInfo(box().font()).fixedPitch());
    }

    void typedCommandIsColouredAfterEachKey()
    {
        type(QStringLiteral("del $fs-001$ x"));
        QCOMPARE(box().commandText(), QStringLiteral("del $fs-001$ x"));
        // "del " green, the variable maroon, the rest black; the caret's line bold.
        QCOMPARE(looks(box().colouredText()), QStringLiteral("GGGGMMMMMMMMBB"));
    }

    void typingAfterColouringIsBlackAndNotBold()
    {
        type(QStringLiteral("$a$"));
        press(Qt::Key_Home);
        press(Qt::Key_End);
        QTest::keyPress(&box(), Qt::Key_X, Qt::NoModifier);
        // Before the key's release: the new character has the typing look.
        const CharFormat typed = lookAt(box(), 3);
        QCOMPARE(typed.colour, TextColour::Black);
        QVERIFY(!typed.bold);
        QTest::keyRelease(&box(), Qt::Key_X, Qt::NoModifier);
        QCOMPARE(looks(box().colouredText()), QStringLiteral("MMMB"));
    }

    void typingOverASelectionIsBlackAndNotBold()
    {
        type(QStringLiteral("$abc$"));
        box().setSelection(1, 2);
        QTest::keyPress(&box(), Qt::Key_Z, Qt::NoModifier, 0);
        QCOMPARE(box().commandText(), QStringLiteral("$zc$"));
        const CharFormat typed = lookAt(box(), 1);
        QCOMPARE(typed.colour, TextColour::Black);
        QVERIFY(!typed.bold);
        QTest::keyRelease(&box(), Qt::Key_Z, Qt::NoModifier);
    }

    void enterOnAnEmptyTextIsRefused()
    {
        QTest::keyPress(&box(), Qt::Key_Return);
        QVERIFY(box().keyRefused());
        QTest::keyRelease(&box(), Qt::Key_Return);
        QVERIFY(!box().keyRefused());
        QCOMPARE(box().commandText(), QString());
    }

    void enterAtTheEndInsertsOneLineBreak()
    {
        type(QStringLiteral("a"));
        press(Qt::Key_Return);
        type(QStringLiteral("b"));
        QCOMPARE(box().commandText(), QStringLiteral("a") + crlf + QStringLiteral("b"));
        // The caret's line alone is bold.
        QCOMPARE(looks(box().colouredText()), QStringLiteral("b/B"));
    }

    void enterBetweenTwoLineBreaksIsRefused()
    {
        box().setCommandText(QStringLiteral("a") + crlf + crlf + QStringLiteral("b"));
        box().setSelection(3, 0);
        QTest::keyPress(&box(), Qt::Key_Enter);
        QVERIFY(box().keyRefused());
        QTest::keyRelease(&box(), Qt::Key_Enter);
        QCOMPARE(box().commandText(), QStringLiteral("a") + crlf + crlf + QStringLiteral("b"));
    }

    void enterBeforeALineBreakInsertsNothing()
    {
        box().setCommandText(QStringLiteral("a") + crlf + QStringLiteral("b"));
        box().setSelection(1, 0);
        press(Qt::Key_Return);
        QCOMPARE(box().commandText(), QStringLiteral("a") + crlf + QStringLiteral("b"));
        QCOMPARE(box().selectionStart(), 1);
    }

    void enterInTheMiddleOfALineSplitsIt()
    {
        box().setCommandText(QStringLiteral("abc"));
        box().setSelection(1, 0);
        press(Qt::Key_Return);
        QCOMPARE(box().commandText(), QStringLiteral("a") + crlf + QStringLiteral("bc"));
        QCOMPARE(box().selectionStart(), 3);
    }

    void shiftEnterIsAnEnterToo()
    {
        box().setCommandText(QString());
        QTest::keyClick(&box(), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(box().commandText(), QString());
    }

    void backspaceAfterALineBreakRemovesTheEmptyLine()
    {
        box().setCommandText(QStringLiteral("a") + crlf + crlf + QStringLiteral("b"));
        box().setSelection(5, 0);
        QTest::keyPress(&box(), Qt::Key_Backspace);
        QVERIFY(box().keyRefused());
        QTest::keyRelease(&box(), Qt::Key_Backspace);
        QCOMPARE(box().commandText(), QStringLiteral("ab"));
        QCOMPARE(box().selectionStart(), 1);
    }

    void backspaceElsewhereRemovesOneCharacter()
    {
        box().setCommandText(QStringLiteral("ab") + crlf + QStringLiteral("cd"));
        box().setSelection(6, 0);
        press(Qt::Key_Backspace);
        QCOMPARE(box().commandText(), QStringLiteral("ab") + crlf + QStringLiteral("c"));
    }

    void backspaceOnASingleCharacterWorksAsUsual()
    {
        type(QStringLiteral("x"));
        press(Qt::Key_Backspace);
        QCOMPARE(box().commandText(), QString());
    }

    void typedSeparatorBecomesTwoLineBreaks()
    {
        type(QStringLiteral("copy a||del b"));
        QCOMPARE(box().commandText(), QStringLiteral("copy a") + crlf + crlf + QStringLiteral("del b"));
        // The caret stays after what was typed, on the last line, which alone is bold.
        QCOMPARE(box().selectionStart(), int(box().commandText().size()));
        QCOMPARE(looks(box().colouredText()), QStringLiteral("gggggb//GGGGB"));
    }

    void upAndDownKeepTheCaretLineVisible()
    {
        QStringList lines;
        for (int line = 0; line < 200; ++line) {
            lines.append(QStringLiteral("line %1").arg(line));
        }
        box().setCommandText(lines.join(crlf));
        box().setFocus();
        for (int step = 0; step < 120; ++step) {
            press(Qt::Key_Down);
        }
        QVERIFY(box().viewport()->rect().contains(box().cursorRect()));
        QVERIFY(box().verticalScrollBar()->value() > 0);
        for (int step = 0; step < 110; ++step) {
            press(Qt::Key_Up);
        }
        QVERIFY(box().viewport()->rect().contains(box().cursorRect()));
    }

    void clickMakesTheClickedLineBold()
    {
        box().setCommandText(QStringLiteral("del $x$") + crlf + QStringLiteral("copy y"));
        box().recolour(ColouredText::Occasion::EditorOpened);
        QCOMPARE(looks(box().colouredText()), QStringLiteral("ggggmmm/gggggb"));
        QTextCursor cursor(box().document()->findBlockByNumber(1));
        const QPoint onSecondLine = box().cursorRect(cursor).center() + QPoint(2, 0);
        QTest::mouseClick(box().viewport(), Qt::LeftButton, Qt::NoModifier, onSecondLine);
        QCOMPARE(box().selectionStart(), 9);
        QCOMPARE(looks(box().colouredText()), QStringLiteral("ggggmmm/GGGGGB"));
    }

    /// The box gives exactly what the colouring model gives, whatever the text, the caret, the
    /// selection, the earlier looks and the occasion.
    void matchesTheModelOnRandomTexts()
    {
        const QStringList pieces = { QStringLiteral("$"),
                                     QStringLiteral("a"),
                                     QStringLiteral("|"),
                                     crlf,
                                     QStringLiteral("005="),
                                     QStringLiteral("del "),
                                     QStringLiteral("copy "),
                                     QStringLiteral("$fs-001$"),
                                     QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe "),
                                     QStringLiteral(" "),
                                     QStringLiteral("||") };
        const QList<ColouredText::Occasion> occasions
            = { ColouredText::Occasion::VariableChosen, ColouredText::Occasion::EditorOpened,
                ColouredText::Occasion::ScriptLoaded,   ColouredText::Occasion::MouseReleased,
                ColouredText::Occasion::MousePressed,   ColouredText::Occasion::RefusedKeyReleased,
                ColouredText::Occasion::KeyReleased };
        QRandomGenerator random(20261123);
        for (int round = 0; round < 300; ++round) {
            QString text;
            const int count = random.bounded(0, 25);
            for (int piece = 0; piece < count; ++piece) {
                text += pieces.at(random.bounded(int(pieces.size())));
            }
            box().setCommandText(text);
            ColouredText model(box().commandText());
            // Earlier looks: a few occasions at random carets.
            for (int step = 0; step < 4; ++step) {
                const int size = int(model.text().size());
                int start = random.bounded(size + 1);
                // The box cannot put the caret inside a line break.
                if (start > 0 && start < size && model.text().at(start) == QLatin1Char('\n')) {
                    --start;
                }
                int length = random.bounded(size - start + 1);
                if (start + length > 0 && start + length < size
                    && model.text().at(start + length) == QLatin1Char('\n')) {
                    ++length;
                }
                if (random.bounded(2) == 0) {
                    length = 0;
                }
                box().setSelection(start, length);
                model.setSelection(start, length);
                const ColouredText::Occasion occasion = occasions.at(random.bounded(int(occasions.size())));
                box().recolour(occasion);
                model.recolour(occasion);
                const ColouredText shown = box().colouredText();
                const QString context = QStringLiteral("%1 [%2,%3] occasion %4")
                                            .arg(QString(text).replace(crlf, QStringLiteral("/")))
                                            .arg(start)
                                            .arg(length)
                                            .arg(int(occasion));
                QVERIFY2(shown.selectionStart() == model.selectionStart()
                             && shown.selectionLength() == model.selectionLength(),
                         qPrintable(context
                                    + QStringLiteral(" box %1,%2 model %3,%4")
                                          .arg(shown.selectionStart())
                                          .arg(shown.selectionLength())
                                          .arg(model.selectionStart())
                                          .arg(model.selectionLength())));
                QCOMPARE(shown.text(), model.text());
                QCOMPARE(looks(shown), looks(model));
                QCOMPARE(shown.selectionStart(), model.selectionStart());
                QCOMPARE(shown.selectionLength(), model.selectionLength());
            }
        }
    }
};

QTEST_MAIN(TestCommandTextBox)
#include "test_commandtextbox.moc"
