#include "menufile/contenthash.h"
#include "menufile/menulinecursor.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

namespace {

/// Bytes rich in line ends of every kind, CR LF pairs among them, and in runs without any.
QByteArray randomText(QRandomGenerator& random, int size)
{
    static const char alphabet[] = { '\r', '\n', '\r', '\n', 'a', 'b', '[', char(0xB7), '\0', ' ' };
    QByteArray bytes;
    while (bytes.size() < size) {
        if (random.bounded(8) == 0) {
            bytes.append(QByteArray(random.bounded(1, 40), 'x'));
        } else if (random.bounded(4) == 0) {
            bytes.append("\r\n");
        } else {
            bytes.append(alphabet[random.bounded(int(sizeof(alphabet)))]);
        }
    }
    return bytes.left(size);
}

struct Line
{
    QByteArray text;
    int number;
    qsizetype bound;
    friend bool operator==(const Line& left, const Line& right)
    {
        return left.text == right.text && left.number == right.number;
    }
};

/// Every line `cursor` hands out, with its number and the bound on the lines from it on.
QList<Line> allLines(MenuLineCursor& cursor)
{
    QList<Line> lines;
    QByteArrayView line;
    while (cursor.next(line)) {
        lines.append(Line { line.toByteArray(), cursor.lineNumber(), cursor.lineBound() });
    }
    return lines;
}

/// A device that reads the bytes given and then fails.
class FailingDevice final : public QIODevice
{
public:
    explicit FailingDevice(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }

protected:
    qint64 readData(char* data, qint64 maximum) override
    {
        if (m_at >= m_bytes.size()) {
            return -1;
        }
        const qint64 count = std::min<qint64>(maximum, m_bytes.size() - m_at);
        std::copy_n(m_bytes.constData() + m_at, count, data);
        m_at += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_at = 0;
};

} // namespace

/// The lines of a menu file, handed out from bytes in memory or read from the file a piece at a time.
class TestMenuLineCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineEndsOfEveryKindSplitTheLines()
    {
        const QByteArray bytes("one\r\ntwo\nthree\rfour\r\rsix\n\r\nlast");
        MenuLineCursor cursor(bytes);
        const QList<Line> lines = allLines(cursor);
        QStringList texts;
        for (const Line& line : lines) {
            texts.append(QString::fromLatin1(line.text));
        }
        QCOMPARE(
            texts,
            QStringList({ QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"), QStringLiteral("four"),
                          QString(), QStringLiteral("six"), QString(), QStringLiteral("last") }));
        QCOMPARE(lines.last().number, 8);
        // An end at the very end of the file starts no new line.
        MenuLineCursor ended(QByteArrayView("a\r\n"));
        QCOMPARE(allLines(ended).size(), 1);
        MenuLineCursor empty(QByteArrayView(""));
        QCOMPARE(allLines(empty).size(), 0);
    }

    void piecesOfAnySizeHandOutTheLinesOfTheBytesInMemory()
    {
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            const QByteArray bytes = randomText(random, random.bounded(seed % 10 == 0 ? 3000 : 120));
            MenuLineCursor whole(bytes);
            const QList<Line> expected = allLines(whole);

            QBuffer buffer;
            buffer.setData(bytes);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            ContentHash hash;
            const qsizetype pieceSize = seed % 3 == 0 ? random.bounded(1, 5) : random.bounded(1, 200);
            MenuLineCursor read(buffer, bytes.size(), &hash, pieceSize);
            const QList<Line> lines = allLines(read);
            QVERIFY2(lines == expected, qPrintable(QStringLiteral("seed %1, pieces of %2").arg(seed).arg(pieceSize)));
            for (qsizetype i = 0; i < lines.size(); ++i) {
                // Never fewer than the lines that really follow, and never more than the bytes left.
                QVERIFY(lines.at(i).bound >= lines.size() - i - 1);
                QVERIFY(lines.at(i).bound <= bytes.size());
            }
            QCOMPARE(read.failure(), MenuLineCursor::Failure::None);
            QCOMPARE(read.bytesRead(), qint64(bytes.size()));
            QCOMPARE(hash.result(), ContentHash::of(bytes));
        }
    }

    void readingToTheEndHashesWhatNoLineWasAskedFor()
    {
        QRandomGenerator random(9);
        const QByteArray bytes = randomText(random, 5000);
        QBuffer buffer;
        buffer.setData(bytes);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        ContentHash hash;
        MenuLineCursor cursor(buffer, bytes.size(), &hash, 64);
        QByteArrayView line;
        for (int i = 0; i < 5; ++i) {
            QVERIFY(cursor.next(line));
        }
        cursor.readToEnd();
        QVERIFY(!cursor.next(line));
        QCOMPARE(cursor.bytesRead(), qint64(bytes.size()));
        QCOMPARE(hash.result(), ContentHash::of(bytes));
        QCOMPARE(cursor.failure(), MenuLineCursor::Failure::None);
    }

    void aFileBeyondTheLimitStopsTheLines()
    {
        const QByteArray bytes = QByteArray("line\r\n").repeated(100);
        QBuffer buffer;
        buffer.setData(bytes);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        MenuLineCursor cursor(buffer, bytes.size() - 1, nullptr, 50);
        const QList<Line> lines = allLines(cursor);
        QCOMPARE(cursor.failure(), MenuLineCursor::Failure::TooLarge);
        QVERIFY(lines.size() < 100);

        // Exactly at the limit is not beyond it.
        QBuffer exact;
        exact.setData(bytes);
        QVERIFY(exact.open(QIODevice::ReadOnly));
        MenuLineCursor atLimit(exact, bytes.size(), nullptr, 50);
        QCOMPARE(allLines(atLimit).size(), 100);
        QCOMPARE(atLimit.failure(), MenuLineCursor::Failure::None);
    }

    void aFailingReadStopsTheLinesAndSaysSo()
    {
        FailingDevice device(QByteArray("one\r\ntwo\r\nthree"));
        QVERIFY(device.open(QIODevice::ReadOnly));
        MenuLineCursor cursor(device, 1000, nullptr, 4);
        const QList<Line> lines = allLines(cursor);
        QCOMPARE(cursor.failure(), MenuLineCursor::Failure::Unreadable);
        // The last line was still being read when reading failed: it is not handed out cut short.
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(1).text, QByteArray("two"));
    }

    void aCrEndingOnePieceJoinsTheLfStartingTheNext()
    {
        const QByteArray bytes("ab\r\ncd\r\n");
        for (qsizetype pieceSize = 1; pieceSize <= 8; ++pieceSize) {
            QBuffer buffer;
            buffer.setData(bytes);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            MenuLineCursor cursor(buffer, bytes.size(), nullptr, pieceSize);
            const QList<Line> lines = allLines(cursor);
            QCOMPARE(lines.size(), 2);
            QCOMPARE(lines.at(1).text, QByteArray("cd"));
        }
    }
};

QTEST_GUILESS_MAIN(TestMenuLineCursor)
#include "test_menulinecursor.moc"
