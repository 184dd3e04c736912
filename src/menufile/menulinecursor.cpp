#include "menulinecursor.h"

#include "menufile/contenthash.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>

MenuLineCursor::MenuLineCursor(QByteArrayView bytes)
    : m_data(bytes.data())
    , m_size(bytes.size())
    , m_bytesRead(bytes.size())
{
}

MenuLineCursor::MenuLineCursor(QIODevice& device, qint64 limit, ContentHash* hash, qsizetype pieceSize)
    : m_device(&device)
    , m_hash(hash)
    , m_limit(limit)
    , m_pieceSize(std::max<qsizetype>(pieceSize, 1))
    , m_deviceDone(false)
{
}

bool MenuLineCursor::next(QByteArrayView& line)
{
    if (m_failure != Failure::None) {
        return false;
    }
    qsizetype end = m_position;
    for (;;) {
        while (end < m_size && m_data[end] != '\r' && m_data[end] != '\n') {
            ++end;
        }
        // A CR that ends what is buffered may be the first half of a CR LF.
        const bool lineEndKnown = end < m_size && (m_data[end] != '\r' || end + 1 < m_size);
        if (lineEndKnown) {
            break;
        }
        if (m_deviceDone) {
            break;
        }
        // Reading more drops the lines handed out already, whatever it finds.
        const qsizetype dropped = m_position;
        const bool readOn = readMore();
        end -= dropped;
        if (m_failure != Failure::None) {
            return false;
        }
        if (!readOn) {
            break;
        }
    }
    if (m_position >= m_size) {
        return false;
    }
    const qsizetype start = m_position;
    m_lineStart = start;
    m_position = end;
    if (m_position < m_size && m_data[m_position] == '\r') {
        ++m_position;
        if (m_position < m_size && m_data[m_position] == '\n') {
            ++m_position;
        }
    } else if (m_position < m_size) {
        ++m_position; // a lone LF
    }
    ++m_lineNumber;
    line = QByteArrayView(m_data + start, end - start);
    return true;
}

qsizetype MenuLineCursor::lineBound() const
{
    qsizetype lines
        = std::count_if(m_data + m_lineStart, m_data + m_size, [](char byte) { return byte == '\r' || byte == '\n'; });
    if (!m_deviceDone) {
        const qint64 unread = m_device->isSequential() ? m_limit - m_bytesRead : m_device->size() - m_device->pos();
        lines += qsizetype(std::max<qint64>(unread, 0));
    }
    return lines;
}

void MenuLineCursor::readToEnd()
{
    do {
        m_position = m_size;
        m_lineStart = m_size;
    } while (readMore());
}

bool MenuLineCursor::readMore()
{
    if (m_deviceDone) {
        return false;
    }
    const qsizetype kept = m_size - m_position;
    if (m_position > 0) {
        std::memmove(m_buffer.data(), m_buffer.constData() + m_position, size_t(kept));
    }
    m_buffer.resize(kept + m_pieceSize);
    const qint64 got = m_device->read(m_buffer.data() + kept, m_pieceSize);
    m_buffer.resize(kept + qsizetype(std::max<qint64>(got, 0)));
    m_data = m_buffer.constData();
    m_size = m_buffer.size();
    m_position = 0;
    m_lineStart = 0;
    if (got <= 0) {
        m_deviceDone = true;
        if (got < 0) {
            m_failure = Failure::Unreadable;
        }
        return false;
    }
    if (m_hash != nullptr) {
        m_hash->addData(QByteArrayView(m_buffer).sliced(kept));
    }
    m_bytesRead += got;
    if (m_bytesRead > m_limit) {
        m_deviceDone = true;
        m_failure = Failure::TooLarge;
        return false;
    }
    return true;
}
