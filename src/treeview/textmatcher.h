#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <vector>

/// Looks for one text in many others, as QStringMatcher does and with the same results, a text's
/// letter case ignored on request exactly as QStringMatcher ignores it (each UTF-16 unit compared
/// by its case folding, a low surrogate with the high one before it). It is quicker because it
/// folds plain ASCII characters without the Unicode tables, does not fold the text's other units at
/// all when the pattern is plain ASCII (only two of them fold into ASCII), skips ahead over the text
/// by a full table of distances (Horspool's rule) and scans for a single character without folding
/// the pattern again:
/// the find bar runs it over every caption and command text of a large menu on each keystroke.
class TextMatcher final
{
public:
    TextMatcher(const QString& pattern, Qt::CaseSensitivity sensitivity);

    /// The position of the first occurrence of the pattern in `text`, -1 when there is none; 0 for
    /// an empty pattern.
    qsizetype indexIn(QStringView text) const;
    bool isIn(QStringView text) const { return indexIn(text) >= 0; }

private:
    qsizetype indexOfOne(const char16_t* text, qsizetype size) const;

    bool m_caseSensitive = true;
    /// The case is ignored and the pattern folds to plain ASCII, as most searches do.
    bool m_asciiFolded = false;
    /// The pattern's units, case-folded when the case is ignored.
    std::vector<char32_t> m_units;
    /// How far the pattern may move on when the text unit under its last unit ends in a given byte.
    std::array<qsizetype, 256> m_shift {};
};
