#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

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

QJsonObject object(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

QJsonObject itemWithKey(const QJsonObject& document, const QString& key)
{
    const QJsonArray items = document.value(QStringLiteral("items")).toArray();
    for (const QJsonValue& item : items) {
        if (item.toObject().value(QStringLiteral("key")).toString() == key) {
            return item.toObject();
        }
    }
    return {};
}

QJsonArray commandsOf(const QJsonObject& item)
{
    return item.value(QStringLiteral("commands")).toArray();
}

} // namespace

/// `kelvmenu edit` run as scripts run it: the built program, its exit code, its output and the
/// files it leaves.
class TestKelvMenuEdit : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString& name) const { return m_dir->filePath(name); }

    RunResult run(const QStringList& arguments, const QByteArray& input = QByteArray()) const
    {
        RunResult result;
        QProcess process;
        process.setWorkingDirectory(m_dir->path());
        process.start(QStringLiteral(KELVMENU_PATH), arguments);
        process.write(input);
        process.closeWriteChannel();
        result.finished = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    /// `kelvmenu edit [options] archive.ini -` with `ops` on standard input.
    RunResult edit(const QByteArray& ops, const QStringList& options = {}) const
    {
        return run(QStringList { QStringLiteral("edit") } + options
                       + QStringList { QStringLiteral("archive.ini"), QStringLiteral("-") },
                   ops);
    }

    /// The menu as `kelvmenu dump` reads it now.
    QJsonObject dumpOf(const QString& name) const
    {
        const RunResult result = run({ QStringLiteral("dump"), name });
        return result.exitCode == 0 ? object(result.out) : QJsonObject();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(QStringLiteral(KELVMENU_PATH)), KELVMENU_PATH); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        // Archive (E0) with Pack (E1) and Unpack (E2), which hold the same two commands, then
        // Delete (E3) with one command.
        QVERIFY(
            QFile::copy(QStringLiteral(KELV_TEST_DATA_DIR "/cli/archive.ini"), path(QStringLiteral("archive.ini"))));
        QFile::setPermissions(path(QStringLiteral("archive.ini")), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }

    void cleanup() { m_dir.reset(); }

    void aNewItemNamedInTheScriptIsWrittenOverTheFile()
    {
        const RunResult result = edit(R"([{"op": "new-item", "key": "E1", "caption": "Test"}])");
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.isEmpty());
        QVERIFY(result.err.isEmpty());
        const QByteArray written = fileBytes(path(QStringLiteral("archive.ini")));
        QVERIFY(written.contains("\xB7\xB7\xB7Unpack\r\n\xB7\xB7\xB7Test\r\nDelete\r\n"));
    }

    void theDumpShowsTheDocumentAsTheEditorHoldsIt()
    {
        const RunResult result
            = edit(R"([{"op": "new-item", "key": "E1"}, {"op": "delete", "key": "E0"}])", { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        // Keys stay with their items and are never given out twice.
        QCOMPARE(document.value(QStringLiteral("lastIndex")).toInt(), 4);
        const QJsonArray items = document.value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 1);
        const QJsonObject remaining = items.at(0).toObject();
        QCOMPARE(remaining.value(QStringLiteral("key")).toString(), QStringLiteral("E3"));
        QCOMPARE(remaining.value(QStringLiteral("siblingOrder")).toInt(), 1);
        // Nothing was written.
        QCOMPARE(dumpOf(QStringLiteral("archive.ini")).value(QStringLiteral("items")).toArray().size(), 4);
    }

    void aNewItemIsTheLastSiblingAndKeepsItsNameWithoutACaption()
    {
        const RunResult result = edit(R"([{"op": "new-item", "key": "E1"}])", { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        const QJsonObject created = itemWithKey(document, QStringLiteral("E4"));
        QCOMPARE(created.value(QStringLiteral("caption")).toString(), QStringLiteral("New Item 5"));
        QCOMPARE(created.value(QStringLiteral("parent")).toInt(), 0);
        QCOMPARE(created.value(QStringLiteral("siblingOrder")).toInt(), 3);
        QCOMPARE(created.value(QStringLiteral("level")).toInt(), 0);
        QCOMPARE(created.value(QStringLiteral("copyKey")).toString(), QString());
        QCOMPARE(itemWithKey(document, QStringLiteral("E0")).value(QStringLiteral("childCount")).toInt(), 3);
    }

    void renameStoresTheCaptionExactly()
    {
        const RunResult result = edit(R"([{"op": "rename", "key": "E3", "caption": " Erase  "},
                                          {"op": "rename", "key": "E2", "caption": ""}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        QCOMPARE(itemWithKey(document, QStringLiteral("E3")).value(QStringLiteral("caption")).toString(),
                 QStringLiteral(" Erase  "));
        QCOMPARE(itemWithKey(document, QStringLiteral("E2")).value(QStringLiteral("caption")).toString(), QString());
    }

    void deleteRemovesTheBranchAndMovesTheLastItemIntoItsSlot()
    {
        const RunResult result = edit(R"([{"op": "delete", "key": "E1"}])", { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonArray items = object(result.out).value(QStringLiteral("items")).toArray();
        QCOMPARE(items.size(), 3);
        QCOMPARE(items.at(1).toObject().value(QStringLiteral("key")).toString(), QStringLiteral("E3"));
        QCOMPARE(items.at(2).toObject().value(QStringLiteral("key")).toString(), QStringLiteral("E2"));
        QCOMPARE(items.at(2).toObject().value(QStringLiteral("siblingOrder")).toInt(), 1);
    }

    void aLinkIsWrittenAsItsTargetsCommands()
    {
        const RunResult result = edit(R"([{"op": "link", "key": "E3", "target": "E1"}])");
        QCOMPARE(result.exitCode, 0);
        const QJsonObject reread = dumpOf(QStringLiteral("archive.ini"));
        QCOMPARE(commandsOf(itemWithKey(reread, QStringLiteral("E3"))),
                 commandsOf(itemWithKey(reread, QStringLiteral("E1"))));

        const RunResult dumped = run(
            { QStringLiteral("edit"), QStringLiteral("--dump"), QStringLiteral("archive.ini"), QStringLiteral("-") },
            R"([{"op": "link", "key": "E0", "target": "E3"}])");
        QCOMPARE(dumped.exitCode, 0);
        const QJsonObject archive = itemWithKey(object(dumped.out), QStringLiteral("E0"));
        QCOMPARE(archive.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E3"));
        QVERIFY(archive.value(QStringLiteral("copiesCommands")).toBool());
    }

    void switchingALinkOffKeepsItsTarget()
    {
        const RunResult result = edit(R"([{"op": "link-off", "key": "E2"}])",
                                      { QStringLiteral("--detect-links"), QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject unpack = itemWithKey(object(result.out), QStringLiteral("E2"));
        QVERIFY(!unpack.value(QStringLiteral("copiesCommands")).toBool());
        QCOMPARE(unpack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E1"));

        const RunResult again = edit(R"([{"op": "link-off", "key": "E2"}, {"op": "link-on", "key": "E2"}])",
                                     { QStringLiteral("--detect-links"), QStringLiteral("--dump") });
        QCOMPARE(again.exitCode, 0);
        QVERIFY(itemWithKey(object(again.out), QStringLiteral("E2")).value(QStringLiteral("copiesCommands")).toBool());
    }

    void lookForLinksAndUncheckLinks()
    {
        const RunResult found = edit(R"([{"op": "look-for-links"}])", { QStringLiteral("--dump") });
        QCOMPARE(found.exitCode, 0);
        const QJsonObject unpack = itemWithKey(object(found.out), QStringLiteral("E2"));
        QVERIFY(unpack.value(QStringLiteral("copiesCommands")).toBool());
        QCOMPARE(unpack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E1"));

        const RunResult cleared
            = edit(R"([{"op": "look-for-links"}, {"op": "uncheck-links"}])", { QStringLiteral("--dump") });
        QCOMPARE(cleared.exitCode, 0);
        const QJsonObject unchecked = itemWithKey(object(cleared.out), QStringLiteral("E2"));
        QVERIFY(!unchecked.value(QStringLiteral("copiesCommands")).toBool());
        QCOMPARE(unchecked.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E1"));
    }

    void pasteOverwritesTheItemWithTheCopiedRecord()
    {
        const RunResult result
            = edit(R"([{"op": "copy", "key": "E1"}, {"op": "paste", "key": "E3"}])", { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject pasted = itemWithKey(object(result.out), QStringLiteral("E3"));
        QCOMPARE(pasted.value(QStringLiteral("caption")).toString(), QStringLiteral("Pack"));
        // It keeps its key and its place; its parent is the copied item's, as the record was copied.
        QCOMPARE(pasted.value(QStringLiteral("siblingOrder")).toInt(), 2);
        QCOMPARE(pasted.value(QStringLiteral("parent")).toInt(), 0);
        QCOMPARE(commandsOf(pasted), commandsOf(itemWithKey(object(result.out), QStringLiteral("E1"))));
    }

    void cutKeepsTheRecordForALaterPaste()
    {
        const RunResult result
            = edit(R"([{"op": "cut", "key": "E3"}, {"op": "paste", "key": "E2"}])", { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        QCOMPARE(document.value(QStringLiteral("items")).toArray().size(), 3);
        const QJsonObject pasted = itemWithKey(document, QStringLiteral("E2"));
        QCOMPARE(pasted.value(QStringLiteral("caption")).toString(), QStringLiteral("Delete"));
        QCOMPARE(pasted.value(QStringLiteral("parent")).toInt(), -1);
    }

    void duplicateCopiesTheBranchWithFreshKeys()
    {
        const RunResult plain = edit(R"([{"op": "duplicate", "key": "E0"}])", { QStringLiteral("--dump") });
        QCOMPARE(plain.exitCode, 0);
        const QJsonObject document = object(plain.out);
        QCOMPARE(document.value(QStringLiteral("lastIndex")).toInt(), 6);
        const QJsonObject archive = itemWithKey(document, QStringLiteral("E4"));
        QCOMPARE(archive.value(QStringLiteral("caption")).toString(), QStringLiteral("Archive"));
        QCOMPARE(archive.value(QStringLiteral("parent")).toInt(), -1);
        QCOMPARE(archive.value(QStringLiteral("siblingOrder")).toInt(), 3);
        QCOMPARE(archive.value(QStringLiteral("childCount")).toInt(), 2);
        const QJsonObject pack = itemWithKey(document, QStringLiteral("E5"));
        QCOMPARE(pack.value(QStringLiteral("caption")).toString(), QStringLiteral("Pack"));
        QCOMPARE(pack.value(QStringLiteral("parent")).toInt(), 4);
        QVERIFY(!pack.value(QStringLiteral("copiesCommands")).toBool());
        QCOMPARE(itemWithKey(document, QStringLiteral("E6")).value(QStringLiteral("siblingOrder")).toInt(), 2);

        // With "CopyCommand at Duplication" the copies link to what they were copied from.
        const RunResult linked = edit(R"([{"op": "duplicate", "key": "E0"}])",
                                      { QStringLiteral("--copy-command-dup"), QStringLiteral("--dump") });
        QCOMPARE(linked.exitCode, 0);
        const QJsonObject linkedPack = itemWithKey(object(linked.out), QStringLiteral("E5"));
        QVERIFY(linkedPack.value(QStringLiteral("copiesCommands")).toBool());
        QCOMPARE(linkedPack.value(QStringLiteral("copyKey")).toString(), QStringLiteral("E1"));
        QVERIFY(
            !itemWithKey(object(linked.out), QStringLiteral("E4")).value(QStringLiteral("copiesCommands")).toBool());
    }

    void moveUpAndDownExchangePlacesAndStopAtTheEnds()
    {
        const RunResult result = edit(R"([{"op": "move-up", "key": "E2"}, {"op": "move-up", "key": "E2"},
                                          {"op": "move-down", "key": "E3"}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        QCOMPARE(itemWithKey(document, QStringLiteral("E2")).value(QStringLiteral("siblingOrder")).toInt(), 1);
        QCOMPARE(itemWithKey(document, QStringLiteral("E1")).value(QStringLiteral("siblingOrder")).toInt(), 2);
        QCOMPARE(itemWithKey(document, QStringLiteral("E3")).value(QStringLiteral("siblingOrder")).toInt(), 2);
        // Keys and array order stay.
        QCOMPARE(document.value(QStringLiteral("items")).toArray().at(1).toObject().value(QStringLiteral("key")),
                 QJsonValue(QStringLiteral("E1")));
    }

    void aNewSubItemIsTheLastChildOfItsItemOrOfTheRoot()
    {
        const RunResult written = edit(R"([{"op": "new-sub-item", "key": "E0", "caption": "Test"}])");
        QCOMPARE(written.exitCode, 0);
        QVERIFY(written.err.isEmpty());
        QVERIFY(fileBytes(path(QStringLiteral("archive.ini")))
                    .contains("Archive\r\n\xB7\xB7\xB7Pack\r\n\xB7\xB7\xB7Unpack\r\n\xB7\xB7\xB7Test\r\nDelete\r\n"));

        const RunResult result = edit(R"([{"op": "new-sub-item", "key": "E3", "caption": "Erase"},
                                          {"op": "new-sub-item", "key": "Root"}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        const QJsonObject child = itemWithKey(document, QStringLiteral("E5"));
        QCOMPARE(child.value(QStringLiteral("caption")).toString(), QStringLiteral("Erase"));
        QCOMPARE(child.value(QStringLiteral("parent")).toInt(), 3);
        QCOMPARE(child.value(QStringLiteral("siblingOrder")).toInt(), 1);
        QCOMPARE(itemWithKey(document, QStringLiteral("E3")).value(QStringLiteral("childCount")).toInt(), 1);
        // Under the root it is a top-level item, and without a caption it keeps its name.
        const QJsonObject top = itemWithKey(document, QStringLiteral("E6"));
        QCOMPARE(top.value(QStringLiteral("caption")).toString(), QStringLiteral("New Item 7"));
        QCOMPARE(top.value(QStringLiteral("parent")).toInt(), -1);
        QCOMPARE(top.value(QStringLiteral("siblingOrder")).toInt(), 3);
    }

    void indentAndOutdentMoveABranchInAndOut()
    {
        const RunResult result = edit(R"([{"op": "indent", "key": "E3"}, {"op": "outdent", "key": "E1"}])");
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        // Delete went into Archive as its last child; Pack came out, right after Archive.
        QVERIFY(fileBytes(path(QStringLiteral("archive.ini")))
                    .contains("[Menu]\r\n\r\nArchive\r\n\xB7\xB7\xB7Unpack\r\n\xB7\xB7\xB7"
                              "Delete\r\nPack\r\n\r\n"
                              "[/Menu]"));
        const QJsonObject document = dumpOf(QStringLiteral("archive.ini"));
        QCOMPARE(itemWithKey(document, QStringLiteral("E0")).value(QStringLiteral("childCount")).toInt(), 2);

        // Keys, array order and levels stay as the editor keeps them; only the tree numbers follow.
        const RunResult dumped
            = edit(R"([{"op": "indent", "key": "E2"}, {"op": "outdent", "key": "E2"}])", { QStringLiteral("--dump") });
        QCOMPARE(dumped.exitCode, 0);
        const QJsonObject moved = itemWithKey(object(dumped.out), QStringLiteral("E2"));
        QCOMPARE(moved.value(QStringLiteral("level")).toInt(), 1);
    }

    void indentAndOutdentWithNowhereToGoChangeNothing()
    {
        const QJsonObject before = dumpOf(QStringLiteral("archive.ini"));
        // Pack is the first of its siblings, Archive the first top-level item, Delete on the top level.
        const RunResult result = edit(R"([{"op": "indent", "key": "E1"}, {"op": "indent", "key": "E0"},
                                          {"op": "outdent", "key": "E0"}, {"op": "outdent", "key": "E3"}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        QCOMPARE(object(result.out), before);
    }

    void aDropMovesABranchToBeTheFirstChildOfItsTarget()
    {
        const RunResult result
            = edit(R"([{"op": "drop", "key": "E3", "target": "E0", "place": "child", "copy": false}])",
                   { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject document = object(result.out);
        const QJsonObject moved = itemWithKey(document, QStringLiteral("E3"));
        QCOMPARE(moved.value(QStringLiteral("parent")).toInt(), 0);
        QCOMPARE(moved.value(QStringLiteral("siblingOrder")).toInt(), 1);
        QCOMPARE(itemWithKey(document, QStringLiteral("E1")).value(QStringLiteral("siblingOrder")).toInt(), 2);
        QCOMPARE(itemWithKey(document, QStringLiteral("E2")).value(QStringLiteral("siblingOrder")).toInt(), 3);
        QCOMPARE(itemWithKey(document, QStringLiteral("E0")).value(QStringLiteral("childCount")).toInt(), 3);
    }

    void aDropCopiesABranchNextToItsTarget()
    {
        const RunResult result = edit(R"([{"op": "drop", "key": "E1", "target": "E3", "place": "next", "copy": true}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject copied = itemWithKey(object(result.out), QStringLiteral("E4"));
        QCOMPARE(copied.value(QStringLiteral("caption")).toString(), QStringLiteral("Pack"));
        QCOMPARE(copied.value(QStringLiteral("parent")).toInt(), -1);
        QCOMPARE(copied.value(QStringLiteral("siblingOrder")).toInt(), 3);
        // The links of the menu are made canonical again: the copy has Pack's commands.
        QVERIFY(copied.value(QStringLiteral("copiesCommands")).toBool());
    }

    void aDropOnItselfChangesNothing()
    {
        const RunResult result
            = edit(R"([{"op": "drop", "key": "E1", "target": "E1", "place": "child", "copy": false}])",
                   { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(itemWithKey(object(result.out), QStringLiteral("E1")).value(QStringLiteral("parent")).toInt(), 0);
    }

    void replaceTellsItsCountOnStandardError()
    {
        const RunResult result = edit(R"([{"op": "replace", "find": "pack", "replacement": "zip"},
                       {"op": "replace", "find": "$fs", "replacement": "$fs$fs", "branch": "E0"}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        // Case matters: the captions "Pack" stay, but "Unpack" holds "pack". Below Archive every item is replaced twice
        // over.
        QCOMPARE(result.err,
                 QByteArray("archive.ini: operation 1: 5 replacement were made.\n"
                            "archive.ini: operation 2: 12 replacement were made.\n"));
        const QJsonObject pack = itemWithKey(object(result.out), QStringLiteral("E1"));
        QCOMPARE(pack.value(QStringLiteral("caption")).toString(), QStringLiteral("Pack"));
        QCOMPARE(commandsOf(pack).at(0).toObject().value(QStringLiteral("command")).toString(),
                 QStringLiteral("zip.exe a $fs$fs$fs$fs-001$"));
        QCOMPARE(itemWithKey(object(result.out), QStringLiteral("E2")).value(QStringLiteral("caption")).toString(),
                 QStringLiteral("Unzip"));
        QCOMPARE(commandsOf(itemWithKey(object(result.out), QStringLiteral("E3")))
                     .at(0)
                     .toObject()
                     .value(QStringLiteral("command")),
                 QJsonValue(QStringLiteral("del $fs-001$")));
    }

    void commandOperationsChangeTheItemsOwnCommands()
    {
        const RunResult result = edit(R"([{"op": "add-command", "key": "E1", "extension": "7z", "command": "a||b"},
                       {"op": "edit-command", "key": "E1", "slot": 1, "extension": "", "command": "x"},
                       {"op": "remove-command", "key": "E1", "slot": 2},
                       {"op": "clear-commands", "key": "E3"},
                       {"op": "add-command", "key": "E0", "extension": "", "command": ""}])",
                                      { QStringLiteral("--dump") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        const QJsonObject menu = object(result.out);
        const QJsonArray pack = commandsOf(itemWithKey(menu, QStringLiteral("E1")));
        QCOMPARE(pack.size(), 2);
        QCOMPARE(pack.at(0).toObject().value(QStringLiteral("extension")).toString(), QString());
        QCOMPARE(pack.at(0).toObject().value(QStringLiteral("command")).toString(), QStringLiteral("x"));
        QCOMPARE(pack.at(1).toObject().value(QStringLiteral("extension")).toString(), QStringLiteral("7z"));
        QCOMPARE(pack.at(1).toObject().value(QStringLiteral("command")).toString(), QStringLiteral("a||b"));
        QVERIFY(commandsOf(itemWithKey(menu, QStringLiteral("E3"))).isEmpty());
        // Nothing is checked: an empty extension and an empty command are stored as they are.
        const QJsonArray archive = commandsOf(itemWithKey(menu, QStringLiteral("E0")));
        QCOMPARE(archive.size(), 1);
        QCOMPARE(archive.at(0).toObject().value(QStringLiteral("command")).toString(), QString());
        QCOMPARE(commandsOf(itemWithKey(menu, QStringLiteral("E2"))).size(), 2);
    }

    void refusalsStopTheRunAndWriteNothing_data()
    {
        QTest::addColumn<QByteArray>("ops");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("the item itself as target")
            << QByteArray(
                   R"([{"op": "rename", "key": "E0", "caption": "x"}, {"op": "link", "key": "E1", "target": "E1"}])")
            << QByteArray("archive.ini: operation 2 (link): You must select an item with copycommand option unchecked "
                          "and not the same one !\n");
        QTest::newRow("a link as target")
            << QByteArray(
                   R"([{"op": "link", "key": "E3", "target": "E2"}, {"op": "link", "key": "E0", "target": "E3"}])")
            << QByteArray("archive.ini: operation 2 (link): You must select an item with copycommand option unchecked "
                          "and not the same one !\n");
        QTest::newRow("switched on without a target")
            << QByteArray(R"([{"op": "link-on", "key": "E3"}])")
            << QByteArray("archive.ini: operation 1 (link-on): Select an item to copy command before !\n");
        QTest::newRow("a key that names no item")
            << QByteArray(R"([{"op": "delete", "key": "E9"}])")
            << QByteArray("archive.ini: operation 1 (delete): no item has the key \"E9\"\n");
        QTest::newRow("a deleted key") << QByteArray(
            R"([{"op": "delete", "key": "E1"}, {"op": "rename", "key": "E1", "caption": "x"}])")
                                       << QByteArray("archive.ini: operation 2 (rename): no item has the key \"E1\"\n");
        QTest::newRow("the root") << QByteArray(R"([{"op": "new-item", "key": "Root"}])")
                                  << QByteArray(
                                         "archive.ini: operation 1 (new-item): the root node belongs to no item\n");
        QTest::newRow("the root moved in")
            << QByteArray(R"([{"op": "indent", "key": "Root"}])")
            << QByteArray("archive.ini: operation 1 (indent): the root node belongs to no item\n");
        QTest::newRow("the root moved out")
            << QByteArray(R"([{"op": "outdent", "key": "Root"}])")
            << QByteArray("archive.ini: operation 1 (outdent): the root node belongs to no item\n");
        QTest::newRow("a sub-item of no item")
            << QByteArray(R"([{"op": "new-sub-item", "key": "E9"}])")
            << QByteArray("archive.ini: operation 1 (new-sub-item): no item has the key \"E9\"\n");
        QTest::newRow("nothing to find")
            << QByteArray(R"([{"op": "replace", "find": "", "replacement": "x"}])")
            << QByteArray("archive.ini: operation 1 (replace): You must enter something to find !\n");
        QTest::newRow("paste with nothing copied")
            << QByteArray(R"([{"op": "paste", "key": "E1"}])")
            << QByteArray("archive.ini: operation 1 (paste): Nothing has been copied or cut yet.\n");
        QTest::newRow("a drop into its own branch")
            << QByteArray(R"([{"op": "drop", "key": "E0", "target": "E2", "place": "child", "copy": true}])")
            << QByteArray("archive.ini: operation 1 (drop): An item cannot be dropped into its own branch !\n");
        QTest::newRow("a drop next to the root")
            << QByteArray(R"([{"op": "drop", "key": "E1", "target": "Root", "place": "next", "copy": false}])")
            << QByteArray("archive.ini: operation 1 (drop): nothing can be placed next to the root node\n");
        QTest::newRow("a command slot past the last")
            << QByteArray(R"([{"op": "edit-command", "key": "E3", "slot": 2, "extension": "", "command": "x"}])")
            << QByteArray("archive.ini: operation 1 (edit-command): The item has no command 2.\n");
        QTest::newRow("removing from an item without commands")
            << QByteArray(R"([{"op": "remove-command", "key": "E0", "slot": 1}])")
            << QByteArray("archive.ini: operation 1 (remove-command): The item has no command 1.\n");
        QTest::newRow("a target that names no item")
            << QByteArray(R"([{"op": "link", "key": "E3", "target": "E7"}])")
            << QByteArray("archive.ini: operation 1 (link): no item has the key \"E7\"\n");
    }

    void refusalsStopTheRunAndWriteNothing()
    {
        QFETCH(QByteArray, ops);
        QFETCH(QByteArray, message);
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const RunResult result = edit(ops);
        QCOMPARE(result.exitCode, 6);
        QCOMPARE(result.err, message);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);

        const RunResult dumped = edit(ops, { QStringLiteral("--detect-links"), QStringLiteral("--dump") });
        QCOMPARE(dumped.exitCode, 6);
        QVERIFY(dumped.out.isEmpty());
    }

    void anOperationThatWouldPassTheMostItemsStopsTheRunAsAnOverflow_data()
    {
        QTest::addColumn<QByteArray>("ops");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("new item") << QByteArray(R"([{"op": "new-item", "key": "E5", "caption": "one more"}])")
                                  << QByteArray("full.ini: operation 1 (new-item): Error 6 : Overflow (mnuNewItem)\n");
        QTest::newRow("duplicate") << QByteArray(R"([{"op": "delete", "key": "E7"}, {"op": "duplicate", "key": "E0"},
                                                    {"op": "duplicate", "key": "E1"}])")
                                   << QByteArray("full.ini: operation 3 (duplicate): Error 6 : Overflow "
                                                 "(mnuDuplicate_Click)\n");
        QTest::newRow("copying drop")
            << QByteArray(R"([{"op": "drop", "key": "E2", "target": "E3", "place": "child", "copy": true}])")
            << QByteArray("full.ini: operation 1 (drop): Error 6 : Overflow (lstMenu_OLEDragDrop)\n");
    }

    void anOperationThatWouldPassTheMostItemsStopsTheRunAsAnOverflow()
    {
        QFETCH(QByteArray, ops);
        QFETCH(QByteArray, message);
        // The most items a menu file holds.
        QByteArray full = "KELV - Menu\r\n\r\n[Menu]\r\n\r\n";
        for (int i = 1; i <= 32767; ++i) {
            full += "Item " + QByteArray::number(i) + "\r\n";
        }
        full += "\r\n[/Menu]\r\n\r\n[Commands]\r\n\r\n0001:=run\r\n\r\n[/Commands]\r\n";
        QFile file(path(QStringLiteral("full.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(full);
        file.close();

        const RunResult result = run({ QStringLiteral("edit"), QStringLiteral("full.ini"), QStringLiteral("-"),
                                       QStringLiteral("-o"), QStringLiteral("out.ini") },
                                     ops);
        QCOMPARE(result.exitCode, 6);
        QCOMPARE(result.err, message);
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.ini"))));
        QCOMPARE(fileBytes(path(QStringLiteral("full.ini"))), full);
    }

    void aResultWhoseFileWouldBeTooLargeToOpenIsNotWritten()
    {
        // A caption of 4 MiB doubled six times by duplicating the branch and dropping the copy into
        // it: 64 captions share one text, so the menu stays small in memory while its file would be
        // over 256 MiB, more than the editor opens.
        QJsonArray ops;
        ops.append(QJsonObject { { QStringLiteral("op"), QStringLiteral("rename") },
                                 { QStringLiteral("key"), QStringLiteral("E1") },
                                 { QStringLiteral("caption"), QString(4 * 1024 * 1024 + 1000, QLatin1Char('x')) } });
        for (int round = 1; round <= 6; ++round) {
            ops.append(QJsonObject { { QStringLiteral("op"), QStringLiteral("duplicate") },
                                     { QStringLiteral("key"), QStringLiteral("E0") } });
            // The copy of E0 takes the key after the ones given out so far.
            ops.append(QJsonObject { { QStringLiteral("op"), QStringLiteral("drop") },
                                     { QStringLiteral("key"), QStringLiteral("E%1").arg(3 * (1 << (round - 1)) + 1) },
                                     { QStringLiteral("target"), QStringLiteral("E0") },
                                     { QStringLiteral("place"), QStringLiteral("child") },
                                     { QStringLiteral("copy"), false } });
        }
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        // Into a folder that does not exist: should the check let it through, nothing reaches the disk.
        const RunResult result = run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("-"),
                                       QStringLiteral("-o"), QStringLiteral("missing/out.ini") },
                                     QJsonDocument(ops).toJson(QJsonDocument::Compact));
        QCOMPARE(result.exitCode, 5);
        QVERIFY2(result.err.startsWith("missing/out.ini: the menu file would be 268"), result.err.left(300));
        QVERIFY2(result.err.contains(" MiB), more than the 268435456 bytes (256.0 MiB) a menu file may have to be "
                                     "opened again"),
                 result.err.left(300));
        QVERIFY2(result.err.endsWith("missing/out.ini: nothing written: a menu file cannot hold the values above\n"),
                 result.err.right(300));
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);
    }

    void aResultTheFileCannotHoldIsListedAndNotWritten()
    {
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const QByteArray ops = R"([{"op": "rename", "key": "E1", "caption": "two\nlines"},
                                  {"op": "rename", "key": "E3", "caption": "[/menu]"}])";
        const RunResult inPlace = edit(ops);
        QCOMPARE(inPlace.exitCode, 5);
        QVERIFY(inPlace.out.isEmpty());
        QCOMPARE(inPlace.err,
                 QByteArray("archive.ini: \"Archive\" > \"two\\nlines\": caption holds a line break\n"
                            "archive.ini: \"[/menu]\": top-level caption \"[/menu]\" would end the list of items "
                            "in the file\n"
                            "archive.ini: nothing written: a menu file cannot hold the values above\n"));
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);

        const RunResult toOutput = run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("-"),
                                         QStringLiteral("-o"), QStringLiteral("out.ini") },
                                       R"([{"op": "replace", "find": "$fs", "replacement": "\u2713"}])");
        QCOMPARE(toOutput.exitCode, 5);
        QVERIFY2(toOutput.err.contains("out.ini: \"Archive\" > \"Pack\": command 1 holds characters that Windows-1252 "
                                       "cannot encode: \"\xE2\x9C\x93\" (U+2713)\n"),
                 toOutput.err);
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.ini"))));

        // Printed instead of written, the same result is no problem.
        QCOMPARE(edit(ops, { QStringLiteral("--dump") }).exitCode, 0);
    }

    void pastedRecordsThatBreakTheFileAreListedAndNotWritten()
    {
        // Paste keeps the copied record's parent and link as they were. Pack's record pasted onto
        // Delete after Archive's branch is gone: Delete becomes its own parent and the file would list
        // no item. A link copied before its target was deleted: the pasted item names an item gone.
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const RunResult noItem = edit(R"([{"op": "copy", "key": "E1"}, {"op": "delete", "key": "E0"},
                                          {"op": "paste", "key": "E3"}])");
        QCOMPARE(noItem.exitCode, 5);
        QCOMPARE(noItem.err,
                 QByteArray("archive.ini: the file would hold no item, and a menu file without items "
                            "does not open\n"
                            "archive.ini: nothing written: a menu file cannot hold the values above\n"));
        const RunResult goneLink = edit(R"([{"op": "link", "key": "E3", "target": "E1"}, {"op": "copy", "key": "E3"},
                       {"op": "delete", "key": "E1"}, {"op": "paste", "key": "E0"}])");
        QCOMPARE(goneLink.exitCode, 5);
        QVERIFY2(goneLink.err.contains("takes its commands from item E1, which no longer exists\n"), goneLink.err);
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);
    }

    void malformedScriptsAreUsageErrors_data()
    {
        QTest::addColumn<QByteArray>("ops");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("not JSON") << QByteArray("[{\"op\": ") << QByteArray("OPS is not JSON");
        QTest::newRow("not an array") << QByteArray(R"({"op": "delete", "key": "E1"})")
                                      << QByteArray("OPS must be a JSON array");
        QTest::newRow("not an object") << QByteArray(R"(["delete"])") << QByteArray("operation 1: not a JSON object");
        QTest::newRow("no op") << QByteArray(R"([{"key": "E1"}])") << QByteArray("operation 1: \"op\"");
        QTest::newRow("unknown op") << QByteArray(R"([{"op": "delete", "key": "E1"}, {"op": "explode"}])")
                                    << QByteArray("operation 2: unknown operation \"explode\"");
        QTest::newRow("missing field") << QByteArray(R"([{"op": "rename", "key": "E1"}])")
                                       << QByteArray("operation 1 (rename): missing field \"caption\"");
        QTest::newRow("mistyped field") << QByteArray(R"([{"op": "delete", "key": 1}])")
                                        << QByteArray("operation 1 (delete): field \"key\" must be a string");
        QTest::newRow("unknown field") << QByteArray(R"([{"op": "delete", "key": "E1", "kye": "E2"}])")
                                       << QByteArray("operation 1 (delete): unknown field \"kye\"");
        QTest::newRow("indent without a key")
            << QByteArray(R"([{"op": "indent"}])") << QByteArray("operation 1 (indent): missing field \"key\"");
        QTest::newRow("outdent with a caption") << QByteArray(R"([{"op": "outdent", "key": "E1", "caption": "x"}])")
                                                << QByteArray("operation 1 (outdent): unknown field \"caption\"");
        QTest::newRow("sub-item caption not a text")
            << QByteArray(R"([{"op": "new-sub-item", "key": "E1", "caption": 5}])")
            << QByteArray("operation 1 (new-sub-item): field \"caption\" must be a string");
        QTest::newRow("unknown place")
            << QByteArray(R"([{"op": "drop", "key": "E1", "target": "E0", "place": "under", "copy": true}])")
            << QByteArray("operation 1 (drop): field \"place\" must be \"child\" or \"next\"");
        QTest::newRow("copy not a truth value")
            << QByteArray(R"([{"op": "drop", "key": "E1", "target": "E0", "place": "child", "copy": "yes"}])")
            << QByteArray("operation 1 (drop): field \"copy\" must be true or false");
        QTest::newRow("slot zero")
            << QByteArray(R"([{"op": "remove-command", "key": "E1", "slot": 0}])")
            << QByteArray("operation 1 (remove-command): field \"slot\" must be a whole number from 1 to 32767");
        QTest::newRow("slot not whole")
            << QByteArray(R"([{"op": "edit-command", "key": "E1", "slot": 1.5, "extension": "", "command": ""}])")
            << QByteArray("operation 1 (edit-command): field \"slot\" must be a whole number");
    }

    void malformedScriptsAreUsageErrors()
    {
        QFETCH(QByteArray, ops);
        QFETCH(QByteArray, message);
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const RunResult result = edit(ops);
        QCOMPARE(result.exitCode, 2);
        QVERIFY2(result.err.contains(message), result.err.constData());
        QVERIFY(result.out.isEmpty());
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);
    }

    void theScriptMayComeFromAFileAndTheResultGoToAnother()
    {
        QFile ops(path(QStringLiteral("ops.json")));
        QVERIFY(ops.open(QIODevice::WriteOnly));
        ops.write(R"([{"op": "rename", "key": "E0", "caption": "Archives"}])");
        ops.close();
        const QByteArray before = fileBytes(path(QStringLiteral("archive.ini")));
        const RunResult result = run({ QStringLiteral("edit"), QStringLiteral("-o"), QStringLiteral("out.ini"),
                                       QStringLiteral("archive.ini"), QStringLiteral("ops.json") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), before);
        QVERIFY(fileBytes(path(QStringLiteral("out.ini"))).startsWith("KELV - Menu\r\n\r\n[Menu]\r\n\r\nArchives\r\n"));
    }

    void anEmptyScriptRewritesTheFileInTheEditorsLayout()
    {
        const RunResult result = edit("[]");
        QCOMPARE(result.exitCode, 0);
        const RunResult formatted = run({ QStringLiteral("format"), QStringLiteral("archive.ini"), QStringLiteral("-o"),
                                          QStringLiteral("formatted.ini") });
        QCOMPARE(formatted.exitCode, 0);
        QCOMPARE(fileBytes(path(QStringLiteral("archive.ini"))), fileBytes(path(QStringLiteral("formatted.ini"))));
    }

    void readFailuresAndUsageErrorsKeepTheirCodes()
    {
        QFile broken(path(QStringLiteral("broken.ini")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a menu\r\n");
        broken.close();
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("broken.ini"), QStringLiteral("-") }, "[]").exitCode, 3);
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("absent.ini"), QStringLiteral("-") }, "[]").exitCode, 4);
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("archive.ini") }).exitCode, 2);
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("archive.ini"), QStringLiteral("absent.json") }).exitCode,
                 2);
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("--dump"), QStringLiteral("-o"), QStringLiteral("x.ini"),
                       QStringLiteral("archive.ini"), QStringLiteral("-") },
                     "[]")
                     .exitCode,
                 2);
        QCOMPARE(run({ QStringLiteral("edit"), QStringLiteral("--frobnicate"), QStringLiteral("archive.ini"),
                       QStringLiteral("-") },
                     "[]")
                     .exitCode,
                 2);
    }

    void helpDescribesTheContract()
    {
        const RunResult result = run({ QStringLiteral("edit"), QStringLiteral("--help") });
        QCOMPARE(result.exitCode, 0);
        for (const char* word : { "new-item",      "new-sub-item",
                                  "indent",        "outdent",
                                  "rename",        "delete",
                                  "link",          "link-on",
                                  "link-off",      "look-for-links",
                                  "uncheck-links", "copy",
                                  "cut",           "paste",
                                  "duplicate",     "move-up",
                                  "move-down",     "drop",
                                  "\"place\"",     "replace",
                                  "\"branch\"",    "--copy-command-dup",
                                  "--dump",        "operation N (OP)" }) {
            QVERIFY2(result.out.contains(word), word);
        }
        QVERIFY(run({ QStringLiteral("--help") }).out.contains("6  edit stopped"));
    }
};

QTEST_GUILESS_MAIN(TestKelvMenuEdit)
#include "test_kelvmenuedit.moc"
