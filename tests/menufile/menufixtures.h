#pragma once

#include "menufile/windows1252codec.h"

#include <QByteArray>
#include <QStringList>

/// Builds the bytes of a menu file from its lines: Windows-1252, each line ended by `lineEnd`.
inline QByteArray menuFileFromLines(const QStringList& lines, const char* lineEnd = "\r\n")
{
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += Windows1252Codec::encode(line);
        bytes += lineEnd;
    }
    return bytes;
}

/// Three middle-dot markers per level.
inline QString markers(int count)
{
    return QString(count, QChar(0xB7));
}
