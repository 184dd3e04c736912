#include "literalcolouring.h"

#include <algorithm>

namespace LiteralColouring {

namespace {

const QChar cr = QLatin1Char('\r');
const QChar lf = QLatin1Char('\n');

/// Whether a CR LF pair starts at `position`.
bool lineBreakAt(const QString& text, int position)
{
    return position >= 0 && position + 1 < int(text.size()) && text.at(position) == cr && text.at(position + 1) == lf;
}

/// The first position at or after `from` where `word` stands, compared character by character; -1
/// when there is none.
int find(const QString& text, const QString& word, int from)
{
    for (int position = std::max(0, from); position + int(word.size()) <= int(text.size()); ++position) {
        bool same = true;
        for (int c = 0; c < int(word.size()) && same; ++c) {
            same = text.at(position + c) == word.at(c);
        }
        if (same) {
            return position;
        }
    }
    return -1;
}

/// "001" .. "030": the number with leading zeros up to three digits.
QString threeDigits(int number)
{
    QString digits = QString::number(number);
    while (digits.size() < 3) {
        digits.prepend(QLatin1Char('0'));
    }
    return digits;
}

} // namespace

void TextBox::setSelStart(int start)
{
    selStart = std::clamp(start, 0, int(text.size()));
    selLength = 0;
}

void TextBox::setSelLength(int length)
{
    selLength = std::clamp(length, 0, int(text.size()) - selStart);
}

void TextBox::setSelColour(TextColour colour)
{
    if (selLength == 0) {
        typing.colour = colour;
        return;
    }
    for (int i = selStart; i < selStart + selLength; ++i) {
        formats[std::size_t(i)].colour = colour;
    }
}

void TextBox::setSelBold(bool bold)
{
    if (selLength == 0) {
        typing.bold = bold;
        return;
    }
    for (int i = selStart; i < selStart + selLength; ++i) {
        formats[std::size_t(i)].bold = bold;
    }
}

QList<KeywordEntry> keywordTable()
{
    QList<KeywordEntry> table;
    table.append({ QStringLiteral("$exepath$\\Tolvexer\\Tolvexer.exe "), TextColour::Green });
    for (int number = 1; number <= 30; ++number) {
        table.append({ threeDigits(number) + QLatin1Char('='), TextColour::Navy });
    }
    for (const char* word : { "del ", "rename ", "copy ", "regsvr32 ", "regsvr32.exe " }) {
        table.append({ QString::fromLatin1(word), TextColour::Green });
    }
    return table;
}

int currentLineStart(const TextBox& box)
{
    int start = 0;
    // A CR LF lies wholly before the caret when its LF does.
    for (int position = 0; position + 1 < box.selStart; ++position) {
        if (lineBreakAt(box.text, position)) {
            start = position + 2;
        }
    }
    return start;
}

int currentLineEnd(const TextBox& box)
{
    for (int position = currentLineStart(box); position < int(box.text.size()); ++position) {
        if (lineBreakAt(box.text, position)) {
            return position;
        }
    }
    return int(box.text.size());
}

void colourRange(TextBox& box, int start, int length, TextColour colour)
{
    const int rememberedStart = box.selStart;
    const int rememberedLength = box.selLength;
    box.setSelStart(start);
    box.setSelLength(length);
    box.setSelColour(colour);
    box.setSelStart(rememberedStart);
    box.setSelColour(TextColour::Black);
    box.setSelLength(rememberedLength);
}

void resetFormatting(TextBox& box, bool currentLine, int mode)
{
    const int rememberedStart = box.selStart;
    const int rememberedLength = box.selLength;
    if (currentLine) {
        const int start = currentLineStart(box);
        const int end = currentLineEnd(box);
        box.setSelStart(start);
        box.setSelLength(end - start);
    } else {
        box.setSelStart(0);
        box.setSelLength(int(box.text.size()));
    }
    if (mode == 0 || mode == 2) {
        box.setSelColour(TextColour::Black);
    }
    if (mode == 0 || mode == 1) {
        box.setSelBold(false);
    }
    box.setSelStart(rememberedStart);
    box.setSelLength(rememberedLength);
}

void colourVariables(TextBox& box, bool currentLine)
{
    const int lineEnd = currentLineEnd(box);
    int search = currentLine ? currentLineStart(box) : 0;
    for (;;) {
        const int first = find(box.text, QStringLiteral("$"), search);
        if (first < 0) {
            return;
        }
        const int second = find(box.text, QStringLiteral("$"), first + 1);
        if (second < 0) {
            return;
        }
        if (currentLine && second > lineEnd) {
            return;
        }
        colourRange(box, first, second - first + 1, TextColour::Maroon);
        search = second + 1;
    }
}

void colourKeywords(TextBox& box, bool currentLine)
{
    const QList<KeywordEntry> table = keywordTable();
    for (const KeywordEntry& entry : table) {
        const int rememberedStart = box.selStart;
        const int rememberedLength = box.selLength;
        const int lineEnd = currentLineEnd(box);
        int search = currentLine ? currentLineStart(box) : 0;
        for (;;) {
            const int match = find(box.text, entry.text, search);
            if (match < 0) {
                break;
            }
            if (currentLine && match > lineEnd) {
                break;
            }
            colourRange(box, match, int(entry.text.size()), entry.colour);
            search = match + 1;
        }
        box.setSelStart(rememberedStart);
        box.setSelLength(rememberedLength);
    }
}

void boldCurrentLine(TextBox& box)
{
    const int rememberedStart = box.selStart;
    const int rememberedLength = box.selLength;
    const int start = currentLineStart(box);
    const int end = currentLineEnd(box);
    box.setSelStart(start);
    box.setSelLength(end - start);
    box.setSelBold(true);
    box.setSelStart(rememberedStart);
    box.setSelBold(false);
    box.setSelLength(rememberedLength);
}

void expandSeparators(TextBox& box)
{
    // newPosition[p]: where the gap before old character p (or the end, p = size) lands.
    std::vector<int> newPosition(std::size_t(box.text.size()) + 1);
    QString text;
    std::vector<CharFormat> formats;
    int old = 0;
    while (old < int(box.text.size())) {
        if (box.text.at(old) == QLatin1Char('|') && old + 1 < int(box.text.size())
            && box.text.at(old + 1) == QLatin1Char('|')) {
            newPosition[std::size_t(old)] = int(text.size());
            text += QStringLiteral("\r\n\r\n");
            formats.insert(formats.end(), 4, CharFormat());
            newPosition[std::size_t(old) + 1] = int(text.size());
            old += 2;
            continue;
        }
        newPosition[std::size_t(old)] = int(text.size());
        text += box.text.at(old);
        formats.push_back(box.formats[std::size_t(old)]);
        ++old;
    }
    newPosition[std::size_t(old)] = int(text.size());
    const int start = newPosition[std::size_t(box.selStart)];
    const int end = newPosition[std::size_t(box.selStart + box.selLength)];
    box.text = text;
    box.formats = formats;
    box.setSelStart(start);
    box.setSelLength(end - start);
}

void recolour(TextBox& box, ColouredText::Occasion occasion)
{
    using Occasion = ColouredText::Occasion;
    switch (occasion) {
    case Occasion::VariableChosen:
        resetFormatting(box, false, 0);
        colourVariables(box, false);
        colourKeywords(box, false);
        boldCurrentLine(box);
        return;
    case Occasion::EditorOpened:
        colourVariables(box, false);
        colourKeywords(box, false);
        return;
    case Occasion::ScriptLoaded:
        resetFormatting(box, false, 0);
        colourVariables(box, false);
        colourKeywords(box, false);
        return;
    case Occasion::MouseReleased:
        resetFormatting(box, false, 1);
        resetFormatting(box, true, 0);
        colourVariables(box, true);
        colourKeywords(box, true);
        boldCurrentLine(box);
        return;
    case Occasion::MousePressed:
        colourVariables(box, true);
        colourKeywords(box, true);
        return;
    case Occasion::RefusedKeyReleased:
        resetFormatting(box, false, 1);
        boldCurrentLine(box);
        return;
    case Occasion::KeyReleased:
        resetFormatting(box, true, 2);
        resetFormatting(box, false, 0);
        expandSeparators(box);
        colourVariables(box, false);
        colourKeywords(box, false);
        boldCurrentLine(box);
        return;
    }
}

TextBox boxOf(const ColouredText& text)
{
    TextBox box;
    box.text = text.text();
    box.formats = text.formats();
    box.selStart = text.selectionStart();
    box.selLength = text.selectionLength();
    box.typing = text.typingFormat();
    return box;
}

} // namespace LiteralColouring
