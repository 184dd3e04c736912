#include "core/sessionfixture.h"
#include "editing/treeupdatetext.h"

#include "commands/commandediting.h"
#include "editing/itempanel.h"
#include "menufile/menufilewriter.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

Command cmd(const char* extension, const char* text)
{
    return Command { QString::fromLatin1(extension), QString::fromLatin1(text) };
}

/// A command array with the placeholder slot and `commands` in slots 1..n.
QList<Command> commandsOf(const QList<Command>& commands)
{
    return MenuItem::placeholderCommands() + commands;
}

MenuItem item(const char* caption, int number, qint16 parent, qint16 level, qint16 childCount, qint16 siblingOrder,
              const QList<Command>& commands = {})
{
    MenuItem made;
    made.caption = QString::fromLatin1(caption);
    made.key = QStringLiteral("E%1").arg(number);
    made.parent = parent;
    made.level = level;
    made.childCount = childCount;
    made.siblingOrder = siblingOrder;
    made.commands = commandsOf(commands);
    return made;
}

const Command first = cmd("avi", "del $fs-001$");
const Command second = cmd("mkv", "copy $fs-all$ x||del $fs-all$");
const Command third = cmd("txt", "notepad $fs-001$");
const Command own = cmd("ogg", "rename $fs-001$ y");

/// Alpha (E0, a submenu with three commands) holding Beta (E1, one command); Gamma (E2), a link to
/// Alpha that still keeps a command of its own; Delta (E3) without commands.
MenuDocument sampleMenu()
{
    MenuDocument document;
    document.items = { item("Alpha", 0, -1, 0, 1, 1, { first, second, third }), item("Beta", 1, 0, 1, 0, 1, { own }),
                       item("Gamma", 2, -1, 0, 0, 2, { own }), item("Delta", 3, -1, 0, 0, 3) };
    document.items[2].copiesCommands = true;
    document.items[2].copyKey = QStringLiteral("E0");
    document.lastIndex = 3;
    document.filePath = QStringLiteral("sample.ini");
    return document;
}

EditArguments storing(int slot, const QString& extension, const QString& text)
{
    EditArguments arguments;
    arguments.slot = slot;
    arguments.extension = extension;
    arguments.text = text;
    return arguments;
}

EditArguments onSlot(int number)
{
    EditArguments arguments;
    arguments.slot = number;
    return arguments;
}

EditArguments special(const QString& caption)
{
    EditArguments arguments;
    arguments.text = caption;
    return arguments;
}

MenuItem& itemOf(MenuDocument& document, const char* key)
{
    return document.items[findItemByKey(document, QString::fromLatin1(key))];
}

/// Every item but the one with `key` is as it was.
void verifyOthersUntouched(const MenuDocument& after, const MenuDocument& before, const char* key)
{
    QCOMPARE(after.items.size(), before.items.size());
    for (qsizetype i = 0; i < before.items.size(); ++i) {
        if (before.items.at(i).key != QLatin1String(key)) {
            QCOMPARE(after.items.at(i), before.items.at(i));
        }
    }
}

} // namespace

class TestCommandEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOperationsNeedAnItemAndRecordAsTheEditorDoes()
    {
        QCOMPARE(EditOperations::storeCommand.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::removeCommand.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::clearCommands.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::specialItem.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::storeCommand.recording, EditOperation::Recording::SnapshotAfter);
        QCOMPARE(EditOperations::removeCommand.recording, EditOperation::Recording::SnapshotBefore);
        QCOMPARE(EditOperations::clearCommands.recording, EditOperation::Recording::SnapshotBefore);
        QCOMPARE(EditOperations::specialItem.recording, EditOperation::Recording::Nothing);
        // Undoing after a failed store would take back the edit before it, whose snapshot is the
        // newest one.
        QVERIFY(!EditOperations::storeCommand.failureUndoes);
        QVERIFY(EditOperations::removeCommand.failureUndoes);
        QVERIFY(EditOperations::clearCommands.failureUndoes);
    }

    void nothingRunsWithoutAnItemSelected()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        for (const bool root : { false, true }) {
            if (root) {
                f.view.select(SelectedNode::rootKey());
            } else {
                f.view.selected = SelectedNode();
            }
            QVERIFY(
                !f.session.run(EditOperations::storeCommand, storing(0, QStringLiteral("avi"), QStringLiteral("x"))));
            QVERIFY(!f.session.run(EditOperations::removeCommand, onSlot(1)));
            QVERIFY(!f.session.run(EditOperations::clearCommands));
            QVERIFY(!f.session.run(EditOperations::specialItem, special(QStringLiteral("$audiostream$"))));
        }
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());
    }

    // Adding and editing.

    void addingAppendsTheCommandAndShowsTheItemAgain()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        const Command added = cmd("vob", "del $fs-001$||copy $fs-all$ y");
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, added.extension, added.command)));
        QCOMPARE(itemOf(f.document(), "E0").commands, commandsOf({ first, second, third, added }));
        verifyOthersUntouched(f.document(), before, "E0");
        QCOMPARE(f.view.updates, QList<TreeUpdate>({ TreeUpdate().showItem() }));
        QVERIFY(!f.document().saved);
        QCOMPARE(f.undoCount(), 1);
        QVERIFY(f.refusals.isEmpty());
        QVERIFY(f.criticalMessages.isEmpty());
    }

    void addingToAnItemWithoutCommandsGivesItsFirstSlot()
    {
        SessionFixture f;
        f.open(sampleMenu());
        f.view.select(QStringLiteral("E3"));
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, QStringLiteral("mp3"), QStringLiteral("x"))));
        QCOMPARE(itemOf(f.document(), "E3").commands, commandsOf({ cmd("mp3", "x") }));
    }

    void theExtensionAndTextAreStoredExactlyAsGiven()
    {
        SessionFixture f;
        f.open(sampleMenu());
        f.view.select(QStringLiteral("E3"));
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, QString(), QString())));
        QVERIFY(f.session.run(EditOperations::storeCommand,
                              storing(0, QStringLiteral(".AVI"), QStringLiteral(" a||||b "))));
        QCOMPARE(itemOf(f.document(), "E3").commands,
                 commandsOf({ Command { QString(), QString() }, cmd(".AVI", " a||||b ") }));
        QCOMPARE(f.undoCount(), 2);
    }

    void editingReplacesOnlyItsOwnSlot_data()
    {
        QTest::addColumn<int>("slot");
        QTest::newRow("first") << 1;
        QTest::newRow("middle") << 2;
        QTest::newRow("last") << 3;
    }

    void editingReplacesOnlyItsOwnSlot()
    {
        QFETCH(int, slot);
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        const Command edited = cmd("asf", "regsvr32 $fs-001$");
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(slot, edited.extension, edited.command)));
        QList<Command> expected = commandsOf({ first, second, third });
        expected[slot] = edited;
        QCOMPARE(itemOf(f.document(), "E0").commands, expected);
        verifyOthersUntouched(f.document(), before, "E0");
        QCOMPARE(f.view.updates, QList<TreeUpdate>({ TreeUpdate().showItem() }));
        QCOMPARE(f.undoCount(), 1);
    }

    void theSnapshotIsRecordedAfterTheCommandIsWritten()
    {
        SessionFixture f;
        f.open(sampleMenu());
        f.view.select(QStringLiteral("E0"));
        const Command added = cmd("wav", "copy $fs-001$ z");
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, added.extension, added.command)));
        QCOMPARE(f.recordedDocuments.size(), 1);
        QCOMPARE(itemOf(f.recordedDocuments[0], "E0").commands, commandsOf({ first, second, third, added }));
        // So Undo goes back to a state that still holds the new command.
        f.controller.mnuUndo_Click();
        QCOMPARE(f.undoCount(), 0);
        QCOMPARE(itemOf(f.document(), "E0").commands, commandsOf({ first, second, third, added }));
        // Edits of a command the same way: the first Undo keeps the newest text, the next one
        // brings back the text before it.
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(4, QStringLiteral("wav"), QStringLiteral("v2"))));
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(4, QStringLiteral("wav"), QStringLiteral("v3"))));
        QCOMPARE(f.undoCount(), 2);
        f.controller.mnuUndo_Click();
        QCOMPARE(itemOf(f.document(), "E0").commands.at(4), cmd("wav", "v3"));
        f.controller.mnuUndo_Click();
        QCOMPARE(itemOf(f.document(), "E0").commands.at(4), cmd("wav", "v2"));
    }

    void aStoreIntoALinkWritesTheLinksOwnCommands()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E2"));
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, QStringLiteral("ac3"), QStringLiteral("y"))));
        QCOMPARE(itemOf(f.document(), "E2").commands, commandsOf({ own, cmd("ac3", "y") }));
        verifyOthersUntouched(f.document(), before, "E2");
    }

    void aSlotThatNamesNoCommandIsRefused_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<QString>("message");
        QTest::newRow("past the last") << 4 << QStringLiteral("The item has no command 4.");
        QTest::newRow("far past the last") << 40 << QStringLiteral("The item has no command 40.");
        QTest::newRow("below the first") << -1 << QStringLiteral("The item has no command -1.");
    }

    void aSlotThatNamesNoCommandIsRefused()
    {
        QFETCH(int, slot);
        QFETCH(QString, message);
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        QVERIFY(
            !f.session.run(EditOperations::storeCommand, storing(slot, QStringLiteral("avi"), QStringLiteral("x"))));
        QVERIFY(!f.session.run(EditOperations::removeCommand, onSlot(slot)));
        QCOMPARE(f.refusals, QStringList({ message, message }));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());
        QVERIFY(f.criticalMessages.isEmpty());
    }

    void anItemWithoutCommandsHasNoSlotToEdit()
    {
        SessionFixture f;
        f.open(sampleMenu());
        f.view.select(QStringLiteral("E3"));
        QVERIFY(!f.session.run(EditOperations::storeCommand, storing(1, QStringLiteral("avi"), QStringLiteral("x"))));
        QCOMPARE(f.refusals, QStringList({ QStringLiteral("The item has no command 1.") }));
        QVERIFY(!itemOf(f.document(), "E3").hasOwnCommands());
    }

    void aFailedStoreIsReportedButUndoesNothing()
    {
        SessionFixture f;
        f.open(sampleMenu());
        f.view.select(QStringLiteral("E3"));
        QVERIFY(f.session.run(EditOperations::storeCommand, storing(0, QStringLiteral("avi"), QStringLiteral("x"))));
        const MenuDocument afterFirst = f.document();
        // A node whose item is gone.
        f.view.select(QStringLiteral("E99"));
        QVERIFY(!f.session.run(EditOperations::storeCommand, storing(0, QStringLiteral("avi"), QStringLiteral("y"))));
        QCOMPARE(f.criticalMessages,
                 QStringList({ QStringLiteral("Error 9 : Subscript out of range (cmdAdd_Click)") }));
        QCOMPARE(f.document(), afterFirst);
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.view.updates.size(), 1);
    }

    // Removing.

    void removingTheOnlyCommandLeavesThePlaceholderAndPaintsTheNodeBlack()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E1"), QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(1)));
        QCOMPARE(itemOf(f.document(), "E1").commands, MenuItem::placeholderCommands());
        QCOMPARE(f.view.updates,
                 QList<TreeUpdate>(
                     { TreeUpdate().showItem().setNodeColour(QStringLiteral("E1"), NodeStyle::Colour::Black) }));
        verifyOthersUntouched(f.document(), before, "E1");
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ before }));
    }

    void removingTheOnlyCommandOfASubmenuPaintsItNavy()
    {
        SessionFixture f;
        MenuDocument menu = sampleMenu();
        menu.items[0].commands = commandsOf({ second });
        f.open(menu);
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(1)));
        QCOMPARE(itemOf(f.document(), "E0").commands, MenuItem::placeholderCommands());
        QCOMPARE(f.view.updates,
                 QList<TreeUpdate>(
                     { TreeUpdate().showItem().setNodeColour(QStringLiteral("E0"), NodeStyle::Colour::Navy) }));
    }

    void removingALineMovesTheLaterOnesUp_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<QList<Command>>("left");
        QTest::newRow("the last of three moves nothing") << 3 << QList<Command>({ first, second });
        QTest::newRow("the middle one") << 2 << QList<Command>({ first, third });
        QTest::newRow("the first one") << 1 << QList<Command>({ second, third });
    }

    void removingALineMovesTheLaterOnesUp()
    {
        QFETCH(int, slot);
        QFETCH(QList<Command>, left);
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(slot)));
        QCOMPARE(itemOf(f.document(), "E0").commands, commandsOf(left));
        QCOMPARE(itemOf(f.document(), "E0").commandUpperBound(), 2);
        // Commands are left, so the node keeps its colour.
        QCOMPARE(f.view.updates, QList<TreeUpdate>({ TreeUpdate().showItem() }));
        verifyOthersUntouched(f.document(), before, "E0");
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ before }));
    }

    void removingWithNoLineSelectedStillRecordsASnapshot()
    {
        SessionFixture f;
        f.open(sampleMenu());
        MenuDocument expected = f.document();
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(0)));
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ expected }));
        expected.saved = false;
        QCOMPARE(f.document(), expected);
    }

    void aFailedRemoveIsReportedAndUndone()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E99"));
        QVERIFY(!f.session.run(EditOperations::removeCommand, onSlot(1)));
        QCOMPARE(
            f.criticalMessages,
            QStringList({ QStringLiteral(
                "Error 9 : Subscript out of range (mnuRemoveCommand_Click)\r\nThis error will undo your action") }));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
    }

    // Clearing.

    void clearingLeavesThePlaceholderAlone()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::clearCommands));
        QCOMPARE(itemOf(f.document(), "E0").commands, MenuItem::placeholderCommands());
        QCOMPARE(itemOf(f.document(), "E0").commandUpperBound(), 0);
        QCOMPARE(f.view.updates,
                 QList<TreeUpdate>(
                     { TreeUpdate().showItem().setNodeColour(QStringLiteral("E0"), NodeStyle::Colour::Navy) }));
        verifyOthersUntouched(f.document(), before, "E0");
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ before }));
    }

    void clearingAnItemWithoutCommandsStillRecordsASnapshot()
    {
        SessionFixture f;
        f.open(sampleMenu());
        MenuDocument expected = f.document();
        f.view.select(QStringLiteral("E3"));
        QVERIFY(f.session.run(EditOperations::clearCommands));
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ expected }));
        expected.saved = false;
        QCOMPARE(f.document(), expected);
        QCOMPARE(f.view.updates,
                 QList<TreeUpdate>(
                     { TreeUpdate().showItem().setNodeColour(QStringLiteral("E3"), NodeStyle::Colour::Black) }));
    }

    void undoingAClearBringsTheCommandsBack()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::clearCommands));
        f.controller.mnuUndo_Click();
        QCOMPARE(f.document(), before);
    }

    void linksToTheItemFollowARemoveOrAClear()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E0"));
        const int gamma = findItemByKey(f.document(), QStringLiteral("E2"));

        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(2)));
        // Gamma's own array is never visited; it shows and saves Alpha's commands through its link.
        QCOMPARE(f.document().items.at(gamma), before.items.at(gamma));
        QCOMPARE(itemPanel(f.document(), gamma).commandLines,
                 QStringList({ first.extension + QLatin1Char('=') + first.command,
                               third.extension + QLatin1Char('=') + third.command }));
        MenuDocument resolved = f.document();
        resolved.items[gamma].copiesCommands = false;
        resolved.items[gamma].copyKey = QStringLiteral("-1");
        resolved.items[gamma].commands = commandsOf({ first, third });
        QCOMPARE(menuFileBytes(f.document()), menuFileBytes(resolved));

        QVERIFY(f.session.run(EditOperations::clearCommands));
        QCOMPARE(f.document().items.at(gamma), before.items.at(gamma));
        QVERIFY(itemPanel(f.document(), gamma).commandLines.isEmpty());
        resolved = f.document();
        resolved.items[gamma].copiesCommands = false;
        resolved.items[gamma].copyKey = QStringLiteral("-1");
        resolved.items[gamma].commands = MenuItem::placeholderCommands();
        QCOMPARE(menuFileBytes(f.document()), menuFileBytes(resolved));
    }

    void removingFromALinkTouchesOnlyItsOwnCommands()
    {
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E2"));
        QVERIFY(f.session.run(EditOperations::removeCommand, onSlot(1)));
        QCOMPARE(itemOf(f.document(), "E2").commands, MenuItem::placeholderCommands());
        verifyOthersUntouched(f.document(), before, "E2");
        QVERIFY(f.session.run(EditOperations::clearCommands));
        verifyOthersUntouched(f.document(), before, "E2");
    }

    // Special items.

    void aSpecialItemChangesOnlyTheNodesText_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::newRow("audio stream") << QStringLiteral("$audiostream$");
        QTest::newRow("subtitle stream") << QStringLiteral("$subtitlestream$");
        QTest::newRow("selected file") << QStringLiteral("$selectedfile$");
    }

    void aSpecialItemChangesOnlyTheNodesText()
    {
        QFETCH(QString, caption);
        SessionFixture f;
        f.open(sampleMenu());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E1"), QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::specialItem, special(caption)));
        QCOMPARE(f.view.updates, QList<TreeUpdate>({ TreeUpdate().setNodeText(QStringLiteral("E1"), caption) }));
        // The caption in the menu stays, nothing is recorded and the menu is still saved.
        QCOMPARE(f.document(), before);
        QVERIFY(f.document().saved);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.recordedDocuments.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestCommandEditing)
#include "test_commandediting.moc"
