#include "menufixtures.h"

#include "editing/randommenu.h"

#include "editing/menuopening.h"
#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

void addCommand(MenuItem& item, const QString& extension, const QString& command)
{
    item.commands.append(Command { extension, command });
}

/// Archive (Pack with two commands, Unpack linked to Pack) and Delete with one command.
MenuDocument exampleDocument()
{
    MenuDocument document;
    MenuItem archive = makeItem(QStringLiteral("Archive"), 0, -1, 1, 2);
    MenuItem pack = makeItem(QStringLiteral("Pack"), 1, 0, 1);
    addCommand(pack, QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$"));
    addCommand(pack, QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$"));
    MenuItem unpack = makeItem(QStringLiteral("Unpack"), 2, 0, 2);
    unpack.copiesCommands = true;
    unpack.copyKey = QStringLiteral("E1");
    addCommand(unpack, QStringLiteral("own"), QStringLiteral("ignored while the link is on"));
    MenuItem del = makeItem(QStringLiteral("Delete"), 3, -1, 2);
    addCommand(del, QString(), QStringLiteral("del $fs-001$"));
    document.items = { archive, pack, unpack, del };
    document.lastIndex = 3;
    return document;
}

QByteArray exampleBytes()
{
    return menuFileFromLines(exampleMenuLines());
}

/// A random menu in tree pre-order, as the reader produces it, without links.
MenuDocument randomDocument(quint32 seed)
{
    QRandomGenerator random(seed);
    MenuDocument document;
    const int count = random.bounded(1, 150);
    QList<qint16> lastAtLevel;
    QList<qint16> childrenSoFar(count, 0);
    qint16 topLevelCount = 0;
    for (int i = 0; i < count; ++i) {
        const int level = i == 0 ? 0 : random.bounded(0, int(lastAtLevel.size()) + 1);
        lastAtLevel.resize(level + 1);
        MenuItem item;
        item.caption = QStringLiteral("Item %1 \u00E9\u20AC").arg(i);
        if (random.bounded(10) == 0) {
            item.caption += QStringLiteral(" : = ||");
        }
        item.key = QStringLiteral("E%1").arg(i);
        item.level = qint16(level);
        item.parent = level == 0 ? qint16(-1) : lastAtLevel.at(level - 1);
        item.siblingOrder = item.parent == -1 ? ++topLevelCount : ++childrenSoFar[item.parent];
        const int commandCount = random.bounded(0, 4);
        for (int c = 0; c < commandCount; ++c) {
            item.commands.append(Command { QStringLiteral("ext%1").arg(random.bounded(3)),
                                           QStringLiteral("run $fs-00%1$ a=b:c").arg(random.bounded(9)) });
        }
        document.items.append(item);
        if (item.parent >= 0) {
            document.items[item.parent].childCount++;
        }
        lastAtLevel[level] = qint16(i);
    }
    document.lastIndex = qint16(count - 1);
    return document;
}

QByteArray fileContents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// Every file in `folder` but the menu file itself: what a save may leave behind.
QStringList filesBeside(const QString& folder, const QString& menuName)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    names.removeAll(menuName);
    return names;
}

#ifdef Q_OS_UNIX
struct stat statusOf(const QString& path)
{
    struct stat status
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        status.st_mode = 0;
    }
    return status;
}

mode_t permissionBits(const QString& path)
{
    return statusOf(path).st_mode & 07777;
}

/// The mask the system applies to new files, read without changing it for long.
mode_t currentUmask()
{
    const mode_t mask = ::umask(022);
    ::umask(mask);
    return mask;
}
#endif

} // namespace

class TestMenuFileWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheExampleLayoutByteForByte() { QCOMPARE(menuFileBytes(exampleDocument()), exampleBytes()); }

    void canonicalFilesAreReproducedByteForByte()
    {
        MenuDocument document;
        QVERIFY(readMenuBytes(exampleBytes(), document).ok());
        QCOMPARE(menuFileBytes(document), exampleBytes());

        QFile bundled(QStringLiteral(KELV_EXAMPLES_DIR "/archive-tools.ini"));
        QVERIFY(bundled.open(QIODevice::ReadOnly));
        const QByteArray bytes = bundled.readAll();
        QVERIFY(readMenuBytes(bytes, document).ok());
        QCOMPARE(menuFileBytes(document), bytes);
    }

    void windows1252TextRoundTripsByteForByte()
    {
        const QByteArray bytes = menuFileFromLines(
            { QStringLiteral("KELV - Menu"), QString(), QStringLiteral("[Menu]"), QString(),
              QStringLiteral("Caf\u00E9 \u20AC \u201Cquoted\u201D"), markers(3) + QStringLiteral("\u00C6\u00F8\u2122"),
              QString(), QStringLiteral("[/Menu]"), QString(), QStringLiteral("[Commands]"), QString(),
              QStringLiteral("0002:txt=echo \u201C\u00E9\u201D"), QString(), QStringLiteral("[/Commands]") });
        QVERIFY(bytes.contains("Caf\xE9 \x80 \x93quoted\x94"));
        MenuDocument document;
        QVERIFY(readMenuBytes(bytes, document).ok());
        QCOMPARE(menuFileBytes(document), bytes);
    }

    void writeThenReadGivesTheSameDocument()
    {
        for (quint32 seed = 1; seed <= 200; ++seed) {
            const MenuDocument original = randomDocument(seed);
            MenuDocument reread;
            const MenuReadResult result = readMenuBytes(menuFileBytes(original), reread);
            QVERIFY2(result.ok(), qPrintable(result.reason));
            QCOMPARE(reread, original);
        }
    }

    void linkedItemIsWrittenWithItsTargetsCommandsAndReadsBackAsOwnCopy()
    {
        MenuDocument reread;
        QVERIFY(readMenuBytes(menuFileBytes(exampleDocument()), reread).ok());
        const MenuItem& unpack = reread.items.at(2);
        QVERIFY(!unpack.copiesCommands);
        QCOMPARE(unpack.copyKey, QStringLiteral("-1"));
        QCOMPARE(unpack.commands, reread.items.at(1).commands);

        MenuDocument detected;
        QVERIFY(openMenuBytes(menuFileBytes(exampleDocument()), true, detected).ok());
        QVERIFY(detected.items.at(2).copiesCommands);
        QCOMPARE(detected.items.at(2).copyKey, QStringLiteral("E1"));
        QVERIFY(!detected.items.at(1).copiesCommands);
    }

    void treeIsWalkedByParentAndSiblingOrderNotByArrayOrder()
    {
        MenuDocument document;
        // Array order: b2 (child 2 of a), c (top 2), a (top 1), b1 (child 1 of a).
        document.items = { makeItem(QStringLiteral("b2"), 0, 2, 2), makeItem(QStringLiteral("c"), 1, -1, 2),
                           makeItem(QStringLiteral("a"), 2, -1, 1, 2), makeItem(QStringLiteral("b1"), 3, 2, 1) };
        document.items[0].commands.append(Command { QStringLiteral("x"), QStringLiteral("two") });
        document.items[3].commands.append(Command { QStringLiteral("x"), QStringLiteral("one") });
        const QByteArray bytes = menuFileBytes(document);
        const QByteArray dots = Windows1252Codec::encode(markers(3));
        QVERIFY(bytes.contains("[Menu]\r\n\r\na\r\n" + dots + "b1\r\n" + dots + "b2\r\nc\r\n\r\n[/Menu]"));
        QVERIFY(bytes.contains("[Commands]\r\n\r\n0002:x=one\r\n0003:x=two\r\n\r\n[/Commands]\r\n"));
    }

    void itemsSharingASiblingOrderAreAllWrittenInArrayOrder()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("top"), 0, -1, 1, 2), makeItem(QStringLiteral("first"), 1, 0, 1),
                           makeItem(QStringLiteral("second"), 2, 0, 1) };
        const QByteArray dots = Windows1252Codec::encode(markers(3));
        QVERIFY(menuFileBytes(document).contains("top\r\n" + dots + "first\r\n" + dots + "second\r\n"));
    }

    void unreachableItemsAreNotWritten()
    {
        MenuDocument document;
        // "orphan" names a parent outside the array; "ring" is its own parent; "late" has an order
        // beyond its parent's child count.
        document.items = { makeItem(QStringLiteral("top"), 0, -1, 1, 1), makeItem(QStringLiteral("child"), 1, 0, 1),
                           makeItem(QStringLiteral("late"), 2, 0, 2), makeItem(QStringLiteral("orphan"), 3, 9, 1),
                           makeItem(QStringLiteral("ring"), 4, 4, 1, 1) };
        const QByteArray bytes = menuFileBytes(document);
        QVERIFY(bytes.contains("child"));
        QVERIFY(!bytes.contains("late"));
        QVERIFY(!bytes.contains("orphan"));
        QVERIFY(!bytes.contains("ring"));
    }

    void topLevelItemAfterAGapInTheOrdersIsStillWritten()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("one"), 0, -1, 1), makeItem(QStringLiteral("four"), 1, -1, 4),
                           makeItem(QStringLiteral("two"), 2, -1, 2) };
        QVERIFY(menuFileBytes(document).contains("[Menu]\r\n\r\none\r\ntwo\r\nfour\r\n\r\n[/Menu]"));
    }

    void deeperLevelsGetThreeMarkersEach()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("a"), 0, -1, 1, 1), makeItem(QStringLiteral("b"), 1, 0, 1, 1),
                           makeItem(QStringLiteral("c"), 2, 1, 1, 1), makeItem(QStringLiteral("d"), 3, 2, 1) };
        QVERIFY(menuFileBytes(document).contains("a\r\n\xB7\xB7\xB7"
                                                 "b\r\n\xB7\xB7\xB7\xB7\xB7\xB7"
                                                 "c\r\n\xB7\xB7\xB7\xB7\xB7\xB7\xB7\xB7\xB7"
                                                 "d\r\n"));
    }

    void menuWithoutCommandsKeepsTheEmptyLines()
    {
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("only"), 0, -1, 1) };
        QCOMPARE(menuFileBytes(document),
                 QByteArray("KELV - Menu\r\n\r\n[Menu]\r\n\r\nonly\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n\r\n"
                            "[/Commands]\r\n"));
    }

    void emptyTopLevelCaptionIsWrittenAsOneMarkerAndReadsBack()
    {
        // An empty line would be skipped by the reader: the item would vanish and the commands of
        // every later item would move to its neighbour.
        MenuDocument document;
        document.items = { makeItem(QStringLiteral("first"), 0, -1, 1), makeItem(QString(), 1, -1, 2, 1),
                           makeItem(QString(), 2, 1, 1), makeItem(QStringLiteral("last"), 3, -1, 3) };
        addCommand(document.items[0], QStringLiteral("a"), QStringLiteral("one"));
        addCommand(document.items[1], QStringLiteral("b"), QStringLiteral("two"));
        addCommand(document.items[2], QStringLiteral("c"), QStringLiteral("three"));
        addCommand(document.items[3], QStringLiteral("d"), QStringLiteral("four"));
        document.lastIndex = 3;

        const QByteArray bytes = menuFileBytes(document);
        QVERIFY2(bytes.contains("[Menu]\r\n\r\nfirst\r\n\xB7\r\n\xB7\xB7\xB7\r\nlast\r\n\r\n[/Menu]"),
                 bytes.constData());
        MenuDocument reread;
        const MenuReadResult result = readMenuBytes(bytes, reread);
        QVERIFY2(result.ok(), qPrintable(result.reason));
        QCOMPARE(reread.items.size(), document.items.size());
        for (qsizetype i = 0; i < document.items.size(); ++i) {
            QCOMPARE(reread.items.at(i).caption, document.items.at(i).caption);
            QCOMPARE(reread.items.at(i).parent, document.items.at(i).parent);
            QCOMPARE(reread.items.at(i).siblingOrder, document.items.at(i).siblingOrder);
            QCOMPARE(reread.items.at(i).childCount, document.items.at(i).childCount);
            QCOMPARE(reread.items.at(i).commands, document.items.at(i).commands);
        }
        // Written again, the file is the same to the byte.
        QCOMPARE(menuFileBytes(reread), bytes);
    }

    void tenThousandItemsAndMoreWriteFiveDigitNumbersThatReadBack()
    {
        MenuDocument document;
        for (int i = 0; i < 12000; ++i) {
            MenuItem item = makeItem(QStringLiteral("Item %1").arg(i), i, -1, qint16(i + 1));
            addCommand(item, QStringLiteral("txt"), QStringLiteral("open %1").arg(i));
            document.items.append(item);
        }
        document.lastIndex = 11999;
        const QByteArray bytes = menuFileBytes(document);
        QVERIFY(bytes.contains("\r\n9999:txt=open 9998\r\n10000:txt=open 9999\r\n"));
        QVERIFY(bytes.contains("\r\n12000:txt=open 11999\r\n"));
        QVERIFY(bytes.contains("\r\n0001:txt=open 0\r\n"));

        MenuDocument reread;
        QVERIFY(readMenuBytes(bytes, reread).ok());
        QCOMPARE(reread.items.size(), qsizetype(12000));
        QCOMPARE(reread.items.at(11999).commands.at(1).command, QStringLiteral("open 11999"));
        QCOMPARE(reread.items.at(9999).commands.at(1).command, QStringLiteral("open 9999"));
    }

    void theLengthOfTheFileIsCountedExactlyWithoutBuildingIt()
    {
        QCOMPARE(menuFileSize(exampleDocument()), exampleBytes().size());
        for (quint32 seed = 1; seed <= 400; ++seed) {
            QRandomGenerator random(seed);
            // Now and then more than 9,999 items, whose numbers take five digits.
            const int count = seed % 50 == 0 ? 10000 + random.bounded(3000) : 1 + random.bounded(60);
            MenuDocument document = RandomMenu::generate(random, count);
            roughenTexts(random, document);
            qsizetype expected = -1;
            int expectedError = 0;
            try {
                expected = menuFileBytes(document).size();
            } catch (const RunTimeError& error) {
                expectedError = error.number();
            }
            try {
                QCOMPARE(menuFileSize(document), qint64(expected));
                QCOMPARE(expectedError, 0);
            } catch (const RunTimeError& error) {
                QCOMPARE(error.number(), expectedError);
            }
        }
    }

    void theLengthOfAMenuBeyondTheMostItemsIsCountedToo()
    {
        // The writer refuses to number item 32,768; the length is what it would take.
        const MenuDocument full = flatMenu(32767);
        MenuDocument document = full;
        document.items.append(makeItem(QStringLiteral("Item 32768"), 32767, 0, 1));
        document.items.first().childCount = 1;
        QCOMPARE(menuFileSize(full), menuFileBytes(full).size());
        QCOMPARE(menuFileSize(document), menuFileSize(full) + QByteArray("\xB7\xB7\xB7Item 32768\r\n").size());
    }

    void writeMenuFileReplacesTheFile()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        writeFile(path, QByteArray(100000, 'x'));
        writeMenuFile(exampleDocument(), path);
        QCOMPARE(fileContents(path), exampleBytes());
    }

    void failedWriteLeavesThePreviousFileAsItWas()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        const QByteArray previous("previous contents\r\n");
        writeFile(path, previous);

        // A link naming no item fails while the file is being put together.
        MenuDocument broken = exampleDocument();
        broken.items[2].copyKey = QStringLiteral("E99");
        try {
            writeMenuFile(broken, path);
            QFAIL("the broken link was not reported");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 9);
            QCOMPARE(error.source(), QStringLiteral("writeMenuFile"));
        }
        QCOMPARE(fileContents(path), previous);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList { QStringLiteral("menu.ini") });
    }

    void writeToAMissingFolderOrAFolderIsAnError()
    {
        QTemporaryDir folder;
        try {
            writeMenuFile(exampleDocument(), folder.filePath(QStringLiteral("absent/menu.ini")));
            QFAIL("no error for a missing folder");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 76);
            QCOMPARE(error.report(), QStringLiteral("Error 76 : Path not found (writeMenuFile)"));
        }
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("sub")));
        try {
            writeMenuFile(exampleDocument(), folder.filePath(QStringLiteral("sub")));
            QFAIL("a folder was replaced");
        } catch (const RunTimeError& error) {
            // The fixed text, then the system's reason.
            QCOMPARE(error.report(),
                     QStringLiteral("Error 75 : Path/File access error: Is a directory (writeMenuFile)"));
        }
        QVERIFY(QFileInfo(folder.filePath(QStringLiteral("sub"))).isDir());
    }

    void aFailedReplacementNamesTheSystemsReason()
    {
        // The longest name a file may have: the file can be made, but no temporary name beside it.
        QTemporaryDir folder;
        const QString path = folder.filePath(QString(251, QLatin1Char('m')) + QStringLiteral(".ini"));
        const QByteArray previous("previous\r\n");
        writeFile(path, previous);
        try {
            writeMenuFile(exampleDocument(), path);
            QFAIL("the file was replaced");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.report(),
                     QStringLiteral("Error 75 : Path/File access error: File name too long (writeMenuFile)"));
        }
        QCOMPARE(fileContents(path), previous);
    }

    void aPipeOrADeviceIsNotReplacedNorOpened()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString pipe = folder.filePath(QStringLiteral("pipe.ini"));
        QVERIFY(::mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
        // Opened for writing, a pipe waits for a reader: the writing runs beside the test, which opens
        // the pipe itself when the writer hangs, so that the test ends either way.
        QString report;
        std::atomic<bool> finished { false };
        std::thread writer([&pipe, &report, &finished] {
            try {
                writeMenuFile(exampleDocument(), pipe);
            } catch (const RunTimeError& error) {
                report = error.report();
            }
            finished = true;
        });
        QElapsedTimer timer;
        timer.start();
        while (!finished && timer.elapsed() < 10000) {
            QThread::msleep(10);
        }
        const bool waited = !finished;
        if (waited) {
            QFile reader(pipe);
            (void)reader.open(QIODevice::ReadOnly);
        }
        writer.join();
        QVERIFY2(!waited, "the writer waited for a reader");
        QCOMPARE(report,
                 QStringLiteral("Error 75 : Path/File access error: not a regular file (a device, a pipe or a "
                                "socket) (writeMenuFile)"));
        QVERIFY(!QFileInfo(pipe).isFile());
#else
        QSKIP("named pipes are a Unix thing");
#endif
    }

    void theReplacementKeepsThePermissionBits_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("0640") << 0640;
        QTest::newRow("0600") << 0600;
        QTest::newRow("0604") << 0604;
        QTest::newRow("0664") << 0664;
        QTest::newRow("0755") << 0755;
    }

    void theReplacementKeepsThePermissionBits()
    {
#ifdef Q_OS_UNIX
        QFETCH(int, mode);
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        writeFile(path, "previous\r\n");
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode_t(mode)), 0);
        writeMenuFile(exampleDocument(), path);
        QCOMPARE(fileContents(path), exampleBytes());
        QCOMPARE(int(permissionBits(path)), mode);
        QVERIFY(filesBeside(folder.path(), QStringLiteral("menu.ini")).isEmpty());
#else
        QSKIP("permission bits are a Unix thing");
#endif
    }

    void aWriteProtectedFileReplacedWithTheRightToStaysWriteProtected()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        writeFile(path, "previous\r\n");
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0444), 0);
        if (!QFileInfo(path).isWritable()) {
            QSKIP("only an administrator may replace a write-protected file; this user is refused (see "
                  "writeProtectedFileIsNotReplaced)");
        }
        writeMenuFile(exampleDocument(), path);
        QCOMPARE(fileContents(path), exampleBytes());
        QCOMPARE(int(permissionBits(path)), 0444);
#else
        QSKIP("permission bits are a Unix thing");
#endif
    }

    void aNewFileGetsThePermissionsOfAnyNewFile()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("new.ini"));
        writeMenuFile(exampleDocument(), path);
        QCOMPARE(int(permissionBits(path)), int(0666 & ~currentUmask()));
#else
        QSKIP("permission bits are a Unix thing");
#endif
    }

    void theReplacementKeepsTheOwnerAndGroup()
    {
#ifdef Q_OS_UNIX
        if (::geteuid() != 0) {
            QSKIP("giving a file to another user takes an administrator; run the tests as root to check that a "
                  "save keeps the owner and group of the file it replaces");
        }
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        writeFile(path, "previous\r\n");
        const QByteArray name = QFile::encodeName(path);
        // Another user and group than the administrator's, and owner-only permissions that would lock
        // that user out of a file that became the administrator's.
        QCOMPARE(::chown(name.constData(), 4242, 4343), 0);
        QCOMPARE(::chmod(name.constData(), 0640), 0);
        writeMenuFile(exampleDocument(), path);
        const struct stat status = statusOf(path);
        QCOMPARE(status.st_uid, uid_t(4242));
        QCOMPARE(status.st_gid, gid_t(4343));
        QCOMPARE(int(status.st_mode & 07777), 0640);
        QCOMPARE(fileContents(path), exampleBytes());
#else
        QSKIP("file owners are a Unix thing");
#endif
    }

    void aFolderThatCannotBeWrittenIsNamed()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString sub = folder.filePath(QStringLiteral("locked"));
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("locked")));
        const QString path = QDir(sub).filePath(QStringLiteral("menu.ini"));
        writeFile(path, "previous\r\n");
        QCOMPARE(::chmod(QFile::encodeName(sub).constData(), 0555), 0);
        const auto unlock = qScopeGuard([&sub] { ::chmod(QFile::encodeName(sub).constData(), 0755); });
        QTemporaryFile probe(QDir(sub).filePath(QStringLiteral("probe-XXXXXX")));
        if (probe.open()) {
            QSKIP("this user can write into a folder without write permission (administrator): the message for a "
                  "folder that cannot be written cannot be seen");
        }
        try {
            writeMenuFile(exampleDocument(), path);
            QFAIL("the file in a read-only folder was replaced");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.report(),
                     QStringLiteral("Error 70 : Permission denied: the folder %1 cannot be written, "
                                    "so %2 cannot be replaced (writeMenuFile)")
                         .arg(sub, path));
        }
        QCOMPARE(fileContents(path), QByteArray("previous\r\n"));
        try {
            writeMenuFile(exampleDocument(), QDir(sub).filePath(QStringLiteral("new.ini")));
            QFAIL("a file was made in a read-only folder");
        } catch (const RunTimeError& error) {
            QVERIFY2(error.description().endsWith(QStringLiteral("cannot be created")), qPrintable(error.report()));
        }
        QCOMPARE(filesBeside(sub, QStringLiteral("menu.ini")), QStringList());
#else
        QSKIP("folder permissions are a Unix thing here");
#endif
    }

    void aWriteThatFailsHalfwayLeavesTheOldFileAndNothingElse()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        const QByteArray previous("previous\r\n");
        writeFile(path, previous);
        // A file size limit below the file's length: the write stops with "File too large", as it
        // would on a full disk.
        struct rlimit limit
        {
        };
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        const struct rlimit before = limit;
        limit.rlim_cur = 64;
        const auto oldSignal = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        QString report;
        try {
            writeMenuFile(exampleDocument(), path);
        } catch (const RunTimeError& error) {
            report = error.report();
        }
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, oldSignal);
        QCOMPARE(report, QStringLiteral("Error 75 : Path/File access error: File too large (writeMenuFile)"));
        QCOMPARE(fileContents(path), previous);
        QCOMPARE(filesBeside(folder.path(), QStringLiteral("menu.ini")), QStringList());
#else
        QSKIP("file size limits are a Unix thing");
#endif
    }

    void aSymbolicLinkStaysAndTheFileItLeadsToIsReplaced()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString real = folder.filePath(QStringLiteral("real.ini"));
        const QString link = folder.filePath(QStringLiteral("link.ini"));
        writeFile(real, "previous\r\n");
        QVERIFY(QFile::link(real, link));
        writeMenuFile(exampleDocument(), link);
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(fileContents(real), exampleBytes());
#else
        QSKIP("symbolic links are a Unix thing here");
#endif
    }

    void theIdentityOfTheFileWrittenIsTheFileOnDisk()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        writeFile(path, "previous\r\n");
        FileIdentity identity;
        writeMenuFile(exampleDocument(), path, &identity);
        QVERIFY(!identity.isNull());
        QCOMPARE(identity.size(), exampleBytes().size());
        QCOMPARE(identity.hash(), FileIdentity::hashOf(exampleBytes()));
        QCOMPARE(identity.changeAt(path), FileIdentity::Change::Unchanged);
#ifdef Q_OS_UNIX
        const struct stat status = statusOf(path);
        QCOMPARE(identity.inode(), quint64(status.st_ino));
        QCOMPARE(identity.device(), quint64(status.st_dev));
        QCOMPARE(identity.modifiedNanoseconds(), qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec);
#endif
        // A failed write gives no identity.
        FileIdentity untouched;
        MenuDocument broken = exampleDocument();
        broken.items[2].copyKey = QStringLiteral("E99");
        QVERIFY_THROWS_EXCEPTION(RunTimeError, writeMenuFile(broken, path, &untouched));
        QVERIFY(untouched.isNull());
    }

    void writeProtectedFileIsNotReplaced()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        const QByteArray previous("protected\r\n");
        writeFile(path, previous);
        QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadUser));
        if (QFileInfo(path).isWritable()) {
            QSKIP("running with rights that ignore write protection");
        }
        try {
            writeMenuFile(exampleDocument(), path);
            QFAIL("a write-protected file was replaced");
        } catch (const RunTimeError& error) {
            QCOMPARE(error.number(), 75);
            QCOMPARE(error.description(), QStringLiteral("Path/File access error: Permission denied"));
        }
        QCOMPARE(fileContents(path), previous);
    }
};

QTEST_GUILESS_MAIN(TestMenuFileWriter)
#include "test_menufilewriter.moc"
