#include "textoutput.h"

#include <QByteArray>
#include <QFileDevice>
#include <QIODevice>

#include <algorithm>

namespace {

/// Characters converted at a time: small enough to cost little memory, large enough that the
/// conversions do not dominate.
constexpr qsizetype pieceLength = 16384;

} // namespace

TextOutput::TextOutput(QIODevice& device)
    : m_device(device)
{
}

void TextOutput::write(QStringView text)
{
    while (!text.isEmpty() && !m_failed) {
        qsizetype length = std::min(pieceLength, text.size());
        // A character beyond 16 bits is never cut in two.
        if (length < text.size() && text.at(length - 1).isHighSurrogate()) {
            --length;
        }
        const QByteArray bytes = text.first(length).toUtf8();
        writeBytes(bytes.constData(), bytes.size());
        text = text.sliced(length);
    }
}

void TextOutput::write(QLatin1String text)
{
    // The program's own texts are ASCII, which is UTF-8 as it stands.
    writeBytes(text.data(), text.size());
}

bool TextOutput::finish()
{
    if (!m_failed) {
        if (auto* file = qobject_cast<QFileDevice*>(&m_device); file != nullptr && !file->flush()) {
            m_failed = true;
            m_error = file->errorString();
        }
    }
    return !m_failed;
}

void TextOutput::writeBytes(const char* data, qsizetype size)
{
    if (m_failed || size == 0) {
        return;
    }
    if (m_device.write(data, size) != size) {
        m_failed = true;
        m_error = m_device.errorString();
    }
}
