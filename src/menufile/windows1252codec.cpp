#include "windows1252codec.h"

#include <array>

namespace {

// Characters of bytes 0x80..0x9F; the other bytes are the Latin-1 characters of the same number.
constexpr std::array<char16_t, 32> highControlRange {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char encodeCharacter(char16_t character)
{
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    for (size_t i = 0; i < highControlRange.size(); ++i) {
        if (highControlRange[i] == character) {
            return static_cast<char>(0x80 + i);
        }
    }
    return '?';
}

} // namespace

bool Windows1252Codec::canEncode(QChar character)
{
    const char16_t code = character.unicode();
    return code == u'?' || encodeCharacter(code) != '?';
}

QString Windows1252Codec::decode(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        *out++ = QChar(value >= 0x80 && value < 0xA0 ? highControlRange[value - 0x80] : char16_t(value));
    }
    return text;
}

QByteArray Windows1252Codec::encode(QStringView text)
{
    QByteArray bytes;
    encodeAppend(text, bytes);
    return bytes;
}

void Windows1252Codec::encodeAppend(QStringView text, QByteArray& out)
{
    const qsizetype start = out.size();
    out.resize(start + text.size());
    encodeInto(text, out.data() + start);
}

char* Windows1252Codec::encodeInto(QStringView text, char* out)
{
    for (const QChar character : text) {
        *out++ = encodeCharacter(character.unicode());
    }
    return out;
}
