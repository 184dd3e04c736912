#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>

class ContentHash;
class QIODevice;

/// Hands out the lines of a menu file one by one. A line ends at CR LF, LF or CR; a last line without
/// an end still counts, an end at the very end of the file starts no new line.
///
/// The bytes are either all in memory already, or read from the open file a piece at a time as the
/// lines are asked for: a 32,767-item menu can be 16 MB, and holding all of it beside the document
/// read from it would add those 16 MB to the highest memory the editor ever takes. A line handed out
/// stays valid until the next call of next() or readToEnd().
class MenuLineCursor final
{
public:
    /// Why reading from the file stopped before its end.
    enum class Failure {
        None,
        /// The system could not read on.
        Unreadable,
        /// The file holds more bytes than the limit: it grew since its length was looked at.
        TooLarge,
    };

    static constexpr qsizetype defaultPieceSize = 256 * 1024;

    /// The lines of `bytes`, which must outlive the cursor.
    explicit MenuLineCursor(QByteArrayView bytes);
    /// The lines of `device` from where it stands, read `pieceSize` bytes at a time. Reading stops with
    /// Failure::TooLarge as soon as more than `limit` bytes came. Every byte read goes to `hash` when
    /// one is given, in order.
    MenuLineCursor(QIODevice& device, qint64 limit, ContentHash* hash, qsizetype pieceSize = defaultPieceSize);

    /// The next line, or false at the end of the file (or where reading failed).
    bool next(QByteArrayView& line);
    /// The number of the line last handed out, from 1.
    int lineNumber() const { return m_lineNumber; }
    /// At least as many as the lines after the one last handed out: the CRs and LFs from its start on,
    /// counting every byte not read yet as one.
    qsizetype lineBound() const;

    /// Reads the rest of the file without handing out its lines, so that its length and hash cover it
    /// all.
    void readToEnd();
    /// The bytes read from the file so far (of bytes in memory: all of them).
    qint64 bytesRead() const { return m_bytesRead; }
    Failure failure() const { return m_failure; }

private:
    /// Reads the next piece behind what is buffered, first dropping the lines handed out already.
    /// False when the file has no more (or reading failed).
    bool readMore();

    QIODevice* m_device = nullptr;
    ContentHash* m_hash = nullptr;
    qint64 m_limit = 0;
    qsizetype m_pieceSize = defaultPieceSize;
    bool m_deviceDone = true;
    Failure m_failure = Failure::None;
    QByteArray m_buffer;

    const char* m_data = nullptr;
    qsizetype m_size = 0;
    qsizetype m_position = 0;
    qsizetype m_lineStart = 0;
    qint64 m_bytesRead = 0;
    int m_lineNumber = 0;
};
