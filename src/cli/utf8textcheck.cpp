#include "utf8textcheck.h"

#include "menufile/windows1252codec.h"

namespace {

/// The length of the well-formed UTF-8 sequence that starts at `position`, or 0 when there is none
/// there (a stray continuation byte, a cut sequence, an overlong form, a surrogate, a value beyond
/// U+10FFFF).
qsizetype sequenceLength(QByteArrayView bytes, qsizetype position)
{
    const auto byteAt = [&bytes](qsizetype at) { return static_cast<unsigned char>(bytes[at]); };
    const unsigned char lead = byteAt(position);
    qsizetype length = 0;
    char32_t minimum = 0;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        minimum = 0x80;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        minimum = 0x800;
        value = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        minimum = 0x10000;
        value = lead & 0x07;
    } else {
        return 0;
    }
    if (position + length > bytes.size()) {
        return 0;
    }
    for (qsizetype i = 1; i < length; ++i) {
        const unsigned char next = byteAt(position + i);
        if ((next & 0xC0) != 0x80) {
            return 0;
        }
        value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        return 0;
    }
    return length;
}

} // namespace

QString utf8TextWarning(QByteArrayView bytes)
{
    qsizetype firstStart = -1;
    qsizetype firstLength = 0;
    qsizetype position = 0;
    while (position < bytes.size()) {
        if (static_cast<unsigned char>(bytes[position]) < 0x80) {
            ++position;
            continue;
        }
        const qsizetype length = sequenceLength(bytes, position);
        if (length == 0) {
            return QString();
        }
        if (firstStart < 0) {
            firstStart = position;
            firstLength = length;
        }
        position += length;
    }
    if (firstStart < 0) {
        return QString();
    }
    const QByteArrayView sequence = bytes.sliced(firstStart, firstLength);
    return QStringLiteral("the file looks like UTF-8 text, but menu files are Windows-1252: \"%1\" reads as \"%2\"")
        .arg(QString::fromUtf8(sequence), Windows1252Codec::decode(sequence));
}
