#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

/// Menu files, the recent list, the configuration and the language files are Windows-1252 text on
/// every platform. All conversions between their bytes and QString go through this one class, so
/// that é, € and “ ” come back byte for byte and the locale never takes part.
class Windows1252Codec final
{
public:
    /// Every byte maps to one character. The five bytes that Windows-1252 leaves undefined
    /// (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the control characters of the same number, so that
    /// they too survive a round trip.
    static QString decode(QByteArrayView bytes);

    /// Whether Windows-1252 holds `character`, so that it comes back unchanged from a file.
    static bool canEncode(QChar character);

    /// Characters that Windows-1252 cannot hold become "?".
    static QByteArray encode(QStringView text);
    /// Appends the encoding of `text` to `out`.
    static void encodeAppend(QStringView text, QByteArray& out);
    /// Writes the encoding of `text` (exactly text.size() bytes) at `out` and returns the end; the
    /// writer sizes a whole menu file first and then fills it this way.
    static char* encodeInto(QStringView text, char* out);
};
