#include "commandtextbox.h"

#include "commands/commandkeys.h"
#include "commands/commandtext.h"
#include "core/commandtextcheck.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>

namespace {

QColor colourOf(TextColour colour)
{
    switch (colour) {
    case TextColour::Maroon:
        return QColor(128, 0, 0);
    case TextColour::Navy:
        return QColor(0, 0, 128);
    case TextColour::Green:
        return QColor(0, 128, 0);
    case TextColour::Black:
        break;
    }
    return QColor(0, 0, 0);
}

TextColour textColourOf(const QTextCharFormat& format)
{
    if (format.foreground().style() == Qt::NoBrush) {
        return TextColour::Black;
    }
    const QColor colour = format.foreground().color();
    for (const TextColour candidate : { TextColour::Maroon, TextColour::Navy, TextColour::Green }) {
        if (colourOf(candidate) == colour) {
            return candidate;
        }
    }
    return TextColour::Black;
}

QTextCharFormat charFormatOf(CharFormat format)
{
    QTextCharFormat charFormat;
    charFormat.setForeground(colourOf(format.colour));
    charFormat.setFontWeight(format.bold ? QFont::Bold : QFont::Normal);
    return charFormat;
}

/// The box's own line breaks for a text with CR LF, CR or LF ones.
QString withBoxLineBreaks(QString text)
{
    text.replace(CommandText::lineBreak(), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

bool isModifierKey(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta
        || key == Qt::Key_AltGr;
}

} // namespace

CommandTextBox::CommandTextBox(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("txtCommand"));
    // Colouring changes formats all the time; the box's own undo would replay every one of them.
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::TypeWriter);
    // Where Courier New is missing, or stands for a font that is not fixed-pitch (fontconfig may
    // alias it to one), the columns of a command line would not line up: the system's fixed font
    // serves, or else the first common fixed-pitch family the system has.
    const QFontInfo chosen(font);
    if (!chosen.exactMatch() || !chosen.fixedPitch()) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        for (const QString& family :
             { QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Liberation Mono"), QStringLiteral("Noto Mono") }) {
            if (QFontInfo(font).fixedPitch()) {
                break;
            }
            QFont candidate(family, font.pointSize());
            candidate.setStyleHint(QFont::TypeWriter);
            if (QFontInfo(candidate).exactMatch()) {
                font = candidate;
            }
        }
    }
    setFont(font);
    document()->setDefaultFont(font);
    // The marks are laid once the change is over: selections made while the document is still being
    // changed (or cleared) corrupt it.
    m_marking = new QTimer(this);
    m_marking->setSingleShot(true);
    m_marking->setInterval(0);
    connect(m_marking, &QTimer::timeout, this, &CommandTextBox::markUnknownVariables);
    connect(document(), &QTextDocument::contentsChange, this, [this] {
        if (!m_applying) {
            m_shown.reset();
            m_marking->start();
        }
    });
}

void CommandTextBox::markUnknownVariables()
{
    // A wavy underline beside the colours: the look of the text itself stays what colouring makes it.
    m_unknownVariables = CommandTextCheck::unknownVariables(document()->toPlainText());
    QTextCharFormat wavy;
    wavy.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    wavy.setUnderlineColor(QColor(Qt::red));
    QList<QTextEdit::ExtraSelection> marks;
    marks.reserve(m_unknownVariables.size());
    for (const CommandTextCheck::UnknownVariable& variable : std::as_const(m_unknownVariables)) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(document());
        mark.cursor.setPosition(int(variable.start));
        mark.cursor.setPosition(int(variable.start + variable.length), QTextCursor::KeepAnchor);
        mark.format = wavy;
        marks.append(mark);
    }
    setExtraSelections(marks);
}

QString CommandTextBox::unknownVariableAt(const QPoint& viewportPos) const
{
    // The nearest place between two characters; the pointer is on the character after it, or on the
    // one before it when it lies left of that place.
    const QTextCursor nearest = cursorForPosition(viewportPos);
    int position = nearest.position();
    if (viewportPos.x() < cursorRect(nearest).left() && position > 0) {
        --position;
    }
    for (const CommandTextCheck::UnknownVariable& variable : m_unknownVariables) {
        if (position >= variable.start && position < variable.start + variable.length) {
            return variable.message;
        }
    }
    return QString();
}

bool CommandTextBox::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString text = unknownVariableAt(help->pos());
        if (text.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), text, viewport());
        }
        return true;
    }
    return QPlainTextEdit::viewportEvent(event);
}

QString CommandTextBox::commandText() const
{
    QString text;
    text.reserve(document()->characterCount() * 2);
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block != document()->begin()) {
            text += CommandText::lineBreak();
        }
        text += block.text();
    }
    return text;
}

void CommandTextBox::setCommandText(const QString& text)
{
    setPlainText(withBoxLineBreaks(text));
    // The box keeps the look of the text it held before for the new one: all of it goes black.
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.setCharFormat(charFormatOf(CharFormat()));
    setTypingFormat();
}

int CommandTextBox::toBoxPosition(int position) const
{
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const int boxStart = block.position();
        const int textStart = boxStart + block.blockNumber();
        const int length = int(block.text().size());
        if (position <= textStart + length + 1 || !block.next().isValid()) {
            return boxStart + std::min(std::max(position - textStart, 0), length);
        }
    }
    return 0;
}

int CommandTextBox::toTextPosition(int boxPosition) const
{
    return boxPosition + document()->findBlock(boxPosition).blockNumber();
}

int CommandTextBox::selectionStart() const
{
    return toTextPosition(textCursor().selectionStart());
}

int CommandTextBox::selectionLength() const
{
    const QTextCursor cursor = textCursor();
    return toTextPosition(cursor.selectionEnd()) - toTextPosition(cursor.selectionStart());
}

void CommandTextBox::setSelection(int start, int length)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(toBoxPosition(start));
    cursor.setPosition(toBoxPosition(start + length), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

ColouredText CommandTextBox::colouredText() const
{
    QString text;
    std::vector<CharFormat> formats;
    const int capacity = document()->characterCount() * 2;
    text.reserve(capacity);
    formats.reserve(std::size_t(capacity));
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block != document()->begin()) {
            text += CommandText::lineBreak();
            formats.resize(formats.size() + 2);
        }
        for (QTextBlock::iterator fragments = block.begin(); !fragments.atEnd(); ++fragments) {
            const QTextFragment fragment = fragments.fragment();
            const QTextCharFormat charFormat = fragment.charFormat();
            const CharFormat format { textColourOf(charFormat), charFormat.fontWeight() >= QFont::Bold };
            text += fragment.text();
            formats.resize(formats.size() + std::size_t(fragment.length()), format);
        }
    }
    return ColouredText(text, std::move(formats), selectionStart(), selectionLength());
}

void CommandTextBox::applyFormats(const ColouredText& shown, const ColouredText& coloured)
{
    const std::vector<CharFormat>& before = shown.formats();
    const std::vector<CharFormat>& after = coloured.formats();
    QTextCursor cursor(document());
    bool editing = false;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const int boxStart = block.position();
        const int textStart = boxStart + block.blockNumber();
        const int length = block.length() - 1;
        int offset = 0;
        while (offset < length) {
            const std::size_t at = std::size_t(textStart + offset);
            if (before[at] == after[at]) {
                ++offset;
                continue;
            }
            // One run of characters that take the same new look.
            const CharFormat format = after[at];
            int end = offset + 1;
            while (end < length && after[std::size_t(textStart + end)] == format
                   && before[std::size_t(textStart + end)] != format) {
                ++end;
            }
            if (!editing) {
                cursor.beginEditBlock();
                editing = true;
            }
            cursor.setPosition(boxStart + offset);
            cursor.setPosition(boxStart + end, QTextCursor::KeepAnchor);
            cursor.setCharFormat(charFormatOf(format));
            offset = end;
        }
    }
    if (editing) {
        cursor.endEditBlock();
    }
}

void CommandTextBox::expandSeparators()
{
    const QString separator = QStringLiteral("||");
    const QString boxText = toPlainText();
    if (!boxText.contains(separator)) {
        return;
    }
    // "||" and two line breaks both take two positions in the box, so the caret and the selection
    // stay where they are; one inside a "||" lands after its line breaks.
    QTextCursor caret = textCursor();
    int anchor = caret.anchor();
    int position = caret.position();
    for (qsizetype found = boxText.indexOf(separator); found >= 0; found = boxText.indexOf(separator, found + 2)) {
        anchor = anchor == found + 1 ? anchor + 1 : anchor;
        position = position == found + 1 ? position + 1 : position;
    }
    QTextCursor found = document()->find(separator);
    while (!found.isNull()) {
        found.removeSelectedText();
        found.insertBlock();
        found.insertBlock();
        found = document()->find(separator, found);
    }
    caret.setPosition(anchor);
    caret.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(caret);
}

void CommandTextBox::recolour(ColouredText::Occasion occasion)
{
    viewport()->setUpdatesEnabled(false);
    if (occasion == ColouredText::Occasion::KeyReleased) {
        expandSeparators();
    }
    ColouredText shown = m_shown.has_value() ? *m_shown : colouredText();
    shown.setSelection(selectionStart(), selectionLength());
    ColouredText coloured = shown;
    coloured.recolour(occasion);
    m_applying = true;
    applyFormats(shown, coloured);
    m_applying = false;
    m_shown = std::move(coloured);
    setTypingFormat();
    viewport()->setUpdatesEnabled(true);
}

void CommandTextBox::setTypingFormat()
{
    // With a selection this would restyle the selected text: typing over it is handled on the key.
    if (!textCursor().hasSelection()) {
        setCurrentCharFormat(charFormatOf(CharFormat()));
    }
}

void CommandTextBox::replaceSelection(const QString& text, int caret)
{
    QTextCursor cursor = textCursor();
    cursor.insertText(withBoxLineBreaks(text), charFormatOf(CharFormat()));
    setTextCursor(cursor);
    setSelection(caret, 0);
}

void CommandTextBox::appendText(const QString& text)
{
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(withBoxLineBreaks(text), charFormatOf(CharFormat()));
    setTextCursor(cursor);
}

void CommandTextBox::insertLineBreakAtCaret()
{
    QTextCursor cursor = textCursor();
    cursor.insertBlock(cursor.blockFormat(), charFormatOf(CharFormat()));
    setTextCursor(cursor);
}

void CommandTextBox::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        // Every Enter is refused; the box inserts the line break itself where one belongs.
        m_keyRefused = true;
        if (CommandKeys::enterInsertsLineBreak(commandText(), selectionStart())) {
            insertLineBreakAtCaret();
        }
        event->accept();
        return;
    }
    if (key == Qt::Key_Backspace && event->modifiers() == Qt::NoModifier && !textCursor().hasSelection()) {
        const int caret = selectionStart();
        const int group = CommandKeys::backspaceGroupLength(commandText(), caret);
        if (group > 0) {
            m_keyRefused = true;
            QTextCursor cursor = textCursor();
            cursor.setPosition(toBoxPosition(caret - group));
            cursor.setPosition(textCursor().position(), QTextCursor::KeepAnchor);
            cursor.removeSelectedText();
            setTextCursor(cursor);
            event->accept();
            return;
        }
    }
    if (!event->text().isEmpty() && event->text().at(0).isPrint() && textCursor().hasSelection()) {
        // Typing over a selection writes in black, not bold, like any typing.
        QTextCursor cursor = textCursor();
        cursor.removeSelectedText();
        setTextCursor(cursor);
        setTypingFormat();
    }
    QPlainTextEdit::keyPressEvent(event);
}

void CommandTextBox::keyReleaseEvent(QKeyEvent* event)
{
    QPlainTextEdit::keyReleaseEvent(event);
    if (event->isAutoRepeat() || isModifierKey(event->key())) {
        return;
    }
    if (m_keyRefused) {
        m_keyRefused = false;
        recolour(ColouredText::Occasion::RefusedKeyReleased);
    }
    recolour(ColouredText::Occasion::KeyReleased);
}

void CommandTextBox::mousePressEvent(QMouseEvent* event)
{
    QPlainTextEdit::mousePressEvent(event);
    recolour(ColouredText::Occasion::MousePressed);
}

void CommandTextBox::mouseReleaseEvent(QMouseEvent* event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    recolour(ColouredText::Occasion::MouseReleased);
}

void CommandTextBox::insertFromMimeData(const QMimeData* source)
{
    if (source != nullptr && source->hasText()) {
        textCursor().insertText(withBoxLineBreaks(source->text()), charFormatOf(CharFormat()));
        ensureCursorVisible();
    }
}
