#include "accesskeys.h"

namespace {

/// `text` with every "&" doubled and the access-key mark before position `key` (none for -1).
QString markedAt(const QString& text, qsizetype key)
{
    QString caption;
    caption.reserve(text.size() + 2);
    for (qsizetype position = 0; position < text.size(); ++position) {
        const QChar character = text.at(position);
        if (position == key) {
            caption += QLatin1Char('&');
        }
        caption += character;
        if (character == QLatin1Char('&')) {
            caption += QLatin1Char('&');
        }
    }
    return caption;
}

qsizetype fileNameStart(const QString& path)
{
    return qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1;
}

} // namespace

namespace AccessKeys {

QString onFirstLetter(const QString& text, qsizetype from)
{
    qsizetype key = -1;
    for (qsizetype position = qMax<qsizetype>(from, 0); position < text.size() && key < 0; ++position) {
        if (text.at(position).isLetterOrNumber()) {
            key = position;
        }
    }
    return markedAt(text, key);
}

QString onFileName(const QString& path)
{
    return onFirstLetter(path, fileNameStart(path));
}

QChar keyOf(const QString& caption)
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

QString onFreeLetter(const QString& text, QString& taken, qsizetype from)
{
    const auto isFree = [&text, &taken](qsizetype position) {
        const QChar character = text.at(position);
        return character.isLetterOrNumber() && !taken.contains(character.toLower());
    };
    qsizetype key = -1;
    for (qsizetype position = qMax<qsizetype>(from, 0); position < text.size() && key < 0; ++position) {
        key = isFree(position) ? position : -1;
    }
    for (qsizetype position = 0; position < qMin(from, text.size()) && key < 0; ++position) {
        key = isFree(position) ? position : -1;
    }
    if (key >= 0) {
        taken += text.at(key).toLower();
    }
    return markedAt(text, key);
}

QString onFreeFileNameLetter(const QString& path, QString& taken)
{
    return onFreeLetter(path, taken, fileNameStart(path));
}

} // namespace AccessKeys
