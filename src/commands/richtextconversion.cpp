#include "richtextconversion.h"

#include "menufile/windows1252codec.h"

#include <QList>
#include <QStringList>

namespace {

/// An entry of the colour table; the first one, empty, is the automatic colour.
struct RgbColour
{
    int red = 0;
    int green = 0;
    int blue = 0;
    bool automatic = true;

    QString name() const
    {
        return QStringLiteral("#%1%2%3")
            .arg(red, 2, 16, QLatin1Char('0'))
            .arg(green, 2, 16, QLatin1Char('0'))
            .arg(blue, 2, 16, QLatin1Char('0'));
    }
};

struct Style
{
    int colour = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;

    friend bool operator==(const Style& left, const Style& right)
    {
        return left.colour == right.colour && left.bold == right.bold && left.italic == right.italic
            && left.underline == right.underline;
    }
    friend bool operator!=(const Style& left, const Style& right) { return !(left == right); }
};

/// Reads an RTF document character by character into runs of styled text.
class RtfReader
{
public:
    explicit RtfReader(const QString& rtf)
        : m_rtf(rtf)
    {
    }

    QString html()
    {
        struct Group
        {
            Style style;
            bool skipped;
        };
        QList<Group> groups { { Style(), false } };
        qsizetype i = 0;
        while (i < m_rtf.size()) {
            const QChar c = m_rtf.at(i);
            if (c == QLatin1Char('{')) {
                groups.append(groups.last());
                ++i;
                continue;
            }
            if (c == QLatin1Char('}')) {
                if (groups.size() > 1) {
                    groups.removeLast();
                }
                ++i;
                continue;
            }
            Group& group = groups.last();
            if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
                ++i; // line ends of the source are no text
                continue;
            }
            if (c != QLatin1Char('\\')) {
                if (!group.skipped) {
                    append(QString(c), group.style);
                }
                ++i;
                continue;
            }
            // A control symbol or a control word.
            ++i;
            if (i >= m_rtf.size()) {
                break;
            }
            const QChar symbol = m_rtf.at(i);
            if (symbol == QLatin1Char('\\') || symbol == QLatin1Char('{') || symbol == QLatin1Char('}')) {
                if (!group.skipped) {
                    append(QString(symbol), group.style);
                }
                ++i;
                continue;
            }
            if (symbol == QLatin1Char('\'')) {
                const char byte = char(m_rtf.mid(i + 1, 2).toUInt(nullptr, 16));
                if (!group.skipped) {
                    // The byte is a character of the document's code page, not a Unicode number:
                    // \'80 is the euro sign, \'93 and \'94 are curly quotes.
                    append(Windows1252Codec::decode(QByteArrayView(&byte, 1)), group.style);
                }
                i += 3;
                continue;
            }
            if (symbol == QLatin1Char('*')) {
                group.skipped = true; // an ignorable destination
                ++i;
                continue;
            }
            if (!symbol.isLetter()) {
                ++i;
                continue;
            }
            qsizetype end = i;
            while (end < m_rtf.size() && m_rtf.at(end).isLetter()) {
                ++end;
            }
            const QString word = m_rtf.mid(i, end - i);
            qsizetype digits = end;
            if (digits < m_rtf.size() && m_rtf.at(digits) == QLatin1Char('-')) {
                ++digits;
            }
            while (digits < m_rtf.size() && m_rtf.at(digits).isDigit()) {
                ++digits;
            }
            const bool hasParameter = digits > end;
            const int parameter = hasParameter ? m_rtf.mid(end, digits - end).toInt() : 0;
            i = digits;
            if (i < m_rtf.size() && m_rtf.at(i) == QLatin1Char(' ')) {
                ++i; // the blank that ends a control word belongs to it
            }
            controlWord(word, hasParameter, parameter, group.style, group.skipped, i);
        }
        closeSpan();
        return m_html;
    }

private:
    void controlWord(const QString& word, bool hasParameter, int parameter, Style& style, bool& skipped,
                     qsizetype& position)
    {
        if (word == QLatin1String("fonttbl")) {
            skipped = true;
        } else if (word == QLatin1String("colortbl")) {
            readColourTable(position);
        } else if (word == QLatin1String("par")) {
            if (!skipped) {
                closeSpan();
                m_html += QStringLiteral("<br>");
            }
        } else if (word == QLatin1String("cf")) {
            style.colour = parameter;
        } else if (word == QLatin1String("b")) {
            style.bold = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("i")) {
            style.italic = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("ul")) {
            style.underline = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("ulnone")) {
            style.underline = false;
        } else if (word == QLatin1String("plain")) {
            style = Style();
        }
    }

    /// The colour table: entries ";" separated, each \redN\greenN\blueN, the first one usually empty
    /// (the automatic colour). Reads up to the table's closing brace, which is left for the caller.
    void readColourTable(qsizetype& position)
    {
        m_colours.clear();
        RgbColour current;
        while (position < m_rtf.size() && m_rtf.at(position) != QLatin1Char('}')) {
            const QChar c = m_rtf.at(position);
            if (c == QLatin1Char(';')) {
                m_colours.append(current);
                current = RgbColour();
                ++position;
                continue;
            }
            if (c == QLatin1Char('\\')) {
                qsizetype end = position + 1;
                while (end < m_rtf.size() && m_rtf.at(end).isLetter()) {
                    ++end;
                }
                const QString word = m_rtf.mid(position + 1, end - position - 1);
                qsizetype digits = end;
                while (digits < m_rtf.size() && m_rtf.at(digits).isDigit()) {
                    ++digits;
                }
                const int value = m_rtf.mid(end, digits - end).toInt();
                if (word == QLatin1String("red")) {
                    current.red = value;
                    current.automatic = false;
                } else if (word == QLatin1String("green")) {
                    current.green = value;
                    current.automatic = false;
                } else if (word == QLatin1String("blue")) {
                    current.blue = value;
                    current.automatic = false;
                }
                position = digits;
                continue;
            }
            ++position;
        }
    }

    void append(const QString& text, const Style& style)
    {
        if (!m_open || style != m_style) {
            closeSpan();
            QStringList css;
            if (style.colour > 0 && style.colour < m_colours.size() && !m_colours.at(style.colour).automatic) {
                css.append(QStringLiteral("color:%1").arg(m_colours.at(style.colour).name()));
            }
            if (style.bold) {
                css.append(QStringLiteral("font-weight:bold"));
            }
            if (style.italic) {
                css.append(QStringLiteral("font-style:italic"));
            }
            if (style.underline) {
                css.append(QStringLiteral("text-decoration:underline"));
            }
            m_html += css.isEmpty() ? QStringLiteral("<span>")
                                    : QStringLiteral("<span style=\"%1\">").arg(css.join(QLatin1Char(';')));
            m_open = true;
            m_style = style;
        }
        m_html += text.toHtmlEscaped();
    }

    void closeSpan()
    {
        if (m_open) {
            m_html += QStringLiteral("</span>");
            m_open = false;
        }
    }

    const QString& m_rtf;
    QString m_html;
    QList<RgbColour> m_colours { RgbColour() };
    bool m_open = false;
    Style m_style;
};

} // namespace

QString rtfToHtml(const QString& rtf)
{
    RtfReader reader(rtf);
    return reader.html();
}
