#include "ansitextfile.h"

#include "menufile/windows1252codec.h"

#include <QFile>
#include <QSaveFile>

std::optional<QStringList> AnsiTextFile::readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    return splitLines(bytes);
}

QStringList AnsiTextFile::splitLines(QByteArrayView bytes)
{
    const QString text = Windows1252Codec::decode(bytes);
    QStringList lines;
    qsizetype lineStart = 0;
    qsizetype position = 0;
    while (position < text.size()) {
        const QChar character = text.at(position);
        if (character == u'\r' || character == u'\n') {
            lines.append(text.mid(lineStart, position - lineStart));
            // CR LF is one line end, not two.
            if (character == u'\r' && position + 1 < text.size() && text.at(position + 1) == u'\n') {
                ++position;
            }
            lineStart = position + 1;
        }
        ++position;
    }
    if (lineStart < text.size()) {
        lines.append(text.mid(lineStart));
    }
    return lines;
}

bool AnsiTextFile::writeLines(const QString& path, const QStringList& lines)
{
    QByteArray bytes;
    for (const QString& line : lines) {
        Windows1252Codec::encodeAppend(line, bytes);
        bytes.append("\r\n");
    }
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
