#include "menujson.h"

#include "model/menudocument.h"

namespace {

QString jsonBool(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString commandsJson(const MenuItem& item)
{
    QString json = QStringLiteral("[");
    for (int slot = 1; slot < item.commands.size(); ++slot) {
        const Command& command = item.commands.at(slot);
        if (slot > 1) {
            json += QStringLiteral(", ");
        }
        json += QStringLiteral("{\"extension\": ") + jsonStringLiteral(command.extension)
            + QStringLiteral(", \"command\": ") + jsonStringLiteral(command.command) + QLatin1Char('}');
    }
    json += QLatin1Char(']');
    return json;
}

QString itemJson(const MenuItem& item)
{
    return QStringLiteral("{\"key\": ") + jsonStringLiteral(item.key) + QStringLiteral(", \"caption\": ")
        + jsonStringLiteral(item.caption) + QStringLiteral(", \"level\": ") + QString::number(item.level)
        + QStringLiteral(", \"parent\": ") + QString::number(item.parent) + QStringLiteral(", \"childCount\": ")
        + QString::number(item.childCount) + QStringLiteral(", \"siblingOrder\": ") + QString::number(item.siblingOrder)
        + QStringLiteral(", \"copyKey\": ") + jsonStringLiteral(item.copyKey) + QStringLiteral(", \"copiesCommands\": ")
        + jsonBool(item.copiesCommands) + QStringLiteral(", \"commands\": ") + commandsJson(item) + QLatin1Char('}');
}

} // namespace

QString jsonStringLiteral(QStringView text)
{
    QString literal;
    literal.reserve(text.size() + 2);
    literal += QLatin1Char('"');
    for (const QChar character : text) {
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
    literal += QLatin1Char('"');
    return literal;
}

QByteArray menuDocumentJson(const MenuDocument& document)
{
    QString json = QStringLiteral("{\n  \"lastIndex\": ") + QString::number(document.lastIndex)
        + QStringLiteral(",\n  \"items\": [");
    for (int i = 0; i < document.items.size(); ++i) {
        json += i == 0 ? QStringLiteral("\n    ") : QStringLiteral(",\n    ");
        json += itemJson(document.items.at(i));
    }
    json += document.items.isEmpty() ? QStringLiteral("]\n}\n") : QStringLiteral("\n  ]\n}\n");
    return json.toUtf8();
}
