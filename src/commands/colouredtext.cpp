#include "colouredtext.h"

#include "keywordtable.h"

#include <algorithm>
#include <utility>

namespace {

const QString lineBreak = QStringLiteral("\r\n");

} // namespace

ColouredText::ColouredText(QString text)
    : m_text(std::move(text))
    , m_formats(std::size_t(m_text.size()))
{
}

ColouredText::ColouredText(QString text, std::vector<CharFormat> formats, int selectionStart, int selectionLength)
    : m_text(std::move(text))
    , m_formats(std::move(formats))
{
    m_formats.resize(std::size_t(m_text.size()));
    setSelection(selectionStart, selectionLength);
}

void ColouredText::setSelection(int start, int length)
{
    m_selectionStart = start;
    m_selectionLength = length;
    clipSelection();
}

void ColouredText::clipSelection()
{
    const int size = int(m_text.size());
    m_selectionStart = std::clamp(m_selectionStart, 0, size);
    m_selectionLength = std::clamp(m_selectionLength, 0, size - m_selectionStart);
}

int ColouredText::lineStart() const
{
    if (m_selectionStart < 2) {
        return 0;
    }
    const qsizetype previous = m_text.lastIndexOf(lineBreak, m_selectionStart - 2);
    return previous < 0 ? 0 : int(previous) + 2;
}

int ColouredText::lineEnd() const
{
    const qsizetype next = m_text.indexOf(lineBreak, lineStart());
    return next < 0 ? int(m_text.size()) : int(next);
}

void ColouredText::scopeRange(Scope scope, int& start, int& end) const
{
    if (scope == Scope::CurrentLine) {
        start = lineStart();
        end = lineEnd();
    } else {
        start = 0;
        end = int(m_text.size());
    }
}

void ColouredText::colourRange(int start, int length, TextColour colour)
{
    const int from = std::max(0, start);
    const int to = std::min(int(m_text.size()), start + length);
    for (int i = from; i < to; ++i) {
        m_formats[std::size_t(i)].colour = colour;
    }
    m_typing.colour = TextColour::Black;
}

void ColouredText::resetFormatting(Scope scope, Reset reset)
{
    int start = 0;
    int end = 0;
    scopeRange(scope, start, end);
    for (int i = start; i < end; ++i) {
        CharFormat& format = m_formats[std::size_t(i)];
        if (reset != Reset::BoldOnly) {
            format.colour = TextColour::Black;
        }
        if (reset != Reset::ColourOnly) {
            format.bold = false;
        }
    }
    m_typing = CharFormat();
}

void ColouredText::colourVariables(Scope scope)
{
    int start = 0;
    int end = 0;
    scopeRange(scope, start, end);
    qsizetype search = start;
    for (;;) {
        const qsizetype first = m_text.indexOf(QLatin1Char('$'), search);
        if (first < 0) {
            break;
        }
        const qsizetype second = m_text.indexOf(QLatin1Char('$'), first + 1);
        if (second < 0 || (scope == Scope::CurrentLine && second >= end)) {
            break;
        }
        colourRange(int(first), int(second - first + 1), TextColour::Maroon);
        search = second + 1;
    }
    m_typing = CharFormat();
}

void ColouredText::colourKeywords(Scope scope)
{
    int start = 0;
    int end = 0;
    scopeRange(scope, start, end);
    for (const Keyword& keyword : keywordTable()) {
        for (qsizetype match = m_text.indexOf(keyword.text, start, Qt::CaseSensitive); match >= 0;
             match = m_text.indexOf(keyword.text, match + 1, Qt::CaseSensitive)) {
            if (scope == Scope::CurrentLine && match >= end) {
                break;
            }
            colourRange(int(match), int(keyword.text.size()), keyword.colour);
        }
    }
    m_typing = CharFormat();
}

void ColouredText::boldCurrentLine()
{
    const int end = lineEnd();
    for (int i = lineStart(); i < end; ++i) {
        m_formats[std::size_t(i)].bold = true;
    }
    m_typing = CharFormat();
}

void ColouredText::expandSeparators()
{
    const QString separator = QStringLiteral("||");
    if (!m_text.contains(separator)) {
        return;
    }
    // Old positions map onto the new text; a position inside a "||" lands after its line breaks.
    const auto mapped = [this, &separator](int position) {
        int shift = 0;
        for (qsizetype found = m_text.indexOf(separator); found >= 0 && found < position;
             found = m_text.indexOf(separator, found + 2)) {
            shift += found + 1 == position ? 3 : 2;
        }
        return position + shift;
    };
    const int selectionEnd = mapped(m_selectionStart + m_selectionLength);
    const int selectionStart = mapped(m_selectionStart);
    QString expanded;
    std::vector<CharFormat> formats;
    expanded.reserve(m_text.size() + 16);
    formats.reserve(m_formats.size() + 16);
    for (qsizetype i = 0; i < m_text.size(); ++i) {
        if (m_text.at(i) == QLatin1Char('|') && i + 1 < m_text.size() && m_text.at(i + 1) == QLatin1Char('|')) {
            expanded += QStringLiteral("\r\n\r\n");
            formats.insert(formats.end(), 4, CharFormat());
            ++i;
            continue;
        }
        expanded += m_text.at(i);
        formats.push_back(m_formats[std::size_t(i)]);
    }
    m_text = expanded;
    m_formats = std::move(formats);
    m_selectionStart = selectionStart;
    m_selectionLength = selectionEnd - selectionStart;
    clipSelection();
}

void ColouredText::recolour(Occasion occasion)
{
    switch (occasion) {
    case Occasion::VariableChosen:
        resetFormatting(Scope::WholeText, Reset::ColourAndBold);
        colourVariables(Scope::WholeText);
        colourKeywords(Scope::WholeText);
        boldCurrentLine();
        break;
    case Occasion::EditorOpened:
        colourVariables(Scope::WholeText);
        colourKeywords(Scope::WholeText);
        break;
    case Occasion::ScriptLoaded:
        resetFormatting(Scope::WholeText, Reset::ColourAndBold);
        colourVariables(Scope::WholeText);
        colourKeywords(Scope::WholeText);
        break;
    case Occasion::MouseReleased:
        resetFormatting(Scope::WholeText, Reset::BoldOnly);
        resetFormatting(Scope::CurrentLine, Reset::ColourAndBold);
        colourVariables(Scope::CurrentLine);
        colourKeywords(Scope::CurrentLine);
        boldCurrentLine();
        break;
    case Occasion::MousePressed:
        colourVariables(Scope::CurrentLine);
        colourKeywords(Scope::CurrentLine);
        break;
    case Occasion::RefusedKeyReleased:
        resetFormatting(Scope::WholeText, Reset::BoldOnly);
        boldCurrentLine();
        break;
    case Occasion::KeyReleased:
        resetFormatting(Scope::CurrentLine, Reset::ColourOnly);
        resetFormatting(Scope::WholeText, Reset::ColourAndBold);
        expandSeparators();
        colourVariables(Scope::WholeText);
        colourKeywords(Scope::WholeText);
        boldCurrentLine();
        break;
    }
}

bool operator==(const ColouredText& left, const ColouredText& right)
{
    return left.m_text == right.m_text && left.m_formats == right.m_formats
        && left.m_selectionStart == right.m_selectionStart && left.m_selectionLength == right.m_selectionLength
        && left.m_typing == right.m_typing;
}
