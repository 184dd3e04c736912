#include "menufixtures.h"

#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "model/menudocument.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Sets the file's modification time, as a touch or a program that keeps times would.
void setModified(const QString& path, const QDateTime& time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

/// Replaces the file as careful programs do: a new file renamed over the old one (a new inode).
void replaceAtomically(const QString& path, const QByteArray& bytes)
{
    const QString fresh = path + QStringLiteral(".new");
    writeFile(fresh, bytes);
    QVERIFY(QFile::remove(path));
    QVERIFY(QFile::rename(fresh, path));
}

/// The identity of the file at `path` as the reader takes it.
FileIdentity identityRead(const QString& path)
{
    QByteArray bytes;
    FileIdentity identity;
    if (!readMenuFileBytes(path, bytes, &identity).ok()) {
        return FileIdentity();
    }
    return identity;
}

QDateTime anHourAgo()
{
    return QDateTime::currentDateTimeUtc().addSecs(-3600);
}

} // namespace

class TestFileIdentity : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_path;
    QByteArray m_bytes;

private Q_SLOTS:
    void theHashOfTheSameBytesIsTheSameInEveryProcess()
    {
        // A fixed value: a hash seeded anew in each process would differ here from run to run, and an
        // identity kept beside a recovery copy would never match its file in the editor recovering it.
        QCOMPARE(FileIdentity::hashOf(QByteArrayLiteral("abc")).toHex(),
                 QByteArrayLiteral("6a2ceaa8586228c6b2c692de7068117f"));
        QCOMPARE(FileIdentity::hashOf(QByteArray()).size(), 16);
    }

    void init()
    {
        QVERIFY(m_folder.isValid());
        m_path = m_folder.filePath(QStringLiteral("menu.ini"));
        m_bytes = menuFileFromLines(exampleMenuLines());
        writeFile(m_path, m_bytes);
        // Written long ago, as most files that are opened were: its time can be trusted.
        setModified(m_path, anHourAgo());
    }

    void theReaderTakesTheIdentityOfTheBytesItRead()
    {
        QByteArray bytes;
        FileIdentity identity;
        QVERIFY(readMenuFileBytes(m_path, bytes, &identity).ok());
        QCOMPARE(bytes, m_bytes);
        QCOMPARE(identity.size(), m_bytes.size());
        QCOMPARE(identity.hash(), FileIdentity::hashOf(m_bytes));
#ifdef Q_OS_UNIX
        struct stat status
        {
        };
        QCOMPARE(::stat(QFile::encodeName(m_path).constData(), &status), 0);
        QCOMPARE(identity.inode(), quint64(status.st_ino));
        QCOMPARE(identity.device(), quint64(status.st_dev));
        QCOMPARE(identity.modifiedNanoseconds(), qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec);
#endif
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Unchanged);

        // A failed read gives none.
        FileIdentity none;
        QVERIFY(!readMenuFileBytes(m_folder.filePath(QStringLiteral("absent.ini")), bytes, &none).ok());
        QVERIFY(none.isNull());
    }

    void anUntouchedFileIsUnchangedWithoutReadingIt()
    {
        const FileIdentity identity = identityRead(m_path);
        QCOMPARE(identity.modifiedNanoseconds() % 1000000, 0); // set to the millisecond by init()
        // Other bytes of the same length written in place, and the old time put back: only reading
        // would notice, and an old file whose length, time and inode are the same is not read.
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.write("X") == 1);
        file.close();
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000, Qt::UTC));
        FileIdentity current;
        QCOMPARE(identity.changeAt(m_path, &current), FileIdentity::Change::Unchanged);
        QCOMPARE(current, identity);
    }

    void aTouchedFileWithTheSameBytesIsTouched()
    {
        const FileIdentity identity = identityRead(m_path);
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000 + 60000, Qt::UTC));
        FileIdentity current;
        QCOMPARE(identity.changeAt(m_path, &current), FileIdentity::Change::Touched);
        QCOMPARE(current.hash(), identity.hash());
        QCOMPARE(current.modifiedNanoseconds(), identity.modifiedNanoseconds() + qint64(60) * 1000000000);
        // Kept from then on, the touch is no change any more.
        QCOMPARE(current.changeAt(m_path), FileIdentity::Change::Unchanged);
    }

    void aFileReplacedByOneWithTheSameBytesIsTouched()
    {
        const FileIdentity identity = identityRead(m_path);
        replaceAtomically(m_path, m_bytes);
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Touched);
    }

    void aLookAtTheStatusSeesWritesReplacementsAndRemovalButNotBytesWithinATick()
    {
        const FileIdentity identity = identityRead(m_path);
        QVERIFY(identity.sameStatusAt(m_path));
        QVERIFY(!FileIdentity().sameStatusAt(m_path));

        // Bytes changed in place with the time put back are beyond a look at the status.
        {
            QFile file(m_path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.write("X") == 1);
        }
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000, Qt::UTC));
        QVERIFY(identity.sameStatusAt(m_path));

        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000 + 1, Qt::UTC));
        QVERIFY(!identity.sameStatusAt(m_path));

        // Longer, in place, with the time it had: only the length tells.
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000, Qt::UTC));
        QVERIFY(identity.sameStatusAt(m_path));
        {
            QFile file(m_path);
            QVERIFY(file.open(QIODevice::Append));
            QVERIFY(file.write("x") == 1);
        }
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000, Qt::UTC));
        QVERIFY(!identity.sameStatusAt(m_path));

        const FileIdentity before = identityRead(m_path);
        QVERIFY(before.sameStatusAt(m_path));
        replaceAtomically(m_path, m_bytes + "x");
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(before.modifiedNanoseconds() / 1000000, Qt::UTC));
        QVERIFY(!before.sameStatusAt(m_path)); // another inode

        const FileIdentity last = identityRead(m_path);
        QVERIFY(QFile::remove(m_path));
        QVERIFY(!last.sameStatusAt(m_path));
        QVERIFY(QDir().mkdir(m_path));
        QVERIFY(!last.sameStatusAt(m_path));
        QVERIFY(QDir().rmdir(m_path));
    }

    void otherBytesAreAChange_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("atomically");
        QByteArray sameLength = menuFileFromLines(exampleMenuLines());
        sameLength[sameLength.indexOf("Pack")] = 'B';
        QTest::newRow("same length, in place") << sameLength << false;
        QTest::newRow("same length, replaced") << sameLength << true;
        QTest::newRow("longer") << menuFileFromLines(exampleMenuLines()) + "\r\n" << false;
        QTest::newRow("shorter, replaced") << QByteArray("KELV - Menu\r\n") << true;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void otherBytesAreAChange()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, atomically);
        const FileIdentity identity = identityRead(m_path);
        if (atomically) {
            replaceAtomically(m_path, bytes);
        } else {
            writeFile(m_path, bytes);
        }
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Changed);
    }

    void aChangeWithinTheTickOfTheFilesClockIsFoundByItsBytes()
    {
        // Written just now: a change made at once leaves length and inode alone, and the time too,
        // as a coarse file system clock would.
        writeFile(m_path, m_bytes);
        const FileIdentity identity = identityRead(m_path);
        QByteArray other = m_bytes;
        other[other.indexOf("Delete")] = 'd';
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QCOMPARE(file.write(other), other.size());
        file.close();
        setModified(m_path, QDateTime::fromMSecsSinceEpoch(identity.modifiedNanoseconds() / 1000000, Qt::UTC));
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Changed);

        // With its own bytes back it is the same file again, and the check says so.
        writeFile(m_path, m_bytes);
        const FileIdentity recent = identityRead(m_path);
        FileIdentity current;
        QCOMPARE(recent.changeAt(m_path, &current), FileIdentity::Change::Unchanged);
        QCOMPARE(current, recent);
    }

    void aMenuOfManyPiecesKeepsItsIdentityWhenReadAndChecked()
    {
        // Far larger than the pieces the reader and the check take at a time.
        QStringList lines = exampleMenuLines();
        const qsizetype commandsEnd = lines.indexOf(QStringLiteral("[/Commands]"));
        for (int i = 0; i < 4000; ++i) {
            lines.insert(commandsEnd, QStringLiteral("1:*=%1").arg(QString(200, QLatin1Char('x'))));
        }
        const QByteArray bytes = menuFileFromLines(lines);
        QVERIFY(bytes.size() > 3 * 256 * 1024);
        writeFile(m_path, bytes);
        setModified(m_path, anHourAgo());

        const FileIdentity whole = identityRead(m_path);
        MenuDocument document;
        FileIdentity pieces;
        QVERIFY(readMenuFile(m_path, document, &pieces).ok());
        QCOMPARE(pieces, whole);
        QCOMPARE(pieces.hash(), FileIdentity::hashOf(bytes));

        setModified(m_path, QDateTime::fromMSecsSinceEpoch(whole.modifiedNanoseconds() / 1000000 + 60000, Qt::UTC));
        QCOMPARE(whole.changeAt(m_path), FileIdentity::Change::Touched);

        // One byte near the end, same length, in place.
        QByteArray other = bytes;
        other[other.size() - 20] = 'y';
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QCOMPARE(file.write(other), other.size());
        file.close();
        QCOMPARE(whole.changeAt(m_path), FileIdentity::Change::Changed);
    }

    void aFileThatIsGoneIsMissingAndAFolderIsAChange()
    {
        const FileIdentity identity = identityRead(m_path);
        QVERIFY(QFile::remove(m_path));
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Missing);
        QCOMPARE(identity.changeAt(m_folder.filePath(QStringLiteral("no/such/folder/menu.ini"))),
                 FileIdentity::Change::Missing);
        QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("menu.ini")));
        QCOMPARE(identity.changeAt(m_path), FileIdentity::Change::Changed);
        QVERIFY(QDir(m_folder.path()).rmdir(QStringLiteral("menu.ini")));
    }

    void aNullIdentityKnowsNoFile()
    {
        const FileIdentity none;
        QVERIFY(none.isNull());
        QCOMPARE(none.changeAt(m_path), FileIdentity::Change::Changed);
        QCOMPARE(none.changeAt(m_folder.filePath(QStringLiteral("absent.ini"))), FileIdentity::Change::Missing);
    }

    void theHashTellsBytesApart()
    {
        QCOMPARE(FileIdentity::hashOf(QByteArray()).size(), 16);
        QCOMPARE(FileIdentity::hashOf(m_bytes), FileIdentity::hashOf(QByteArray(m_bytes)));
        QRandomGenerator random(7);
        QSet<QByteArray> hashes;
        for (int i = 0; i < 2000; ++i) {
            QByteArray bytes = m_bytes;
            bytes[random.bounded(int(bytes.size()))] = char(random.bounded(256));
            hashes.insert(FileIdentity::hashOf(bytes) + bytes);
        }
        // Each distinct text has one hash, and no two distinct texts share one.
        QSet<QByteArray> texts;
        QSet<QByteArray> distinctHashes;
        for (const QByteArray& entry : std::as_const(hashes)) {
            texts.insert(entry.mid(16));
            distinctHashes.insert(entry.left(16));
        }
        QCOMPARE(distinctHashes.size(), texts.size());
    }
};

QTEST_GUILESS_MAIN(TestFileIdentity)
#include "test_fileidentity.moc"
