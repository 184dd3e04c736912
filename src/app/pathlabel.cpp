#include "pathlabel.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <QPen>
#include <QStyleOption>
#include <QTextLayout>
#include <QtMath>

#include <algorithm>

namespace {

/// Whether `character` is a space a line may end in; a no-break space belongs to its word.
bool breaksAfter(QChar character)
{
    return character.isSpace() && character.decompositionTag() != QChar::NoBreak;
}

/// Whether a label lays `text` out other than word by word: a tab steps to the next tab stop, a soft
/// hyphen shows only where a line breaks at it, and control characters may end lines.
bool laysOutSpecially(const QString& text)
{
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.unicode() < 0x20 || character.unicode() == 0xAD; });
}

} // namespace

PathLabel::PathLabel(QWidget* parent)
    : QLabel(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
}

void PathLabel::measureWords() const
{
    const QString shown = text();
    if (m_measured && shown == m_measuredText && font() == m_measuredFont) {
        return;
    }
    m_measuredText = shown;
    m_measuredFont = font();
    m_measured = true;
    m_special = laysOutSpecially(shown);
    m_words.clear();

    const QFontMetricsF metrics(m_measuredFont);
    m_lineHeight = metrics.ascent() + metrics.descent();
    m_leading = metrics.leading();
    // Laid out a pixel wide, every line holds one word and the spaces after it: the pieces
    // the text breaks into, each measured as it is shaped within the whole text.
    QTextLayout layout(m_measuredText, m_measuredFont);
    QTextOption option;
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(1);
    }
    layout.endLayout();
    m_words.reserve(size_t(layout.lineCount()));
    // A line measures its word without the spaces after it; those are measured alone, once per run.
    QHash<QString, qreal> spaceRuns;
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        const int end = line.textStart() + line.textLength();
        int wordEnd = end;
        while (wordEnd > line.textStart() && breaksAfter(m_measuredText.at(wordEnd - 1))) {
            --wordEnd;
        }
        qreal spaces = 0;
        if (wordEnd < end) {
            const QString run = m_measuredText.mid(wordEnd, end - wordEnd);
            auto found = spaceRuns.constFind(run);
            if (found == spaceRuns.constEnd()) {
                found = spaceRuns.insert(run, metrics.horizontalAdvance(run));
            }
            spaces = found.value();
        }
        // A glyph that reaches past its advance (a negative right bearing) must fit in the line too.
        const qreal overhang = wordEnd > line.textStart()
            ? std::max<qreal>(0, -metrics.rightBearing(m_measuredText.at(wordEnd - 1)))
            : 0;
        // A line that ends in the glyph itself takes its overhang into its width; the word's own width
        // does not.
        const qreal width = line.naturalTextWidth() - (wordEnd == end ? overhang : 0);
        m_words.push_back(Word { line.textStart(), line.textLength(), width, width + spaces, overhang });
    }
}

std::vector<PathLabel::Line> PathLabel::lines(qreal width) const
{
    std::vector<Line> result;
    qreal spacesAfter = 0;
    for (int i = 0; i < int(m_words.size()); ++i) {
        const Word& word = m_words[size_t(i)];
        if (result.empty() || result.back().width + spacesAfter + word.width + word.overhang > width) {
            result.push_back(Line { i, 1, word.width });
        } else {
            Line& line = result.back();
            line.width += spacesAfter + word.width;
            ++line.wordCount;
        }
        spacesAfter = word.advance - word.width;
    }
    // A line is as wide as its words, and the overhang of its last glyph.
    for (Line& line : result) {
        const Word& last = m_words[size_t(line.firstWord + line.wordCount - 1)];
        if (last.advance > last.width) {
            // Ends in spaces, which count only at the end of the text and where they fit.
            if (&line == &result.back() && line.width + spacesAfter <= width) {
                line.width += spacesAfter;
            }
        } else {
            line.width += last.overhang;
        }
    }
    if (result.empty()) {
        result.push_back(Line { 0, 0, 0 }); // an empty text still takes a line
    }
    return result;
}

qreal PathLabel::linesHeight(qsizetype count) const
{
    qreal height = -m_leading;
    for (qsizetype i = 0; i < count; ++i) {
        height = qCeil(height + m_leading) + m_lineHeight;
    }
    return height;
}

QSize PathLabel::extraRoom() const
{
    // Without frame or indent, the margin all round and the contents margins.
    const QMargins margins = contentsMargins();
    return QSize(2 * margin() + margins.left() + margins.right(), 2 * margin() + margins.top() + margins.bottom());
}

QSize PathLabel::sizeForWidth(int width) const
{
    measureWords();
    if (minimumWidth() > 0) {
        width = std::max(width, minimumWidth());
    }
    const QSize extra = extraRoom();
    const bool preferred = width < 0;
    if (preferred) {
        width = std::min(fontMetrics().averageCharWidth() * 80, maximumSize().width());
    }
    width -= extra.width();
    const auto textSize = [this](int within) {
        const std::vector<Line> laidOut = lines(within);
        qreal widest = 0;
        for (const Line& line : laidOut) {
            widest = std::max(widest, line.width);
        }
        return QRectF(0, 0, widest, linesHeight(qsizetype(laidOut.size()))).toAlignedRect().size();
    };
    QSize text = textSize(width);
    // A short text is given a narrower shape, as a label gives it.
    const qreal lineSpacing = fontMetrics().lineSpacing();
    if (preferred && text.height() < 4 * lineSpacing && text.width() > width / 2) {
        text = textSize(width / 2);
    }
    if (preferred && text.height() < 2 * lineSpacing && text.width() > width / 4) {
        text = textSize(width / 4);
    }
    return (text + extra).expandedTo(minimumSize());
}

bool PathLabel::measuresItself() const
{
    // An empty label measures nothing; the label's own sizes are quick then.
    const QString shown = text();
    if (shown.isEmpty() || textFormat() != Qt::PlainText || !wordWrap() || indent() > 0 || frameWidth() != 0
        || (textInteractionFlags() & Qt::TextSelectableByMouse) || !isEnabled() || layoutDirection() != Qt::LeftToRight
        || (alignment() & Qt::AlignHorizontal_Mask) != Qt::AlignLeft) {
        return false;
    }
    if (!m_measured || shown != m_measuredText) {
        return !laysOutSpecially(shown);
    }
    return !m_special;
}

QSize PathLabel::sizeHint() const
{
    return measuresItself() ? sizeForWidth(-1) : QLabel::sizeHint();
}

QSize PathLabel::minimumSizeHint() const
{
    if (!measuresItself()) {
        return QLabel::minimumSizeHint();
    }
    const QSize preferred = sizeForWidth(-1);
    // As narrow as the widest word, as low as one line.
    QSize least(sizeForWidth(0).width(), sizeForWidth(QWIDGETSIZE_MAX).height());
    least.setHeight(std::min(least.height(), preferred.height()));
    return least;
}

int PathLabel::heightForWidth(int width) const
{
    return measuresItself() ? sizeForWidth(width).height() : QLabel::heightForWidth(width);
}

void PathLabel::paintEvent(QPaintEvent* event)
{
    if (!measuresItself()) {
        QLabel::paintEvent(event);
        return;
    }
    measureWords();
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());

    std::vector<Line> laidOut = lines(area.width());
    // Lines below the label's foot are cut away and do not count in centring the text, as a label
    // stops laying out its text there.
    qreal height = -m_leading;
    qreal widest = 0;
    qsizetype shown = 0;
    while (shown < qsizetype(laidOut.size()) && (shown == 0 || height < area.height())) {
        height = qCeil(height + m_leading) + m_lineHeight;
        widest = std::max(widest, laidOut[size_t(shown)].width);
        ++shown;
    }
    laidOut.resize(size_t(shown));
    qreal top = area.top();
    if (alignment() & Qt::AlignBottom) {
        top = area.top() + area.height() - height;
    } else if (alignment() & Qt::AlignVCenter) {
        top = area.top() + (area.height() - height) / 2;
    }
    // Text that does not fit is cut at the label's edges, as a label cuts it.
    if (!QRectF(area).contains(QRectF(area.left(), top, widest, height))) {
        painter.setClipRect(area, Qt::IntersectClip);
    }

    QStyleOption option;
    option.initFrom(this);
    painter.setPen(QPen(option.palette.brush(foregroundRole()), painter.pen().widthF()));
    const qreal ascent = QFontMetricsF(font()).ascent();
    qreal lineTop = -m_leading;
    for (const Line& line : laidOut) {
        lineTop = qCeil(lineTop + m_leading);
        if (line.wordCount > 0) {
            const Word& first = m_words[size_t(line.firstWord)];
            const Word& last = m_words[size_t(line.firstWord + line.wordCount - 1)];
            painter.drawText(QPointF(area.left(), top + lineTop + ascent),
                             m_measuredText.mid(first.start, last.start + last.length - first.start));
        }
        lineTop += m_lineHeight;
    }
}

void PathLabel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_measured = false;
        updateGeometry();
    }
    QLabel::changeEvent(event);
}
