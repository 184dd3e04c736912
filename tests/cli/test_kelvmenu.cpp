#include "core/aboutinfo.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

struct RunResult
{
    bool finished = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QByteArray("<cannot open ") + QFile::encodeName(path) + '>';
    }
    return file.readAll();
}

QByteArray fixtureBytes(const QString& name)
{
    return fileBytes(QStringLiteral(KELV_TEST_DATA_DIR "/cli/") + name);
}

/// The keys of every JSON object in the text, in the order they are written (a string literal
/// followed by ":"). QJsonObject sorts its keys, so the written order can only be seen here.
QStringList keysInWrittenOrder(const QByteArray& json)
{
    const QString text = QString::fromUtf8(json);
    QStringList keys;
    qsizetype i = 0;
    while (i < text.size()) {
        if (text.at(i) != QLatin1Char('"')) {
            ++i;
            continue;
        }
        QString literal;
        ++i;
        while (i < text.size() && text.at(i) != QLatin1Char('"')) {
            if (text.at(i) == QLatin1Char('\\')) {
                ++i;
            }
            if (i < text.size()) {
                literal += text.at(i);
            }
            ++i;
        }
        ++i;
        qsizetype next = i;
        while (next < text.size() && text.at(next).isSpace()) {
            ++next;
        }
        if (next < text.size() && text.at(next) == QLatin1Char(':')) {
            keys.append(literal);
        }
    }
    return keys;
}

QStringList itemKeys(int commandCount)
{
    QStringList keys { QStringLiteral("key"),     QStringLiteral("caption"),        QStringLiteral("level"),
                       QStringLiteral("parent"),  QStringLiteral("childCount"),     QStringLiteral("siblingOrder"),
                       QStringLiteral("copyKey"), QStringLiteral("copiesCommands"), QStringLiteral("commands") };
    for (int i = 0; i < commandCount; ++i) {
        keys << QStringLiteral("extension") << QStringLiteral("command");
    }
    return keys;
}

QJsonObject command(const QString& extension, const QString& text)
{
    return QJsonObject { { QStringLiteral("extension"), extension }, { QStringLiteral("command"), text } };
}

} // namespace

class TestKelvMenu : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString& name) const { return m_dir->filePath(name); }

    /// Runs kelvmenu in the temporary folder, so that the file names it prints are the ones given.
    RunResult run(const QStringList& arguments) const
    {
        RunResult result;
        QProcess process;
        process.setWorkingDirectory(m_dir->path());
        process.start(QStringLiteral(KELVMENU_PATH), arguments);
        result.finished = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    /// Runs kelvmenu with its standard output going to `outputFile`.
    RunResult runInto(const QString& outputFile, const QStringList& arguments) const
    {
        RunResult result;
        QProcess process;
        process.setWorkingDirectory(m_dir->path());
        process.setStandardOutputFile(outputFile);
        process.start(QStringLiteral(KELVMENU_PATH), arguments);
        result.finished = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
        result.err = process.readAllStandardError();
        return result;
    }

    QJsonObject dumpedDocument(const QStringList& arguments)
    {
        const RunResult result = run(arguments);
        if (!result.finished || result.exitCode != 0 || !result.err.isEmpty()) {
            qWarning("kelvmenu %s failed: %s", qPrintable(arguments.join(QLatin1Char(' '))), result.err.constData());
            return {};
        }
        QJsonParseError error;
        const QJsonDocument json = QJsonDocument::fromJson(result.out, &error);
        if (error.error != QJsonParseError::NoError) {
            qWarning("not JSON: %s", qPrintable(error.errorString()));
            return {};
        }
        return json.object();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(QStringLiteral(KELVMENU_PATH)), KELVMENU_PATH); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        const QDir fixtures(QStringLiteral(KELV_TEST_DATA_DIR "/cli"));
        const QStringList names = fixtures.entryList(QDir::Files);
        QVERIFY(!names.isEmpty());
        for (const QString& name : names) {
            QVERIFY(QFile::copy(fixtures.filePath(name), path(name)));
            QFile::setPermissions(path(name), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        }
    }

    void cleanup() { m_dir.reset(); }

    // dump

    void dumpPrintsEveryItemWithItsTreeNumbersAndCommands()
    {
        const QJsonObject document = dumpedDocument({ QStringLiteral("dump"), QStringLiteral("archive.ini") });
        QVERIFY(!document.isEmpty());
        QVERIFY(document.value(QStringLiteral("lastIndex")).isDouble());
        QCOMPARE(document.value(QStringLiteral("lastIndex")).toInt(), 3);
        const QJsonArray items = document.value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 4);

        const QJsonObject archive = items.at(0).toObject();
        QVERIFY(archive.value(QStringLiteral("key")).isString());
        QVERIFY(archive.value(QStringLiteral("level")).isDouble());
        QVERIFY(archive.value(QStringLiteral("copiesCommands")).isBool());
        QVERIFY(archive.value(QStringLiteral("commands")).isArray());
        QCOMPARE(archive.value(QStringLiteral("key")).toString(), QStringLiteral("E0"));
        QCOMPARE(archive.value(QStringLiteral("caption")).toString(), QStringLiteral("Archive"));
        QCOMPARE(archive.value(QStringLiteral("level")).toInt(), 0);
        QCOMPARE(archive.value(QStringLiteral("parent")).toInt(), -1);
        QCOMPARE(archive.value(QStringLiteral("childCount")).toInt(), 2);
        QCOMPARE(archive.value(QStringLiteral("siblingOrder")).toInt(), 1);
        QCOMPARE(archive.value(QStringLiteral("copyKey")).toString(), QStringLiteral("-1"));
        QCOMPARE(archive.value(QStringLiteral("copiesCommands")).toBool(), false);
        QCOMPARE(archive.value(QStringLiteral("commands")).toArray(), QJsonArray());

        const QJsonObject unpack = items.at(2).toObject();
        QCOMPARE(unpack.value(QStringLiteral("key")).toString(), QStringLiteral("E2"));
        QCOMPARE(unpack.value(QStringLiteral("caption")).toString(), QStringLiteral("Unpack"));
        QCOMPARE(unpack.value(QStringLiteral("level")).toInt(), 1);
        QCOMPARE(unpack.value(QStringLiteral("parent")).toInt(), 0);
        QCOMPARE(unpack.value(QStringLiteral("childCount")).toInt(), 0);
        QCOMPARE(unpack.value(QStringLiteral("siblingOrder")).toInt(), 2);
        // Without detection the file's copy of Pack's commands stays the item's own.
        QCOMPARE(unpack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("-1"));
        QCOMPARE(unpack.value(QStringLiteral("copiesCommands")).toBool(), false);
        const QJsonArray packCommands { command(QStringLiteral("zip"), QStringLiteral("pack.exe a $fs-001$")),
                                        command(QStringLiteral("rar"), QStringLiteral("pack.exe r $fs-001$")) };
        QCOMPARE(unpack.value(QStringLiteral("commands")).toArray(), packCommands);

        const QJsonObject remove = items.at(3).toObject();
        QCOMPARE(remove.value(QStringLiteral("parent")).toInt(), -1);
        QCOMPARE(remove.value(QStringLiteral("siblingOrder")).toInt(), 2);
        QCOMPARE(remove.value(QStringLiteral("commands")).toArray(),
                 QJsonArray { command(QString(), QStringLiteral("del $fs-001$")) });
    }

    void dumpWritesFieldsInFixedOrder()
    {
        const RunResult result = run({ QStringLiteral("dump"), QStringLiteral("archive.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QStringList expected { QStringLiteral("lastIndex"), QStringLiteral("items") };
        for (const int commandCount : { 0, 2, 2, 1 }) {
            expected += itemKeys(commandCount);
        }
        QCOMPARE(keysInWrittenOrder(result.out), expected);
        QVERIFY(result.out.startsWith("{"));
    }

    void dumpWithDetectLinksShowsLinks()
    {
        const QJsonObject document = dumpedDocument(
            { QStringLiteral("dump"), QStringLiteral("--detect-links"), QStringLiteral("archive.ini") });
        const QJsonArray items = document.value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 4);
        const QJsonObject pack = items.at(1).toObject();
        QCOMPARE(pack.value(QStringLiteral("copiesCommands")).toBool(), false);
        QCOMPARE(pack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("-1"));
        const QJsonObject unpack = items.at(2).toObject();
        QCOMPARE(unpack.value(QStringLiteral("copiesCommands")), QJsonValue(true));
        QCOMPARE(unpack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E1"));
        // A link keeps a full copy of its target's commands.
        QCOMPARE(unpack.value(QStringLiteral("commands")).toArray().size(), 2);
        QCOMPARE(items.at(3).toObject().value(QStringLiteral("copiesCommands")).toBool(), false);
    }

    void dumpPrintsWindows1252TextAsUtf8()
    {
        const RunResult result = run({ QStringLiteral("dump"), QStringLiteral("accents.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains("\"Caf\xC3\xA9\""));
        QVERIFY(result.out.contains("Prix 5 \xE2\x82\xAC"));

        const QJsonArray items = QJsonDocument::fromJson(result.out).object().value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 3);
        QCOMPARE(items.at(0).toObject().value(QStringLiteral("caption")).toString(), QStringLiteral("Caf\u00e9"));
        QCOMPARE(items.at(1).toObject().value(QStringLiteral("caption")).toString(), QStringLiteral("Prix 5 \u20ac"));
        QCOMPARE(items.at(2).toObject().value(QStringLiteral("caption")).toString(),
                 QStringLiteral("\u201cQuoted\u201d \\ path"));
    }

    void dumpEscapesQuotesBackslashesAndTabs()
    {
        const RunResult result = run({ QStringLiteral("dump"), QStringLiteral("accents.ini") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains("\"notepad.exe \\\"C:\\\\Donn\xC3\xA9"
                                    "es\\\\$fn-001$\\\"\""));
        QVERIFY(result.out.contains("\"echo 5 \xE2\x82\xAC\\tdone\""));
        const QJsonArray items = QJsonDocument::fromJson(result.out).object().value(QStringLiteral("items")).toArray();
        QCOMPARE(items.at(0).toObject().value(QStringLiteral("commands")).toArray(),
                 QJsonArray {
                     command(QStringLiteral("txt"), QStringLiteral("notepad.exe \"C:\\Donn\u00e9es\\$fn-001$\"")) });
        QCOMPARE(items.at(1).toObject().value(QStringLiteral("commands")).toArray(),
                 QJsonArray { command(QString(), QStringLiteral("echo 5 \u20ac\tdone")) });
    }

    // format

    void formatRewritesFileInPlaceInEditorLayout()
    {
        const RunResult result = run({ QStringLiteral("format"), QStringLiteral("messy.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.isEmpty());
        QVERIFY(result.err.isEmpty());
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), fixtureBytes(QStringLiteral("messy-formatted.ini")));
    }

    void formatWritesToOutputAndLeavesSourceAlone()
    {
        const RunResult result = run({ QStringLiteral("format"), QStringLiteral("messy.ini"), QStringLiteral("-o"),
                                       QStringLiteral("clean.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(fileBytes(path(QStringLiteral("clean.ini"))), fixtureBytes(QStringLiteral("messy-formatted.ini")));
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), fixtureBytes(QStringLiteral("messy.ini")));
    }

    void formatAcceptsLongOutputOptionBeforeFile()
    {
        const RunResult result = run({ QStringLiteral("format"), QStringLiteral("--output"),
                                       QStringLiteral("clean.ini"), QStringLiteral("messy.ini") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(fileBytes(path(QStringLiteral("clean.ini"))), fixtureBytes(QStringLiteral("messy-formatted.ini")));
    }

    void formatKeepsCanonicalFilesByteForByte_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("detectLinks");
        QTest::newRow("archive") << QStringLiteral("archive.ini") << false;
        // Links are written as their target's commands, so detection changes nothing in the file.
        QTest::newRow("archive with links") << QStringLiteral("archive.ini") << true;
        QTest::newRow("Windows-1252 text") << QStringLiteral("accents.ini") << false;
        QTest::newRow("formatted") << QStringLiteral("messy-formatted.ini") << true;
    }

    void formatKeepsCanonicalFilesByteForByte()
    {
        QFETCH(QString, file);
        QFETCH(bool, detectLinks);
        QStringList arguments { QStringLiteral("format") };
        if (detectLinks) {
            arguments << QStringLiteral("--detect-links");
        }
        arguments << file << QStringLiteral("-o") << QStringLiteral("out.ini");
        const RunResult result = run(arguments);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(fileBytes(path(QStringLiteral("out.ini"))), fixtureBytes(file));
    }

    void formatKeepsATopLevelItemWithAnEmptyCaption()
    {
        // A stray marker on a line: a top-level item with an empty caption, which holds a command.
        QFile file(path(QStringLiteral("stray.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\nFirst\r\n\xB7\r\nLast\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n"
                   "0002:=two\r\n0003:=three\r\n\r\n[/Commands]\r\n");
        file.close();
        const RunResult result = run(
            { QStringLiteral("format"), QStringLiteral("stray.ini"), QStringLiteral("-o"), QStringLiteral("out.ini") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(fileBytes(path(QStringLiteral("out.ini"))).contains("\r\nFirst\r\n\xB7\r\nLast\r\n"),
                 fileBytes(path(QStringLiteral("out.ini"))));
        QCOMPARE(dumpedDocument({ QStringLiteral("dump"), QStringLiteral("out.ini") }),
                 dumpedDocument({ QStringLiteral("dump"), QStringLiteral("stray.ini") }));
        QCOMPARE(dumpedDocument({ QStringLiteral("dump"), QStringLiteral("out.ini") })
                     .value(QStringLiteral("items"))
                     .toArray()
                     .size(),
                 3);
    }

    void formatToUnwritablePathFailsWithFive_data()
    {
        QTest::addColumn<QString>("output");
        QTest::newRow("missing folder") << QStringLiteral("no-such-folder/out.ini");
        QTest::newRow("existing folder") << QStringLiteral("a-folder");
    }

    void formatToUnwritablePathFailsWithFive()
    {
        QFETCH(QString, output);
        QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("a-folder")));
        const RunResult result
            = run({ QStringLiteral("format"), QStringLiteral("messy.ini"), QStringLiteral("-o"), output });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 5);
        QVERIFY(result.out.isEmpty());
        QVERIFY2(result.err.startsWith(QFile::encodeName(output) + ": cannot write the menu file: "), result.err);
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), fixtureBytes(QStringLiteral("messy.ini")));
        QVERIFY(QFileInfo(path(QStringLiteral("a-folder"))).isDir());
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("no-such-folder"))));
    }

    void aWriteThatRunsOutOfRoomTellsTheSystemsReason()
    {
#ifdef Q_OS_UNIX
        // A limit of a few KiB on the size of written files stands in for a full disk: the shell ignores
        // the signal the limit sends, so the write fails with the system's reason instead.
        QFile big(path(QStringLiteral("big.ini")));
        QVERIFY(big.open(QIODevice::WriteOnly));
        big.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\n" + QByteArray(100000, 'a')
                  + "\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n\r\n[/Commands]\r\n");
        big.close();
        QProcess process;
        process.setWorkingDirectory(m_dir->path());
        process.start(QStringLiteral("/bin/sh"),
                      { QStringLiteral("-c"),
                        QStringLiteral("trap '' XFSZ; ulimit -f 16; exec \"$0\" format big.ini -o out.ini"),
                        QStringLiteral(KELVMENU_PATH) });
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 5);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("out.ini: cannot write the menu file: Path/File access error: File too large\n"));
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.ini"))));
#else
        QSKIP("file size limits are a Unix thing");
#endif
    }

    void formatOverWriteProtectedFileLeavesItUntouched()
    {
        const QString locked = path(QStringLiteral("locked.ini"));
        QVERIFY(QFile::copy(path(QStringLiteral("messy.ini")), locked));
        QVERIFY(
            QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther));
        if (QFile probe(locked); probe.open(QIODevice::ReadWrite)) {
            QSKIP("this user may write to write-protected files (running as root)");
        }
        const RunResult result = run({ QStringLiteral("format"), QStringLiteral("archive.ini"), QStringLiteral("-o"),
                                       QStringLiteral("locked.ini") });
        QCOMPARE(result.exitCode, 5);
        QVERIFY2(result.err.startsWith("locked.ini: cannot write the menu file: "), result.err);
        QCOMPARE(fileBytes(locked), fixtureBytes(QStringLiteral("messy.ini")));
    }

    void formatOfBrokenFileWritesNothing_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("not a menu file") << QStringLiteral("broken-magic.ini") << 3;
        QTest::newRow("broken command line") << QStringLiteral("no-equals.ini") << 4;
    }

    void formatOfBrokenFileWritesNothing()
    {
        QFETCH(QString, file);
        QFETCH(int, exitCode);
        const RunResult inPlace = run({ QStringLiteral("format"), file });
        QCOMPARE(inPlace.exitCode, exitCode);
        QCOMPARE(fileBytes(path(file)), fixtureBytes(file));
        const RunResult toOutput
            = run({ QStringLiteral("format"), file, QStringLiteral("-o"), QStringLiteral("out.ini") });
        QCOMPARE(toOutput.exitCode, exitCode);
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.ini"))));
    }

    // check

    void checkReportsValidFilesWithCounts()
    {
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("archive.ini"),
                                       QStringLiteral("accents.ini"), QStringLiteral("messy.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out,
                 QByteArray("archive.ini: ok (4 items, 5 commands)\n"
                            "accents.ini: ok (3 items, 2 commands)\n"
                            "messy.ini: ok (6 items, 5 commands)\n"));
        // Readable files with problems are still valid: their warnings go to standard error.
        QCOMPARE(result.err,
                 QByteArray("accents.ini:13: warning: item 1 \"Caf\xc3\xa9\", command 1: unknown variable "
                            "\"$fn-001$\"\n"
                            "messy.ini:13: warning: item 6 \"Stray\": 2 stray markers before the caption: a level "
                            "takes three markers, so they are dropped when the file is read\n"));
    }

    void checkWarnsOfEveryProblemWithItsLine()
    {
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("problems.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("problems.ini: ok (6 items, 6 commands)\n"));
        const QList<QByteArray> expected {
            "problems.ini:7: warning: item 3 \"Archive > Pack\": has the same caption as its sibling item 2",
            "problems.ini:8: warning: item 4 \"Lost\": its line is 2 levels deeper than the item line before it, so "
            "it is read as a top-level item",
            "problems.ini:9: warning: item 5 \"Tools\": 2 stray markers before the caption: a level takes three "
            "markers, so they are dropped when the file is read",
            "problems.ini:10: warning: item 6 \"Tools > \": has an empty caption",
            "problems.ini:17: warning: item 3 \"Archive > Pack\", command 1: unknown variable \"$fs-01$\"",
            "problems.ini:18: warning: item 4 \"Lost\", command 1: script parameter 002 is given more than once in "
            "one call of the script runner",
            "problems.ini:18: warning: item 4 \"Lost\", command 1: script parameter number 031 is not one of 001 to "
            "030",
            "problems.ini:19: warning: item 5 \"Tools\", command 1: odd number of \"$\" (1): the last one opens a "
            "variable that is never closed",
            "problems.ini:20: warning: item 6 \"Tools > \", command 1: the command is empty",
            "problems.ini:21: warning: item 2 \"Archive > Pack\", command 2: the script runner is called with "
            "\"$exepath$\\RUN.BAT\", which is no .tvs or .tvp script",
        };
        QCOMPARE(result.err.split('\n'), expected + QList<QByteArray> { QByteArray() });
    }

    void checkNamesAnItemDeepDownByItsLastCaptions()
    {
        // An item is named by its line, its number and no more than its last three captions.
        const auto line
            = [](int level, const QByteArray& caption) { return QByteArray(level * 3, '\xb7') + caption + "\r\n"; };
        QFile deep(path(QStringLiteral("deep.ini")));
        QVERIFY(deep.open(QIODevice::WriteOnly));
        deep.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\n" + line(0, "One") + line(1, "Two") + line(2, "Three")
                   + line(3, "") + line(4, "Five") + line(5, "Far") + line(1, "Back") + line(5, "Jump")
                   + "\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n0006:=del $fs-01$\r\n\r\n[/Commands]\r\n");
        deep.close();
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("deep.ini") });
        QCOMPARE(result.exitCode, 0);
        const QList<QByteArray> expected {
            "deep.ini:8: warning: item 4 \"\xe2\x80\xa6 > Two > Three > \": has an empty caption",
            "deep.ini:12: warning: item 8 \"\xe2\x80\xa6 >  > Five > Jump\": its line is 4 levels deeper than the "
            "item line before it, so it is read as a child of item 5 \"\xe2\x80\xa6 > Three >  > Five\"",
            "deep.ini:18: warning: item 6 \"\xe2\x80\xa6 >  > Five > Far\", command 1: unknown variable \"$fs-01$\"",
        };
        QCOMPARE(result.err.split('\n'), expected + QList<QByteArray> { QByteArray() });
    }

    void checkStrictFailsOnWarnings_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<int>("exitCodeStrict");
        QTest::newRow("no problems") << QStringList { QStringLiteral("archive.ini") } << 0 << 0;
        QTest::newRow("problems") << QStringList { QStringLiteral("problems.ini") } << 0 << 1;
        QTest::newRow("one file with problems")
            << QStringList { QStringLiteral("archive.ini"), QStringLiteral("messy.ini") } << 0 << 1;
        QTest::newRow("invalid") << QStringList { QStringLiteral("no-colon.ini") } << 1 << 1;
        QTest::newRow("invalid and problems")
            << QStringList { QStringLiteral("problems.ini"), QStringLiteral("no-colon.ini") } << 1 << 1;
    }

    void checkStrictFailsOnWarnings()
    {
        QFETCH(QStringList, files);
        QFETCH(int, exitCode);
        QFETCH(int, exitCodeStrict);
        const RunResult plain = run(QStringList { QStringLiteral("check") } + files);
        QVERIFY(plain.finished);
        QCOMPARE(plain.exitCode, exitCode);
        for (const QStringList& arguments :
             { QStringList { QStringLiteral("check"), QStringLiteral("--strict") } + files,
               QStringList { QStringLiteral("check") } + files + QStringList { QStringLiteral("--strict") } }) {
            const RunResult strict = run(arguments);
            QVERIFY(strict.finished);
            QCOMPARE(strict.exitCode, exitCodeStrict);
            // The option changes the exit code only.
            QCOMPARE(strict.out, plain.out);
            QCOMPARE(strict.err, plain.err);
        }
    }

    void everyBundledExampleMenuPassesTheStrictCheck()
    {
        // The example menus are installed for users to learn from: every one of them opens and draws
        // no warning.
        const QDir examples(QStringLiteral(KELV_EXAMPLES_DIR));
        const QStringList names = examples.entryList(QDir::Files, QDir::Name);
        QVERIFY(names.size() >= 2);
        for (const QString& name : names) {
            const QString file = examples.filePath(name);
            const RunResult result = run({ QStringLiteral("check"), QStringLiteral("--strict"), file });
            QVERIFY2(result.finished, qPrintable(name));
            QVERIFY2(result.err.isEmpty(), result.err.constData());
            QCOMPARE(result.exitCode, 0);
            QVERIFY2(result.out.startsWith(QFile::encodeName(file) + ": ok ("), result.out.constData());
        }
    }

    void checkCountsOneItemAndOneCommandInTheSingular()
    {
        QFile one(path(QStringLiteral("one.ini")));
        QVERIFY(one.open(QIODevice::WriteOnly));
        one.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\nDelete\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n"
                  "0001:=del $fs-001$\r\n\r\n[/Commands]\r\n");
        one.close();
        QFile bare(path(QStringLiteral("bare.ini")));
        QVERIFY(bare.open(QIODevice::WriteOnly));
        bare.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\nOpen\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n[/Commands]\r\n");
        bare.close();
        const RunResult result
            = run({ QStringLiteral("check"), QStringLiteral("one.ini"), QStringLiteral("bare.ini") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.err.isEmpty(), result.err);
        QCOMPARE(result.out,
                 QByteArray("one.ini: ok (1 item, 1 command)\n"
                            "bare.ini: ok (1 item, 0 commands)\n"));
    }

    void checkReportsWhereAndWhyAFileIsInvalid_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("magic line in other case")
            << QStringLiteral("broken-magic.ini")
            << QByteArray("broken-magic.ini:1: This is not a valid KELV Menu file !");
        QTest::newRow("empty file") << QStringLiteral("empty.ini")
                                    << QByteArray("empty.ini:1: This is not a valid KELV Menu file !");
        QTest::newRow("no =") << QStringLiteral("no-equals.ini")
                              << QByteArray("no-equals.ini:14: command line has no \"=\"");
        QTest::newRow("no :") << QStringLiteral("no-colon.ini")
                              << QByteArray("no-colon.ini:13: command line has no \":\"");
        QTest::newRow("= before :") << QStringLiteral("equals-before-colon.ini")
                                    << QByteArray("equals-before-colon.ini:13: command line has \"=\" before \":\"");
        QTest::newRow("item number not a number")
            << QStringLiteral("not-a-number.ini")
            << QByteArray("not-a-number.ini:14: item number \"00a1\" is not a number");
        QTest::newRow("item number beyond the items")
            << QStringLiteral("names-no-item.ini")
            << QByteArray("names-no-item.ini:13: item number 0012 names no item");
        QTest::newRow("item number zero")
            << QStringLiteral("item-zero.ini") << QByteArray("item-zero.ini:13: item number 0000 names no item");
        QTest::newRow("item number too large")
            << QStringLiteral("too-large.ini") << QByteArray("too-large.ini:13: item number 99999 is too large");
        QTest::newRow("tag with trailing blank")
            << QStringLiteral("tag-with-blank.ini") << QByteArray("tag-with-blank.ini: ends before [Menu]");
        QTest::newRow("no [/Menu]") << QStringLiteral("no-end-menu.ini")
                                    << QByteArray("no-end-menu.ini: ends before [/Menu]");
        QTest::newRow("no [Commands]") << QStringLiteral("no-commands.ini")
                                       << QByteArray("no-commands.ini: ends before [Commands]");
        QTest::newRow("no [/Commands]") << QStringLiteral("no-end-commands.ini")
                                        << QByteArray("no-end-commands.ini: ends before [/Commands]");
        QTest::newRow("no item") << QStringLiteral("no-items.ini") << QByteArray("no-items.ini: holds no item");
    }

    void checkReportsWhereAndWhyAFileIsInvalid()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, message);
        const RunResult result = run({ QStringLiteral("check"), file });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(result.err, message + '\n');
    }

    void checkReportsFileThatCannotBeOpened()
    {
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("missing.ini") });
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, QByteArray("missing.ini: does not exist\n"));
    }

    void checkRefusesWhatIsNoRegularFileOrTooLarge()
    {
        QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("folder.ini")));
        QFile huge(path(QStringLiteral("huge.ini")));
        QVERIFY(huge.open(QIODevice::WriteOnly));
        QVERIFY(huge.resize(qint64(256) * 1024 * 1024 + 1)); // sparse: no room on the disk
        huge.close();
        QStringList files { QStringLiteral("folder.ini"), QStringLiteral("huge.ini") };
        QByteArray expected("folder.ini: is a folder, not a file\n"
                            "huge.ini: is larger than any menu file can be (268435457 bytes, at most 268435456)\n");
        if (QFileInfo::exists(QStringLiteral("/dev/zero"))) {
            files.append(QStringLiteral("/dev/zero"));
            expected += "/dev/zero: is not a regular file (a device, a pipe or a socket)\n";
        }
#ifdef Q_OS_UNIX
        QVERIFY(::mkfifo(QFile::encodeName(path(QStringLiteral("pipe.ini"))).constData(), 0600) == 0);
        files.append(QStringLiteral("pipe.ini"));
        expected += "pipe.ini: is not a regular file (a device, a pipe or a socket)\n";
#endif
        const RunResult result = run(QStringList { QStringLiteral("check") } + files);
        QVERIFY2(result.finished, "kelvmenu check did not end");
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, expected);

        const RunResult dump = run({ QStringLiteral("dump"), QStringLiteral("huge.ini") });
        QCOMPARE(dump.exitCode, 4);
        QVERIFY(dump.out.isEmpty());
    }

    void aByteOrderMarkIsNamed()
    {
        QFile file(path(QStringLiteral("bom.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("\xEF\xBB\xBF" + fixtureBytes(QStringLiteral("archive.ini")));
        file.close();
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("bom.ini") });
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err,
                 QByteArray("bom.ini:1: This is not a valid KELV Menu file ! It starts with a UTF-8 "
                            "byte-order mark, but menu files are Windows-1252 text: save it as "
                            "Windows-1252 (ANSI), without the mark.\n"));
        QCOMPARE(run({ QStringLiteral("dump"), QStringLiteral("bom.ini") }).exitCode, 3);
    }

    void checkWarnsAboutUtf8Text()
    {
        // The bytes of "Café" and "€" in UTF-8: valid, but read as Windows-1252 they are garbled.
        QFile file(path(QStringLiteral("utf8.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\nCaf\xC3\xA9\r\n\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n"
                   "0001:=echo \xE2\x82\xAC\r\n\r\n[/Commands]\r\n");
        file.close();
        const RunResult result = run({ QStringLiteral("check"), QStringLiteral("utf8.ini"),
                                       QStringLiteral("accents.ini"), QStringLiteral("archive.ini") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out,
                 QByteArray("utf8.ini: ok (1 item, 1 command)\n"
                            "accents.ini: ok (3 items, 2 commands)\n"
                            "archive.ini: ok (4 items, 5 commands)\n"));
        // Windows-1252 accents (accents.ini) and plain ASCII (archive.ini) give no UTF-8 warning; the
        // one of accents.ini is about a variable.
        QCOMPARE(result.err,
                 QByteArray("utf8.ini: warning: the file looks like UTF-8 text, but menu files are "
                            "Windows-1252: \"\xC3\xA9\" reads as \"\xC3\x83\xC2\xA9\"\n"
                            "accents.ini:13: warning: item 1 \"Caf\xC3\xA9\", command 1: unknown variable "
                            "\"$fn-001$\"\n"));
        // Under --strict the UTF-8 warning alone fails the check.
        QCOMPARE(run({ QStringLiteral("check"), QStringLiteral("--strict"), QStringLiteral("utf8.ini") }).exitCode, 1);
    }

    void checkGoesThroughAllFiles()
    {
        const RunResult result
            = run({ QStringLiteral("check"), QStringLiteral("archive.ini"), QStringLiteral("no-colon.ini"),
                    QStringLiteral("broken-magic.ini"), QStringLiteral("accents.ini") });
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out,
                 QByteArray("archive.ini: ok (4 items, 5 commands)\n"
                            "accents.ini: ok (3 items, 2 commands)\n"));
        QCOMPARE(result.err,
                 QByteArray("no-colon.ini:13: command line has no \":\"\n"
                            "broken-magic.ini:1: This is not a valid KELV Menu file !\n"
                            "accents.ini:13: warning: item 1 \"Caf\xc3\xa9\", command 1: unknown variable "
                            "\"$fn-001$\"\n"));
    }

    // tree

    void treeIndentsByLevelAndShowsLinks()
    {
        const RunResult result = run({ QStringLiteral("tree"), QStringLiteral("archive.ini") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        QCOMPARE(result.out,
                 QByteArray("Archive  [E0]  0 commands\n"
                            "  Pack  [E1]  2 commands\n"
                            "  Unpack  [E2]  2 commands -> E1\n"
                            "Delete  [E3]  1 command\n"));
    }

    void treeFollowsTheTreeOfALenientFile()
    {
        const RunResult result = run({ QStringLiteral("tree"), QStringLiteral("messy.ini") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out,
                 QByteArray("Tools  [E0]  0 commands\n"
                            "  Text  [E1]  0 commands\n"
                            "    Edit  [E2]  2 commands\n"
                            "    View  [E3]  1 command\n"
                            "  Images  [E4]  1 command\n"
                            "Stray  [E5]  1 command\n"));
    }

    void treePrintsWindows1252TextAsUtf8()
    {
        const RunResult result = run({ QStringLiteral("tree"), QStringLiteral("accents.ini") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out,
                 QByteArray("Caf\xC3\xA9  [E0]  1 command\n"
                            "  Prix 5 \xE2\x82\xAC  [E1]  1 command\n"
                            "  \xE2\x80\x9CQuoted\xE2\x80\x9D \\ path  [E2]  0 commands\n"));
    }

    // output that cannot be written

    void aFullStandardOutputIsAWriteError_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("dump") << QStringList { QStringLiteral("dump"), QStringLiteral("archive.ini") };
        QTest::newRow("tree") << QStringList { QStringLiteral("tree"), QStringLiteral("archive.ini") };
        QTest::newRow("check") << QStringList { QStringLiteral("check"), QStringLiteral("archive.ini") };
        QTest::newRow("check of an invalid file")
            << QStringList { QStringLiteral("check"), QStringLiteral("archive.ini"), QStringLiteral("no-colon.ini") };
        QTest::newRow("edit --dump") << QStringList { QStringLiteral("edit"), QStringLiteral("--dump"),
                                                      QStringLiteral("archive.ini"), QStringLiteral("empty-ops.json") };
        QTest::newRow("help") << QStringList { QStringLiteral("--help") };
    }

    void aFullStandardOutputIsAWriteError()
    {
        QFETCH(QStringList, arguments);
        if (!QFileInfo::exists(QStringLiteral("/dev/full"))) {
            QSKIP("this system has no /dev/full");
        }
        QFile ops(path(QStringLiteral("empty-ops.json")));
        QVERIFY(ops.open(QIODevice::WriteOnly));
        ops.write("[]");
        ops.close();
        const RunResult result = runInto(QStringLiteral("/dev/full"), arguments);
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 5);
        QVERIFY2(result.err.endsWith("kelvmenu: cannot write to standard output: No space left on device\n"),
                 result.err);
    }

    void aLargeListingToAFullOutputIsReportedOnce()
    {
        if (!QFileInfo::exists(QStringLiteral("/dev/full"))) {
            QSKIP("this system has no /dev/full");
        }
        // Far more than any buffer holds: the failure shows while writing, not only at the end.
        QFile file(path(QStringLiteral("big.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("KELV - Menu\r\n\r\n[Menu]\r\n\r\n");
        for (int i = 0; i < 20000; ++i) {
            file.write("Item with a caption of some length " + QByteArray::number(i) + "\r\n");
        }
        file.write("\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n\r\n[/Commands]\r\n");
        file.close();
        for (const QString& command : { QStringLiteral("dump"), QStringLiteral("tree") }) {
            const RunResult result = runInto(QStringLiteral("/dev/full"), { command, QStringLiteral("big.ini") });
            QCOMPARE(result.exitCode, 5);
            QCOMPARE(result.err, QByteArray("kelvmenu: cannot write to standard output: No space left on device\n"));
        }
    }

    // exit codes and usage

    void readFailuresGiveTheirExitCodes_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("message");
        for (const QString& command : { QStringLiteral("dump"), QStringLiteral("tree"), QStringLiteral("format") }) {
            const QByteArray name = command.toLatin1();
            QTest::newRow(name + " not a menu file")
                << command << QStringLiteral("broken-magic.ini") << 3
                << QByteArray("broken-magic.ini:1: This is not a valid KELV Menu file !\n");
            QTest::newRow(name + " broken line")
                << command << QStringLiteral("names-no-item.ini") << 4
                << QByteArray("names-no-item.ini:13: item number 0012 names no item\n");
            QTest::newRow(name + " early end") << command << QStringLiteral("no-end-commands.ini") << 4
                                               << QByteArray("no-end-commands.ini: ends before [/Commands]\n");
            QTest::newRow(name + " missing file")
                << command << QStringLiteral("missing.ini") << 4 << QByteArray("missing.ini: does not exist\n");
        }
    }

    void readFailuresGiveTheirExitCodes()
    {
        QFETCH(QString, command);
        QFETCH(QString, file);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, message);
        const RunResult result = run({ command, file });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY(result.out.isEmpty());
        QVERIFY2(result.err.startsWith(message), result.err);
    }

    void usageErrorsGiveTwo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << QStringList();
        QTest::newRow("unknown command") << QStringList { QStringLiteral("show"), QStringLiteral("archive.ini") };
        QTest::newRow("option before command")
            << QStringList { QStringLiteral("--detect-links"), QStringLiteral("dump") };
        QTest::newRow("Qt option") << QStringList { QStringLiteral("-platform"), QStringLiteral("offscreen") };
        QTest::newRow("Qt option after command")
            << QStringList { QStringLiteral("dump"), QStringLiteral("-platform"), QStringLiteral("offscreen"),
                             QStringLiteral("archive.ini") };
        QTest::newRow("dump unknown option")
            << QStringList { QStringLiteral("dump"), QStringLiteral("--links"), QStringLiteral("archive.ini") };
        QTest::newRow("dump without file") << QStringList { QStringLiteral("dump") };
        QTest::newRow("dump two files") << QStringList { QStringLiteral("dump"), QStringLiteral("archive.ini"),
                                                         QStringLiteral("messy.ini") };
        QTest::newRow("format without file")
            << QStringList { QStringLiteral("format"), QStringLiteral("--detect-links") };
        QTest::newRow("format -o without value")
            << QStringList { QStringLiteral("format"), QStringLiteral("messy.ini"), QStringLiteral("-o") };
        QTest::newRow("format two files")
            << QStringList { QStringLiteral("format"), QStringLiteral("messy.ini"), QStringLiteral("archive.ini") };
        QTest::newRow("check without file") << QStringList { QStringLiteral("check") };
        QTest::newRow("check link option")
            << QStringList { QStringLiteral("check"), QStringLiteral("--detect-links"), QStringLiteral("archive.ini") };
        QTest::newRow("tree without file") << QStringList { QStringLiteral("tree") };
        QTest::newRow("tree output option") << QStringList { QStringLiteral("tree"), QStringLiteral("archive.ini"),
                                                             QStringLiteral("-o"), QStringLiteral("out.txt") };
    }

    void usageErrorsGiveTwo()
    {
        QFETCH(QStringList, arguments);
        const RunResult result = run(arguments);
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QVERIFY(!result.err.isEmpty());
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), fixtureBytes(QStringLiteral("messy.ini")));
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.txt"))));
    }

    void helpPrintsUsageOnStandardOutput_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("usage");
        QTest::newRow("kelvmenu --help") << QStringList { QStringLiteral("--help") }
                                         << QByteArray("Usage: kelvmenu COMMAND");
        QTest::newRow("kelvmenu -h") << QStringList { QStringLiteral("-h") } << QByteArray("Usage: kelvmenu COMMAND");
        QTest::newRow("dump --help") << QStringList { QStringLiteral("dump"), QStringLiteral("--help") }
                                     << QByteArray("Usage: kelvmenu dump [--detect-links] FILE\n");
        QTest::newRow("format --help") << QStringList { QStringLiteral("format"), QStringLiteral("--help") }
                                       << QByteArray("Usage: kelvmenu format [--detect-links] FILE [-o OUT]\n");
        QTest::newRow("check --help") << QStringList { QStringLiteral("check"), QStringLiteral("--help") }
                                      << QByteArray("Usage: kelvmenu check [--strict] FILE...\n");
        QTest::newRow("tree --help") << QStringList { QStringLiteral("tree"), QStringLiteral("--help") }
                                     << QByteArray("Usage: kelvmenu tree FILE\n");
        QTest::newRow("tree -h with file")
            << QStringList { QStringLiteral("tree"), QStringLiteral("archive.ini"), QStringLiteral("-h") }
            << QByteArray("Usage: kelvmenu tree FILE\n");
        QTest::newRow("format --help does not write")
            << QStringList { QStringLiteral("format"), QStringLiteral("messy.ini"), QStringLiteral("--help") }
            << QByteArray("Usage: kelvmenu format");
    }

    void helpPrintsUsageOnStandardOutput()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, usage);
        const RunResult result = run(arguments);
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        QVERIFY2(result.out.startsWith(usage), result.out);
        QCOMPARE(fileBytes(path(QStringLiteral("messy.ini"))), fixtureBytes(QStringLiteral("messy.ini")));
    }

    void versionPrintsProgramProductAndVersion()
    {
        const RunResult result = run({ QStringLiteral("--version") });
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        QVERIFY2(result.out.startsWith("kelvmenu (KELV Menu Editor) " KELV_EXPECTED_VERSION "\n"), result.out);
        QCOMPARE(result.out, versionText(QStringLiteral("kelvmenu")).toUtf8());
    }

    void versionTakesNoArguments()
    {
        const RunResult result = run({ QStringLiteral("--version"), QStringLiteral("archive.ini") });
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QVERIFY(result.err.contains("--version takes no arguments"));
    }

    void generalHelpNamesTheVersionOption()
    {
        const RunResult result = run({ QStringLiteral("--help") });
        QVERIFY(result.out.contains("  --version "));
    }

    void treeHelpTellsThatLinksAreDetected()
    {
        const RunResult result = run({ QStringLiteral("tree"), QStringLiteral("--help") });
        QVERIFY(result.out.contains("link detection on"));
        QVERIFY(result.out.contains("-> TARGET"));
    }
};

QTEST_GUILESS_MAIN(TestKelvMenu)
#include "test_kelvmenu.moc"
