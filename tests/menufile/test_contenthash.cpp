#include "menufile/contenthash.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

namespace {

QByteArray randomBytes(QRandomGenerator& random, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = char(random.bounded(256));
    }
    return bytes;
}

/// The number of bits in which `left` and `right` differ.
int differingBits(const QByteArray& left, const QByteArray& right)
{
    int bits = 0;
    for (int i = 0; i < left.size(); ++i) {
        bits += qPopulationCount(quint8(left.at(i) ^ right.at(i)));
    }
    return bits;
}

} // namespace

/// The hash of a file's bytes in its identity: fixed once and for all, 128 bits, and every change of
/// the bytes, at any place and of any length, changes both its halves.
class TestContentHash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHashIsFixedOnceAndForAll()
    {
        // Identities kept beside recovery copies hold these hashes: a change of the hash's definition
        // would make every such file look changed to the next version of the editor.
        QCOMPARE(ContentHash::of(QByteArray()).toHex(), QByteArrayLiteral("621ecf9d5f45df3f1244ae0c9ba76757"));
        QCOMPARE(ContentHash::of(QByteArrayLiteral("abc")).toHex(),
                 QByteArrayLiteral("6a2ceaa8586228c6b2c692de7068117f"));
        QCOMPARE(ContentHash::of(QByteArray(100, 'x')).toHex(), QByteArrayLiteral("4c15299d60bd8db34cbc9c6c4c5be41a"));
    }

    void theBytesAreReadWhereverTheyLie()
    {
        QRandomGenerator random(11);
        const QByteArray bytes = randomBytes(random, 300);
        const QByteArray hash = ContentHash::of(QByteArrayView(bytes).sliced(3, 200));
        // The same bytes at another address, aligned otherwise.
        QByteArray moved(5, '-');
        moved += bytes.mid(3, 200);
        QCOMPARE(ContentHash::of(QByteArrayView(moved).sliced(5)), hash);
        QCOMPARE(ContentHash::of(bytes.mid(3, 200)), hash);
    }

    void everyLengthAndEveryPrefixHashesApart()
    {
        // The lengths around the stripes and words the hash takes at once, each a prefix of the next:
        // a text and the text with something added never share a hash.
        QRandomGenerator random(5);
        const QByteArray bytes = randomBytes(random, 200);
        QSet<QByteArray> hashes;
        for (int size = 0; size <= bytes.size(); ++size) {
            hashes.insert(ContentHash::of(QByteArrayView(bytes).first(size)));
        }
        QCOMPARE(hashes.size(), bytes.size() + 1);
        // Zero bytes of every length too: the length is part of the hash.
        QSet<QByteArray> zeros;
        for (int size = 0; size <= 100; ++size) {
            zeros.insert(ContentHash::of(QByteArray(size, '\0')));
        }
        QCOMPARE(zeros.size(), 101);
    }

    void oneChangedBitChangesBothHalvesThoroughly()
    {
        QRandomGenerator random(3);
        for (int round = 0; round < 3000; ++round) {
            const int size = 1 + random.bounded(round % 3 == 0 ? 4000 : 70);
            QByteArray bytes = randomBytes(random, size);
            const QByteArray before = ContentHash::of(bytes);
            QCOMPARE(before.size(), 16);
            const int at = random.bounded(size);
            bytes[at] = char(bytes.at(at) ^ char(1 << random.bounded(8)));
            const QByteArray after = ContentHash::of(bytes);
            // Each half changes in about half of its 64 bits; none keeps all, or nearly all, of them.
            QVERIFY2(differingBits(before.first(8), after.first(8)) >= 8, qPrintable(QString::number(round)));
            QVERIFY2(differingBits(before.mid(8), after.mid(8)) >= 8, qPrintable(QString::number(round)));
        }
    }

    void bytesTakenInPiecesHashAsTheirWhole()
    {
        QRandomGenerator random(11);
        for (int round = 0; round < 2000; ++round) {
            const QByteArray bytes = randomBytes(random, random.bounded(round % 5 == 0 ? 3000 : 150));
            ContentHash pieces;
            qsizetype at = 0;
            while (at < bytes.size()) {
                // Empty pieces, single bytes, and pieces around the 32 bytes a stripe takes.
                const qsizetype size
                    = std::min<qsizetype>(random.bounded(0, round % 2 == 0 ? 5 : 80), bytes.size() - at);
                pieces.addData(QByteArrayView(bytes).sliced(at, size));
                at += size;
            }
            QVERIFY2(pieces.result() == ContentHash::of(bytes), qPrintable(QString::number(round)));
        }
        QCOMPARE(ContentHash().result(), ContentHash::of(QByteArray()));
    }

    void swappedWordsHashApart()
    {
        // Two words of a stripe exchanged, or two stripes: the order of the bytes counts.
        QByteArray bytes(64, '\0');
        for (int i = 0; i < 64; ++i) {
            bytes[i] = char(i / 8 + 1);
        }
        QByteArray words = bytes;
        std::swap_ranges(words.begin(), words.begin() + 8, words.begin() + 8);
        QByteArray stripes = bytes;
        std::swap_ranges(stripes.begin(), stripes.begin() + 32, stripes.begin() + 32);
        QVERIFY(ContentHash::of(words) != ContentHash::of(bytes));
        QVERIFY(ContentHash::of(stripes) != ContentHash::of(bytes));
        QVERIFY(ContentHash::of(stripes) != ContentHash::of(words));
    }
};

QTEST_GUILESS_MAIN(TestContentHash)
#include "test_contenthash.moc"
