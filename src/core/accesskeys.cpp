#include "accesskeys.h"

namespace AccessKeys {

QString onFirstLetter(const QString& text, qsizetype from)
{
    QString caption;
    caption.reserve(text.size() + 2);
    bool marked = false;
    for (qsizetype position = 0; position < text.size(); ++position) {
        const QChar character = text.at(position);
        if (!marked && position >= from && character.isLetterOrNumber()) {
            caption += QLatin1Char('&');
            marked = true;
        }
        caption += character;
        if (character == QLatin1Char('&')) {
            caption += QLatin1Char('&');
        }
    }
    return caption;
}

QString onFileName(const QString& path)
{
    const qsizetype lastSeparator = qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return onFirstLetter(path, lastSeparator + 1);
}

} // namespace AccessKeys
