#include "menufixtures.h"

#include "menufile/fileidentity.h"
#include "menufile/menufilereader.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

/// A menu file of the given item lines and command lines, in the canonical layout.
QByteArray menuFile(const QStringList& itemLines, const QStringList& commandLines)
{
    QStringList lines { QStringLiteral("KELV - Menu"), QString(), QStringLiteral("[Menu]"), QString() };
    lines += itemLines;
    lines += { QString(), QStringLiteral("[/Menu]"), QString(), QStringLiteral("[Commands]"), QString() };
    lines += commandLines;
    lines += { QString(), QStringLiteral("[/Commands]") };
    return menuFileFromLines(lines);
}

bool sameResult(const MenuReadResult& left, const MenuReadResult& right)
{
    return left.code == right.code && left.line == right.line && left.reason == right.reason
        && left.errorNumber == right.errorNumber;
}

/// Reads `bytes` as a menu file in memory, and checks that the same bytes read from a file (a piece
/// at a time, hashed as they come) give the same menu or the same failure, and the file's identity.
MenuReadResult read(const QByteArray& bytes, MenuDocument& document)
{
    const MenuReadResult result = readMenuBytes(bytes, document);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("menu.ini"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        QTest::qFail("the menu file could not be written", __FILE__, __LINE__);
        return result;
    }
    file.close();
    MenuDocument fromFile;
    FileIdentity identity;
    const MenuReadResult fileResult = readMenuFile(path, fromFile, &identity);
    if (!sameResult(fileResult, result)) {
        QTest::qFail(qPrintable(QStringLiteral("the file read gives %1 at line %2: %3")
                                    .arg(int(fileResult.code))
                                    .arg(fileResult.line)
                                    .arg(fileResult.reason)),
                     __FILE__, __LINE__);
    } else if (result.ok() && !(fromFile == document)) {
        QTest::qFail("the file read gives another menu", __FILE__, __LINE__);
    } else if (result.ok() && (identity.size() != bytes.size() || identity.hash() != FileIdentity::hashOf(bytes))) {
        QTest::qFail("the file read gives another identity", __FILE__, __LINE__);
    }
    return result;
}

void compareFailure(const MenuReadResult& result, int line, const QString& reason, int errorNumber)
{
    QCOMPARE(result.code, MenuReadResult::Failed);
    QCOMPARE(result.line, line);
    QCOMPARE(result.reason, reason);
    QCOMPARE(result.errorNumber, errorNumber);
}

int openFileDescriptorCount()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size());
}

} // namespace

class TestMenuFileReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheExampleMenu()
    {
        MenuDocument document;
        const MenuReadResult result = read(menuFileFromLines(exampleMenuLines()), document);
        QVERIFY(result.ok());
        QVERIFY(result.reason.isEmpty());
        QCOMPARE(document.items.size(), qsizetype(4));
        QCOMPARE(document.lastIndex, qint16(3));

        const MenuItem& archive = document.items.at(0);
        QCOMPARE(archive.caption, QStringLiteral("Archive"));
        QCOMPARE(archive.key, QStringLiteral("E0"));
        QCOMPARE(archive.level, qint16(0));
        QCOMPARE(archive.parent, qint16(-1));
        QCOMPARE(archive.childCount, qint16(2));
        QCOMPARE(archive.siblingOrder, qint16(1));
        QCOMPARE(archive.commandUpperBound(), 0);

        const MenuItem& unpack = document.items.at(2);
        QCOMPARE(unpack.caption, QStringLiteral("Unpack"));
        QCOMPARE(unpack.key, QStringLiteral("E2"));
        QCOMPARE(unpack.level, qint16(1));
        QCOMPARE(unpack.parent, qint16(0));
        QCOMPARE(unpack.siblingOrder, qint16(2));
        QCOMPARE(unpack.commandUpperBound(), 2);
        QCOMPARE(unpack.commands.at(1), (Command { QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$") }));
        QCOMPARE(unpack.commands.at(2), (Command { QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$") }));

        const MenuItem& del = document.items.at(3);
        QCOMPARE(del.parent, qint16(-1));
        QCOMPARE(del.siblingOrder, qint16(2));
        QCOMPARE(del.commands.at(1), (Command { QString(), QStringLiteral("del $fs-001$") }));

        for (const MenuItem& item : std::as_const(document.items)) {
            QCOMPARE(item.copyKey, QStringLiteral("-1"));
            QVERIFY(!item.copiesCommands);
            QVERIFY(item.lastCopyKey.isEmpty());
            QCOMPARE(item.commands.at(0), Command {});
        }
    }

    void sectionTagsInAnyLetterCaseReadTheSame()
    {
        MenuDocument lowerCase;
        QStringList lines = exampleMenuLines();
        lines[2] = QStringLiteral("[menu]");
        lines[9] = QStringLiteral("[/menu]");
        lines[11] = QStringLiteral("[commands]");
        lines[19] = QStringLiteral("[/commands]");
        QVERIFY(read(menuFileFromLines(lines), lowerCase).ok());

        MenuDocument mixedCase;
        lines[2] = QStringLiteral("[MENU]");
        lines[9] = QStringLiteral("[/mEnU]");
        lines[11] = QStringLiteral("[COMMANDS]");
        lines[19] = QStringLiteral("[/Commands]");
        QVERIFY(read(menuFileFromLines(lines), mixedCase).ok());
        QCOMPARE(mixedCase, lowerCase);

        MenuDocument canonical;
        QVERIFY(read(menuFileFromLines(exampleMenuLines()), canonical).ok());
        QCOMPARE(canonical, lowerCase);
    }

    void tagWithTrailingBlankIsNoTagAndReadingRunsToTheEnd()
    {
        MenuDocument document;
        QStringList lines = exampleMenuLines();
        lines[2] = QStringLiteral("[Menu] ");
        compareFailure(read(menuFileFromLines(lines), document), 0, QStringLiteral("ends before [Menu]"), 62);

        // A closing tag with a blank is an item line, so everything after it becomes items.
        lines = exampleMenuLines();
        lines[9] = QStringLiteral("[/Menu] ");
        compareFailure(read(menuFileFromLines(lines), document), 0, QStringLiteral("ends before [/Menu]"), 62);

        lines = exampleMenuLines();
        lines[19] = QStringLiteral(" [/Commands]");
        compareFailure(read(menuFileFromLines(lines), document), 20, QStringLiteral("command line has no \":\""), 5);

        lines = exampleMenuLines();
        lines[11] = QStringLiteral("[Commands]\t");
        compareFailure(read(menuFileFromLines(lines), document), 0, QStringLiteral("ends before [Commands]"), 62);
    }

    void blankLinesAndTextOutsideTheSectionsAreIgnored()
    {
        MenuDocument expected;
        QVERIFY(read(menuFileFromLines(exampleMenuLines()), expected).ok());

        const QString dots = markers(3);
        const QStringList lines { QStringLiteral("KELV - Menu"),
                                  QStringLiteral("written by hand"),
                                  QStringLiteral("[Commands]"),
                                  QStringLiteral("[menu]"),
                                  QString(),
                                  QString(),
                                  QStringLiteral("Archive"),
                                  QString(),
                                  dots + QStringLiteral("Pack"),
                                  dots + QStringLiteral("Unpack"),
                                  QString(),
                                  QStringLiteral("Delete"),
                                  QStringLiteral("[/menu]"),
                                  QStringLiteral("0001:zip=ignored between the sections"),
                                  QString(),
                                  QStringLiteral("[commands]"),
                                  QStringLiteral("0002:zip=pack.exe a $fs-001$"),
                                  QString(),
                                  QStringLiteral("0002:rar=pack.exe r $fs-001$"),
                                  QStringLiteral("0003:zip=pack.exe a $fs-001$"),
                                  QString(),
                                  QString(),
                                  QStringLiteral("0003:rar=pack.exe r $fs-001$"),
                                  QStringLiteral("0004:=del $fs-001$"),
                                  QStringLiteral("[/commands]"),
                                  QStringLiteral("anything after the end") };
        MenuDocument document;
        QVERIFY(read(menuFileFromLines(lines), document).ok());
        QCOMPARE(document, expected);
    }

    void lineEndsMayBeCrLfLfOrCr()
    {
        MenuDocument expected;
        QVERIFY(read(menuFileFromLines(exampleMenuLines()), expected).ok());
        for (const char* lineEnd : { "\n", "\r" }) {
            MenuDocument document;
            QVERIFY(read(menuFileFromLines(exampleMenuLines(), lineEnd), document).ok());
            QCOMPARE(document, expected);
        }
        // Mixed ends, and a last line without any end.
        QByteArray mixed = menuFileFromLines(exampleMenuLines(), "\r\n");
        mixed.replace("Pack\r\n", "Pack\n");
        mixed.replace("[Menu]\r\n", "[Menu]\r");
        mixed.chop(2);
        MenuDocument document;
        QVERIFY(read(mixed, document).ok());
        QCOMPARE(document, expected);
    }

    void markersGiveLevelsAndAreStripped()
    {
        MenuDocument document;
        const QByteArray bytes
            = menuFile({ QStringLiteral("Top"), markers(4) + QStringLiteral("x"), markers(2) + QStringLiteral("y"),
                         markers(3), markers(6), markers(1) + QStringLiteral("a") + markers(3) },
                       {});
        QVERIFY(read(bytes, document).ok());
        QCOMPARE(document.items.at(1).caption, QStringLiteral("x"));
        QCOMPARE(document.items.at(1).level, qint16(1));
        QCOMPARE(document.items.at(2).caption, QStringLiteral("y"));
        QCOMPARE(document.items.at(2).level, qint16(0));
        // A line of markers only counts one more than its length and has an empty caption.
        QCOMPARE(document.items.at(3).caption, QString());
        QCOMPARE(document.items.at(3).level, qint16(1));
        QCOMPARE(document.items.at(4).caption, QString());
        QCOMPARE(document.items.at(4).level, qint16(2));
        QCOMPARE(document.items.at(5).caption, QStringLiteral("a") + markers(3));
        QCOMPARE(document.items.at(5).level, qint16(0));
    }

    void parentsAndSiblingOrdersFollowTheirDefinitions()
    {
        const QString dots = markers(3);
        MenuDocument document;
        // Levels 0 1 2 1 0 1 2 2 0 2: the last item's parent is the nearest earlier item one level up,
        // even though a top-level item lies between them.
        const QByteArray bytes
            = menuFile({ QStringLiteral("a"), dots + QStringLiteral("b"), dots + dots + QStringLiteral("c"),
                         dots + QStringLiteral("d"), QStringLiteral("e"), dots + QStringLiteral("f"),
                         dots + dots + QStringLiteral("g"), dots + dots + QStringLiteral("h"), QStringLiteral("i"),
                         dots + dots + QStringLiteral("j") },
                       {});
        QVERIFY(read(bytes, document).ok());
        const QList<qint16> parents { -1, 0, 1, 0, -1, 4, 5, 5, -1, 5 };
        const QList<qint16> orders { 1, 1, 1, 2, 2, 1, 1, 2, 3, 3 };
        const QList<qint16> childCounts { 2, 1, 0, 0, 1, 3, 0, 0, 0, 0 };
        for (int i = 0; i < parents.size(); ++i) {
            QCOMPARE(document.items.at(i).parent, parents.at(i));
            QCOMPARE(document.items.at(i).siblingOrder, orders.at(i));
            QCOMPARE(document.items.at(i).childCount, childCounts.at(i));
            QCOMPARE(document.items.at(i).key, QStringLiteral("E%1").arg(i));
        }
    }

    void treeNumbersMatchTheLiteralDefinitionsOnRandomFiles()
    {
        for (quint32 seed = 1; seed <= 60; ++seed) {
            QRandomGenerator random(seed);
            QStringList itemLines;
            const int count = random.bounded(1, 120);
            for (int i = 0; i < count; ++i) {
                itemLines.append(markers(random.bounded(0, 13)) + QString::number(i));
            }
            MenuDocument document;
            QVERIFY(read(menuFile(itemLines, {}), document).ok());
            for (int c = 0; c < count; ++c) {
                const qint16 expectedParent = findParent(document, c);
                QCOMPARE(document.items.at(c).parent, expectedParent);
                int siblings = 0;
                int children = 0;
                for (int k = 0; k < count; ++k) {
                    if (k <= c && document.items.at(k).parent == expectedParent) {
                        ++siblings;
                    }
                    if (document.items.at(k).parent == c) {
                        ++children;
                    }
                }
                QCOMPARE(int(document.items.at(c).siblingOrder), siblings);
                QCOMPARE(int(document.items.at(c).childCount), children);
            }
        }
    }

    void commandLinesSplitAtTheFirstColonAndTheFirstEquals()
    {
        MenuDocument document;
        const QByteArray bytes = menuFile({ QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") },
                                          { QStringLiteral("0003:=notepad"), QStringLiteral("0003:txt=a=b"),
                                            QStringLiteral("0001:a:b=c:d"), QStringLiteral("2:x="),
                                            QStringLiteral("00001:dll=regsvr32 $fs-001$") });
        QVERIFY(read(bytes, document).ok());
        const MenuItem& third = document.items.at(2);
        QCOMPARE(third.commandUpperBound(), 2);
        QCOMPARE(third.commands.at(1), (Command { QString(), QStringLiteral("notepad") }));
        QCOMPARE(third.commands.at(2), (Command { QStringLiteral("txt"), QStringLiteral("a=b") }));
        QCOMPARE(document.items.at(0).commands.at(1), (Command { QStringLiteral("a:b"), QStringLiteral("c:d") }));
        QCOMPARE(document.items.at(0).commands.at(2),
                 (Command { QStringLiteral("dll"), QStringLiteral("regsvr32 $fs-001$") }));
        QCOMPARE(document.items.at(1).commands.at(1), (Command { QStringLiteral("x"), QString() }));
    }

    void commandsOfOneItemKeepTheirFileOrder()
    {
        MenuDocument document;
        const QByteArray bytes = menuFile({ QStringLiteral("a"), QStringLiteral("b") },
                                          { QStringLiteral("0002:=second"), QStringLiteral("0001:=x"),
                                            QStringLiteral("0002:=first"), QStringLiteral("0002:=third") });
        QVERIFY(read(bytes, document).ok());
        const QList<Command>& commands = document.items.at(1).commands;
        QCOMPARE(commands.size(), qsizetype(4));
        QCOMPARE(commands.at(1).command, QStringLiteral("second"));
        QCOMPARE(commands.at(2).command, QStringLiteral("first"));
        QCOMPARE(commands.at(3).command, QStringLiteral("third"));
    }

    void windows1252TextIsDecoded()
    {
        MenuDocument document;
        QByteArray bytes = menuFile({ QStringLiteral("Caf\u00E9 \u20AC"), QStringLiteral("\u201Cquoted\u201D") },
                                    { QStringLiteral("0002:txt=echo \u00E9") });
        QVERIFY(bytes.contains("Caf\xE9 \x80"));
        QVERIFY(read(bytes, document).ok());
        QCOMPARE(document.items.at(0).caption, QString::fromUtf16(u"Caf\u00E9 \u20AC"));
        QCOMPARE(document.items.at(1).caption, QString::fromUtf16(u"\u201Cquoted\u201D"));
        QCOMPARE(document.items.at(1).commands.at(1).command, QString::fromUtf16(u"echo \u00E9"));
    }

    void oneItemMenuHasLastIndexZero()
    {
        MenuDocument document;
        QVERIFY(read(menuFile({ QStringLiteral("only") }, {}), document).ok());
        QCOMPARE(document.lastIndex, qint16(0));
        QCOMPARE(countTopLevel(document), qint16(1));
    }

    void notAMenuFileGivesMinusOneAndTheMessage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("other text") << QByteArray("[Menu]\r\n");
        QTest::newRow("letter case") << QByteArray("KELV - menu\r\n[Menu]\r\n");
        QTest::newRow("trailing blank") << QByteArray("KELV - Menu \r\n[Menu]\r\n");
    }

    void notAMenuFileGivesMinusOneAndTheMessage()
    {
        QFETCH(QByteArray, bytes);
        MenuDocument document;
        const MenuReadResult result = read(bytes, document);
        QCOMPARE(result.code, MenuReadResult::NotAMenuFile);
        QCOMPARE(result.reason, QStringLiteral("This is not a valid KELV Menu file !"));
        QCOMPARE(notMenuFileMessage(), QStringLiteral("This is not a valid KELV Menu file !"));
    }

    void aByteOrderMarkIsNamedAsTheReason_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("encoding");
        QTest::newRow("UTF-8") << QByteArray("\xEF\xBB\xBFKELV - Menu\r\n[Menu]\r\n") << QStringLiteral("UTF-8");
        QTest::newRow("UTF-16 little-endian") << QByteArray("\xFF\xFEK\0E\0L\0V\0", 10) << QStringLiteral("UTF-16");
        QTest::newRow("UTF-16 big-endian") << QByteArray("\xFE\xFF\0K\0E", 6) << QStringLiteral("UTF-16");
    }

    void aByteOrderMarkIsNamedAsTheReason()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, encoding);
        MenuDocument document;
        const MenuReadResult result = read(bytes, document);
        QCOMPARE(result.code, MenuReadResult::NotAMenuFile);
        QCOMPARE(result.line, 1);
        QCOMPARE(result.reason,
                 QStringLiteral("This is not a valid KELV Menu file ! It starts with a %1 byte-order mark, but menu "
                                "files are Windows-1252 text: save it as Windows-1252 (ANSI), without the mark.")
                     .arg(encoding));
    }

    void giantItemNumbersAreShortenedInTheReason()
    {
        const QStringList items { QStringLiteral("a"), QStringLiteral("b") };
        MenuDocument document;
        compareFailure(read(menuFile(items, { QString(5000, QLatin1Char('9')) + QStringLiteral(":zip=x") }), document),
                       12, QStringLiteral("item number 99999999999999999999... (5000 characters) is too large"), 6);
        compareFailure(read(menuFile(items, { QString(5000, QLatin1Char('a')) + QStringLiteral(":zip=x") }), document),
                       12, QStringLiteral("item number \"aaaaaaaaaaaaaaaaaaaa...\" (5000 characters) is not a number"),
                       13);
        compareFailure(
            read(menuFile(items, { QString(4998, QLatin1Char('0')) + QStringLiteral("12:zip=x") }), document), 12,
            QStringLiteral("item number 00000000000000000000... (5000 characters) names no item"), 9);
        // Twenty characters are shown whole.
        compareFailure(read(menuFile(items, { QString(20, QLatin1Char('7')) + QStringLiteral(":zip=x") }), document),
                       12, QStringLiteral("item number 77777777777777777777 is too large"), 6);
    }

    void failuresGiveZeroWithLineAndReason()
    {
        const QStringList items { QStringLiteral("a"), QStringLiteral("b") };
        MenuDocument document;
        // Item lines are lines 5 and 6; command lines start at line 12.
        compareFailure(read(menuFile(items, { QStringLiteral("0001 zip notepad") }), document), 12,
                       QStringLiteral("command line has no \":\""), 5);
        compareFailure(read(menuFile(items, { QStringLiteral("0001:zip notepad") }), document), 12,
                       QStringLiteral("command line has no \"=\""), 5);
        compareFailure(
            read(menuFile(items, { QStringLiteral("0001:=x"), QStringLiteral("0001=zip:notepad") }), document), 13,
            QStringLiteral("command line has \"=\" before \":\""), 5);
        compareFailure(read(menuFile(items, { QStringLiteral("0012:zip=x") }), document), 12,
                       QStringLiteral("item number 0012 names no item"), 9);
        compareFailure(read(menuFile(items, { QStringLiteral("0000:zip=x") }), document), 12,
                       QStringLiteral("item number 0000 names no item"), 9);
        compareFailure(read(menuFile(items, { QStringLiteral("-1:zip=x") }), document), 12,
                       QStringLiteral("item number -1 names no item"), 9);
        compareFailure(read(menuFile(items, { QStringLiteral("abc:zip=x") }), document), 12,
                       QStringLiteral("item number \"abc\" is not a number"), 13);
        compareFailure(read(menuFile(items, { QStringLiteral(":zip=x") }), document), 12,
                       QStringLiteral("item number \"\" is not a number"), 13);
        compareFailure(read(menuFile(items, { QStringLiteral("99999:zip=x") }), document), 12,
                       QStringLiteral("item number 99999 is too large"), 6);
        compareFailure(read(menuFile({}, {}), document), 0, QStringLiteral("holds no item"), 9);

        QByteArray truncated = menuFile(items, { QStringLiteral("0001:zip=x") });
        truncated.chop(int(qstrlen("[/Commands]\r\n")));
        compareFailure(read(truncated, document), 0, QStringLiteral("ends before [/Commands]"), 62);
        compareFailure(read(QByteArray("KELV - Menu\r\n\r\n[Menu]\r\na\r\n"), document), 0,
                       QStringLiteral("ends before [/Menu]"), 62);
        compareFailure(read(QByteArray("KELV - Menu\r\n[Menu]\r\na\r\n[/Menu]\r\n"), document), 0,
                       QStringLiteral("ends before [Commands]"), 62);
    }

    void largestMenuReadsAndOneItemMoreFailsWithoutACrash()
    {
        QStringList itemLines;
        for (int i = 0; i < 32767; ++i) {
            itemLines.append(QStringLiteral("Item %1").arg(i));
        }
        MenuDocument document;
        QVERIFY(read(menuFile(itemLines, { QStringLiteral("32767:=last") }), document).ok());
        QCOMPARE(document.items.size(), qsizetype(32767));
        QCOMPARE(document.lastIndex, qint16(32766));
        QCOMPARE(document.items.last().key, QStringLiteral("E32766"));
        QCOMPARE(document.items.last().siblingOrder, qint16(32767));
        QCOMPARE(document.items.last().commands.at(1).command, QStringLiteral("last"));

        itemLines.append(QStringLiteral("one too many"));
        const MenuReadResult result = read(menuFile(itemLines, {}), document);
        compareFailure(result, 4 + 32768, QStringLiteral("holds more than 32767 items"), 6);
    }

    void aMenuOfManyPiecesReadsFromItsFileAsFromMemory()
    {
        // Well over the piece the reader takes at a time, with long lines and every kind of line end,
        // so that lines straddle the pieces (the line cursor's own tests split CR LF pairs too).
        QRandomGenerator random(17);
        QStringList itemLines;
        QStringList commandLines;
        for (int i = 0; i < 3000; ++i) {
            itemLines.append(markers(i == 0 ? 0 : random.bounded(0, std::min(i, 6))) + QStringLiteral("Item %1 ").arg(i)
                             + QString(random.bounded(0, 300), QLatin1Char('c')));
            commandLines.append(
                QStringLiteral("%1:*=%2").arg(i + 1).arg(QString(random.bounded(0, 900), QLatin1Char('x'))));
        }
        for (const char* lineEnd : { "\r\n", "\n", "\r" }) {
            QStringList lines { QStringLiteral("KELV - Menu"), QStringLiteral("[Menu]") };
            lines += itemLines;
            lines += { QStringLiteral("[/Menu]"), QStringLiteral("[Commands]") };
            lines += commandLines;
            lines += { QStringLiteral("[/Commands]"), QStringLiteral("text after the menu is ignored") };
            const QByteArray bytes = menuFileFromLines(lines, lineEnd);
            QVERIFY(bytes.size() > 1024 * 1024);
            MenuDocument document;
            QVERIFY(read(bytes, document).ok());
            QCOMPARE(document.items.size(), qsizetype(3000));
        }
    }

    void readingAFileLeavesNoHandleOpen()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QStringList broken = exampleMenuLines();
        broken[13] = QStringLiteral("0002 zip");
        file.write(menuFileFromLines(broken));
        file.close();

        const int before = openFileDescriptorCount();
        MenuDocument document;
        QCOMPARE(readMenuFile(path, document).code, MenuReadResult::Failed);
        QCOMPARE(openFileDescriptorCount(), before);

        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(menuFileFromLines(exampleMenuLines()));
        file.close();
        QVERIFY(readMenuFile(path, document).ok());
        QCOMPARE(openFileDescriptorCount(), before);
        QCOMPARE(document.items.size(), qsizetype(4));
    }

    void missingFileIsAnOtherError()
    {
        QTemporaryDir folder;
        MenuDocument document;
        const MenuReadResult result = readMenuFile(folder.filePath(QStringLiteral("absent.ini")), document);
        QCOMPARE(result.code, MenuReadResult::Failed);
        QCOMPARE(result.errorNumber, 53);
        QCOMPARE(result.reason, QStringLiteral("does not exist"));
        QVERIFY(result.fileMissing());
    }

    void aFolderIsRefused()
    {
        QTemporaryDir folder;
        MenuDocument document;
        const MenuReadResult result = readMenuFile(folder.path(), document);
        compareFailure(result, 0, QStringLiteral("is a folder, not a file"), 75);
        QVERIFY(!result.fileMissing());
    }

    void aDeviceIsRefusedWithoutReadingIt()
    {
        if (!QFileInfo::exists(QStringLiteral("/dev/zero"))) {
            QSKIP("this system has no /dev/zero");
        }
        // Read whole, it would grow until memory runs out.
        MenuDocument document;
        compareFailure(readMenuFile(QStringLiteral("/dev/zero"), document), 0,
                       QStringLiteral("is not a regular file (a device, a pipe or a socket)"), 75);
    }

    void aPipeIsRefusedWithoutWaitingForAWriter()
    {
#ifdef Q_OS_UNIX
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("pipe.ini"));
        QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
        // Opened for reading, a pipe waits for a writer: the reading runs beside the test, which opens
        // the pipe itself when the reader hangs, so that the test ends either way.
        MenuReadResult result;
        std::atomic<bool> finished { false };
        std::thread reader([&path, &result, &finished] {
            MenuDocument document;
            result = readMenuFile(path, document);
            finished = true;
        });
        QElapsedTimer timer;
        timer.start();
        while (!finished && timer.elapsed() < 10000) {
            QThread::msleep(10);
        }
        const bool waited = !finished;
        if (waited) {
            QFile writer(path);
            (void)writer.open(QIODevice::WriteOnly);
        }
        reader.join();
        QVERIFY2(!waited, "the reader waited for a writer");
        compareFailure(result, 0, QStringLiteral("is not a regular file (a device, a pipe or a socket)"), 75);
#else
        QSKIP("named pipes are a Unix thing");
#endif
    }

    void aFileLargerThanAnyMenuIsRefusedWithoutReadingIt()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("huge.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("KELV - Menu\r\n");
        // A sparse file: it takes no room on the disk.
        QVERIFY(file.resize(maximumMenuFileSize + 1));
        file.close();
        MenuDocument document;
        QElapsedTimer timer;
        timer.start();
        compareFailure(readMenuFile(path, document), 0,
                       QStringLiteral("is larger than any menu file can be (268435457 bytes, at most 268435456)"), 75);
        QVERIFY(timer.elapsed() < 5000);
    }

    void aLinkToAMenuFileReads()
    {
        QTemporaryDir folder;
        const QString link = folder.filePath(QStringLiteral("link.ini"));
        if (!QFile::link(QStringLiteral(KELV_EXAMPLES_DIR "/archive-tools.ini"), link)) {
            QSKIP("this system makes no links");
        }
        MenuDocument document;
        QVERIFY(readMenuFile(link, document).ok());
    }

    void bundledExampleMenuReads()
    {
        MenuDocument document;
        const MenuReadResult result = readMenuFile(QStringLiteral(KELV_EXAMPLES_DIR "/archive-tools.ini"), document);
        QVERIFY2(result.ok(), qPrintable(result.reason));
        QVERIFY(document.items.size() > 5);
    }
};

QTEST_GUILESS_MAIN(TestMenuFileReader)
#include "test_menufilereader.moc"
