#pragma once

#include <QChar>
#include <QString>

/// What a menu entry shows of its caption, and which access key the caption gives it.
namespace MenuTexts {

/// The text shown: every single "&" (an access-key mark) left out, every "&&" shown as one "&".
inline QString visible(const QString& caption)
{
    QString shown;
    for (qsizetype position = 0; position < caption.size(); ++position) {
        if (caption.at(position) == QLatin1Char('&')) {
            ++position;
            if (position == caption.size()) {
                break;
            }
        }
        shown += caption.at(position);
    }
    return shown;
}

/// The access key of `caption` in lower case; a null character when it has none.
inline QChar accessKey(const QString& caption)
{
    for (qsizetype position = 0; position + 1 < caption.size(); ++position) {
        if (caption.at(position) == QLatin1Char('&')) {
            if (caption.at(position + 1) != QLatin1Char('&')) {
                return caption.at(position + 1).toLower();
            }
            ++position;
        }
    }
    return QChar();
}

} // namespace MenuTexts
