#pragma once

#include <QFont>
#include <QLabel>
#include <QString>

#include <vector>

/// The label that shows the selected node's full path, wrapped at the spaces between words as a
/// word-wrapped QLabel wraps it. A QLabel lays its whole text out anew for every size the window asks
/// of it and once more to paint it, half a dozen times per click on a node; for a node a hundred
/// levels deep, whose path runs to a thousand characters, that was a good part of the click. This
/// label measures the words of its text once per text and font, and finds every size and the lines
/// it paints from those measures.
///
/// It shows its text as typed (a caption such as "<b>" stays as it is) and not selectable: a
/// selectable label lays its text out as a rich document, which for such an item took 4 ms of every
/// click on it; the node's tooltip tells the path too. Measuring itself covers the label as the side
/// panel shows it: plain text, enabled, left to right, aligned left, without frame or indent, and a
/// text without tabs, soft hyphens or control characters. Anything else is left to QLabel.
class PathLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit PathLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// Whether the label's setup and text are those it measures and paints itself.
    bool measuresItself() const;

    /// A piece of the text no line breaks within: a word and the spaces after it.
    struct Word
    {
        int start;
        int length;
        /// Without the spaces after it (and without its overhang), and with them.
        qreal width;
        qreal advance;
        /// How far its last glyph reaches past its advance: the line it ends must have room for that too.
        qreal overhang;
    };
    /// One line of the text laid out: its words, and its width without the spaces at its end (with the
    /// overhang of its last glyph).
    struct Line
    {
        int firstWord;
        int wordCount;
        qreal width;
    };

    /// Measures the words of the text when the text or the font changed since they were measured.
    void measureWords() const;
    /// The lines of the text at most `width` wide, as a label breaks them: each word goes on the line
    /// before it while the line, without its last spaces, still fits; a word wider than the line
    /// has a line of its own.
    std::vector<Line> lines(qreal width) const;
    /// The height of `count` lines, each on a whole pixel.
    qreal linesHeight(qsizetype count) const;
    /// The size of the label that shows its text at most `width` wide (-1: the width it prefers),
    /// worked out as a QLabel works it out.
    QSize sizeForWidth(int width) const;
    /// The room the text leaves for margins, across and down.
    QSize extraRoom() const;

    mutable QString m_measuredText;
    mutable QFont m_measuredFont;
    mutable bool m_measured = false;
    mutable bool m_special = false;
    mutable std::vector<Word> m_words;
    mutable qreal m_lineHeight = 0;
    mutable qreal m_leading = 0;
};
