#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The small text files beside the program (Recent.ini, Config.ini, the language files) are
/// line-oriented Windows-1252 text with CR LF line ends. Reading also accepts LF or CR alone, so a
/// file edited by hand on another system still reads line by line.
class AnsiTextFile final
{
public:
    /// The lines of the file without their line ends, or nothing when the file cannot be read.
    static std::optional<QStringList> readLines(const QString& path);

    /// The lines of Windows-1252 text; a line end at the very end does not add an empty line.
    static QStringList splitLines(QByteArrayView bytes);

    /// Replaces the file with `lines`, each ended by CR LF. False when the file could not be
    /// written; the old file is then left as it was.
    static bool writeLines(const QString& path, const QStringList& lines);
};
