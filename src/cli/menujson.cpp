#include "menujson.h"

#include "model/menudocument.h"
#include "textoutput.h"

#include <QBuffer>

#include <algorithm>

namespace {

/// Characters escaped at a time, so that a text of any length is written in small pieces.
constexpr qsizetype escapePieceLength = 8192;

void appendEscaped(QChar character, QString& literal)
{
    const char16_t code = character.unicode();
    switch (code) {
    case u'"':
        literal += QStringLiteral("\\\"");
        break;
    case u'\\':
        literal += QStringLiteral("\\\\");
        break;
    case u'\b':
        literal += QStringLiteral("\\b");
        break;
    case u'\f':
        literal += QStringLiteral("\\f");
        break;
    case u'\n':
        literal += QStringLiteral("\\n");
        break;
    case u'\r':
        literal += QStringLiteral("\\r");
        break;
    case u'\t':
        literal += QStringLiteral("\\t");
        break;
    default:
        // Control characters must be escaped; DEL and the C1 range (the five bytes Windows-1252
        // leaves undefined come back as such) are escaped too, so a terminal never sees them.
        if (code < 0x20 || (code >= 0x7F && code <= 0x9F)) {
            literal += QStringLiteral("\\u%1").arg(int(code), 4, 16, QLatin1Char('0'));
        } else {
            literal += character;
        }
        break;
    }
}

void writeStringLiteral(QStringView text, TextOutput& output)
{
    output.write(QLatin1Char('"'));
    QString piece;
    while (!text.isEmpty() && !output.failed()) {
        QStringView part = text.first(std::min(escapePieceLength, text.size()));
        if (part.size() < text.size() && part.back().isHighSurrogate()) {
            part.chop(1); // a character beyond 16 bits is never cut in two
        }
        piece.clear();
        for (const QChar character : part) {
            appendEscaped(character, piece);
        }
        output.write(piece);
        text = text.sliced(part.size());
    }
    output.write(QLatin1Char('"'));
}

void writeNumberField(QLatin1String name, qint64 value, TextOutput& output)
{
    output.write(name);
    output.write(QString::number(value));
}

void writeItem(const MenuItem& item, TextOutput& output)
{
    output.write(QLatin1String("{\"key\": "));
    writeStringLiteral(item.key, output);
    output.write(QLatin1String(", \"caption\": "));
    writeStringLiteral(item.caption, output);
    writeNumberField(QLatin1String(", \"level\": "), item.level, output);
    writeNumberField(QLatin1String(", \"parent\": "), item.parent, output);
    writeNumberField(QLatin1String(", \"childCount\": "), item.childCount, output);
    writeNumberField(QLatin1String(", \"siblingOrder\": "), item.siblingOrder, output);
    output.write(QLatin1String(", \"copyKey\": "));
    writeStringLiteral(item.copyKey, output);
    output.write(QLatin1String(", \"copiesCommands\": "));
    output.write(item.copiesCommands ? QLatin1String("true") : QLatin1String("false"));
    output.write(QLatin1String(", \"commands\": ["));
    for (qsizetype slot = 1; slot < item.commands.size() && !output.failed(); ++slot) {
        const Command& command = item.commands.at(slot);
        if (slot > 1) {
            output.write(QLatin1String(", "));
        }
        output.write(QLatin1String("{\"extension\": "));
        writeStringLiteral(command.extension, output);
        output.write(QLatin1String(", \"command\": "));
        writeStringLiteral(command.command, output);
        output.write(QLatin1Char('}'));
    }
    output.write(QLatin1String("]}"));
}

} // namespace

QString jsonStringLiteral(QStringView text)
{
    QString literal;
    literal.reserve(text.size() + 2);
    literal += QLatin1Char('"');
    for (const QChar character : text) {
        appendEscaped(character, literal);
    }
    literal += QLatin1Char('"');
    return literal;
}

void writeMenuDocumentJson(const MenuDocument& document, TextOutput& output)
{
    writeNumberField(QLatin1String("{\n  \"lastIndex\": "), document.lastIndex, output);
    output.write(QLatin1String(",\n  \"items\": ["));
    for (qsizetype i = 0; i < document.items.size() && !output.failed(); ++i) {
        output.write(i == 0 ? QLatin1String("\n    ") : QLatin1String(",\n    "));
        writeItem(document.items.at(i), output);
    }
    output.write(document.items.isEmpty() ? QLatin1String("]\n}\n") : QLatin1String("\n  ]\n}\n"));
}

QByteArray menuDocumentJson(const MenuDocument& document)
{
    QByteArray json;
    QBuffer buffer(&json);
    buffer.open(QIODevice::WriteOnly);
    TextOutput output(buffer);
    writeMenuDocumentJson(document, output);
    return json;
}
