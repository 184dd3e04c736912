#include "textmatcher.h"

#include <QChar>

namespace {

constexpr char16_t kKelvinSign = 0x212A;
constexpr char16_t kLongS = 0x017F;

/// The case folding of the unit at `at` of a text that starts at `start`, as QStringMatcher folds
/// it: a low surrogate after a high one folds as the character the two make.
inline char32_t foldedAt(const char16_t* at, const char16_t* start)
{
    const char16_t unit = *at;
    if (unit < 0x80) {
        return unit >= u'A' && unit <= u'Z' ? char32_t(unit + (u'a' - u'A')) : char32_t(unit);
    }
    char32_t character = unit;
    if (QChar::isLowSurrogate(unit) && at > start && QChar::isHighSurrogate(at[-1])) {
        character = QChar::surrogateToUcs4(at[-1], unit);
    }
    return QChar::toCaseFolded(character);
}

struct AsIs
{
    char32_t operator()(const char16_t* at, const char16_t*) const { return *at; }
};

/// The folding of a unit for a pattern that folds to plain ASCII: such a pattern can only match
/// units that fold into ASCII, which are the ASCII ones, the Kelvin sign and the long s; any other
/// unit stands for a character the pattern lacks.
struct AsciiFolded
{
    char32_t operator()(const char16_t* at, const char16_t*) const
    {
        const char16_t unit = *at;
        if (unit < 0x80) {
            return unit >= u'A' && unit <= u'Z' ? char32_t(unit + (u'a' - u'A')) : char32_t(unit);
        }
        if (unit == kKelvinSign) {
            return U'k';
        }
        return unit == kLongS ? U's' : char32_t(0xFFFF);
    }
};

struct Folded
{
    char32_t operator()(const char16_t* at, const char16_t* start) const { return foldedAt(at, start); }
};

/// Horspool's search: the pattern slides along the text, compared from its end, and moves on by
/// the distance from its end to the last earlier unit that could stand under its last unit.
template <typename Unit>
qsizetype slide(const char16_t* text, qsizetype size, const std::vector<char32_t>& pattern,
                const std::array<qsizetype, 256>& shift, Unit unitAt)
{
    const qsizetype last = qsizetype(pattern.size()) - 1;
    const char32_t lastUnit = pattern[std::size_t(last)];
    for (qsizetype end = last; end < size;) {
        const char32_t unit = unitAt(text + end, text);
        if (unit == lastUnit) {
            const qsizetype begin = end - last;
            qsizetype k = last - 1;
            while (k >= 0 && unitAt(text + begin + k, text) == pattern[std::size_t(k)]) {
                --k;
            }
            if (k < 0) {
                return begin;
            }
        }
        end += shift[unit & 0xff];
    }
    return -1;
}

} // namespace

TextMatcher::TextMatcher(const QString& pattern, Qt::CaseSensitivity sensitivity)
    : m_caseSensitive(sensitivity == Qt::CaseSensitive)
{
    const QStringView view(pattern);
    const char16_t* units = view.utf16();
    const qsizetype size = view.size();
    m_units.reserve(std::size_t(size));
    for (qsizetype i = 0; i < size; ++i) {
        m_units.push_back(m_caseSensitive ? char32_t(units[i]) : foldedAt(units + i, units));
    }
    m_asciiFolded = !m_caseSensitive;
    for (const char32_t unit : m_units) {
        m_asciiFolded = m_asciiFolded && unit < 0x80;
    }
    m_shift.fill(size);
    for (qsizetype i = 0; i + 1 < size; ++i) {
        m_shift[m_units[std::size_t(i)] & 0xff] = size - 1 - i;
    }
}

qsizetype TextMatcher::indexIn(QStringView text) const
{
    const qsizetype length = qsizetype(m_units.size());
    if (length == 0) {
        return 0;
    }
    const qsizetype size = text.size();
    if (size < length) {
        return -1;
    }
    const char16_t* units = text.utf16();
    if (length == 1) {
        return indexOfOne(units, size);
    }
    if (m_caseSensitive) {
        return slide(units, size, m_units, m_shift, AsIs());
    }
    return m_asciiFolded ? slide(units, size, m_units, m_shift, AsciiFolded())
                         : slide(units, size, m_units, m_shift, Folded());
}

qsizetype TextMatcher::indexOfOne(const char16_t* text, qsizetype size) const
{
    const char32_t wanted = m_units.front();
    if (m_caseSensitive) {
        return QStringView(text, size).indexOf(QChar(char16_t(wanted)));
    }
    if (m_asciiFolded) {
        const AsciiFolded folded;
        for (qsizetype i = 0; i < size; ++i) {
            if (folded(text + i, text) == wanted) {
                return i;
            }
        }
        return -1;
    }
    for (qsizetype i = 0; i < size; ++i) {
        if (foldedAt(text + i, text) == wanted) {
            return i;
        }
    }
    return -1;
}
