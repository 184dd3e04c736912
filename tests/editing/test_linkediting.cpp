#include "treeupdatetext.h"

#include "editing/copylinks.h"
#include "editing/itempanel.h"
#include "editing/linkediting.h"

#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QTest>

namespace {

const QString noTargetRefusal = QStringLiteral("Select an item to copy command before !");
const QString badTargetRefusal
    = QStringLiteral("You must select an item with copycommand option unchecked and not the same one !");

Command cmd(const char* extension, const char* text)
{
    return Command { QString::fromLatin1(extension), QString::fromLatin1(text) };
}

MenuItem topLevelItem(const char* key, qint16 siblingOrder, const QList<Command>& commands)
{
    MenuItem item;
    item.key = QString::fromLatin1(key);
    item.caption = QStringLiteral("Caption of ") + item.key;
    item.level = 1;
    item.parent = -1;
    item.siblingOrder = siblingOrder;
    item.commands = MenuItem::placeholderCommands() + commands;
    return item;
}

const QList<Command> deleteCommands { cmd("txt", "del "), cmd("", "rename ") };
const QList<Command> viewCommands { cmd("jpg", "view ") };

/// A saved menu whose keys do not follow the slots, so that an index is never mistaken for a key:
///   slot 0: E0, own commands (del, rename)
///   slot 1: E7, own commands (view)
///   slot 2: E2, no commands, never had a target
///   slot 3: E3, linked to E0 and still holding the copy of E0's commands it was given
///   slot 4: E4, no commands, link off but target E7 kept for later
///   slot 5: E5, a new item: no commands, an empty copyKey
MenuDocument linkMenu()
{
    MenuDocument document;
    document.items = {
        topLevelItem("E0", 1, deleteCommands), topLevelItem("E7", 2, viewCommands), topLevelItem("E2", 3, {}),
        topLevelItem("E3", 4, deleteCommands), topLevelItem("E4", 5, {}),           topLevelItem("E5", 6, {}),
    };
    document.items[3].copyKey = QStringLiteral("E0");
    document.items[3].copiesCommands = true;
    document.items[4].copyKey = QStringLiteral("E7");
    document.items[5].copyKey = QString();
    document.lastIndex = 7;
    document.saved = true;
    return document;
}

/// One editor window on one document, with the editing state the whole run shares.
struct Editor
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), const QString& key, const EditArguments& arguments = {})
    {
        EditContext context { document, SelectedNode::of(key, SelectedNode::rootKey()), arguments, editing, window };
        return operation(context);
    }

    TreeUpdate switchLinkOf(const char* key, bool checked)
    {
        EditArguments arguments;
        arguments.checked = checked;
        return run(&switchLink, QString::fromLatin1(key), arguments);
    }

    /// A click on `target` while choosing the link target of `source`.
    EditArguments choice(const char* source, const char* target) const
    {
        EditArguments arguments;
        arguments.sourceKey = QString::fromLatin1(source);
        arguments.targetKey = QString::fromLatin1(target);
        return arguments;
    }

    QString refusalOf(const char* source, const char* target)
    {
        const EditContext context { document, SelectedNode::of(QString::fromLatin1(target), SelectedNode::rootKey()),
                                    choice(source, target), editing, window };
        return linkTargetRefusal(context);
    }

    TreeUpdate choose(const char* source, const char* target)
    {
        return run(&chooseLinkTarget, QString::fromLatin1(target), choice(source, target));
    }

    const MenuItem& item(const char* key) const
    {
        const qint16 index = findItemByKey(document, QString::fromLatin1(key));
        if (index < 0) {
            throw RunTimeError(9, QStringLiteral("test"));
        }
        return document.items.at(index);
    }
};

/// An editor on the link menu in which a node has already been clicked, so that switching a link
/// patches one node instead of recolouring the tree.
Editor clickedEditor()
{
    Editor editor;
    editor.document = linkMenu();
    editor.window.nodeClicked = true;
    return editor;
}

Editor unclickedEditor()
{
    Editor editor;
    editor.document = linkMenu();
    editor.window.nodeClicked = false;
    return editor;
}

/// The link menu with a second group of equal command lists that are not linked yet: E2 takes E7's
/// commands and E5 E0's.
MenuDocument menuWithUnlinkedTwins()
{
    MenuDocument document = linkMenu();
    document.items[2].commands = MenuItem::placeholderCommands() + viewCommands;
    document.items[5].commands = MenuItem::placeholderCommands() + deleteCommands;
    return document;
}

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts) {
        result.append(QString::fromLatin1(text));
    }
    return result;
}

} // namespace

class TestLinkEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The copy-command check box.

    void checkingWithoutAChosenTargetIsRefused_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("never had a target") << QStringLiteral("E2");
        QTest::newRow("new item") << QStringLiteral("E5");
    }

    void checkingWithoutAChosenTargetIsRefused()
    {
        QFETCH(QString, key);
        Editor editor = unclickedEditor();
        EditArguments arguments;
        arguments.checked = true;
        const TreeUpdate update = editor.run(&switchLink, key, arguments);
        TreeUpdate expected;
        expected.showItem().showRefusal(noTargetRefusal);
        QCOMPARE(update, expected);
        QCOMPARE(update.refusal(), noTargetRefusal);
        QVERIFY(editor.document == linkMenu());
        QVERIFY(editor.document.saved);
    }

    void uncheckingKeepsTheTargetAndShowsOwnCommandsInMaroon()
    {
        Editor editor = clickedEditor();
        const TreeUpdate update = editor.switchLinkOf("E3", false);
        QVERIFY(!editor.item("E3").copiesCommands);
        QCOMPARE(editor.item("E3").copyKey, QStringLiteral("E0"));
        QCOMPARE(editor.item("E3").commands, MenuItem::placeholderCommands() + deleteCommands);
        QVERIFY(!editor.document.saved);
        TreeUpdate expected;
        expected.setNodeColour(QStringLiteral("E3"), NodeStyle::Colour::Maroon).showItem();
        QCOMPARE(update, expected);
        QVERIFY(update.refusal().isEmpty());
    }

    void uncheckingALinkWithoutOwnCommandsLeavesItsColour()
    {
        Editor editor = clickedEditor();
        editor.document.items[2].copyKey = QStringLiteral("E7");
        editor.document.items[2].copiesCommands = true;
        const TreeUpdate update = editor.switchLinkOf("E2", false);
        QVERIFY(!editor.item("E2").copiesCommands);
        QCOMPARE(editor.item("E2").copyKey, QStringLiteral("E7"));
        TreeUpdate expected;
        expected.showItem();
        QCOMPARE(update, expected);
    }

    void uncheckingBeforeAnyNodeClickRecoloursTheTree()
    {
        Editor editor = unclickedEditor();
        const TreeUpdate update = editor.switchLinkOf("E3", false);
        TreeUpdate expected;
        expected.setNodeColour(QStringLiteral("E3"), NodeStyle::Colour::Maroon).showItem().recolour();
        QCOMPARE(update, expected);
        QVERIFY(!editor.window.nodeClicked);
    }

    void checkingWithAKeptTargetSwitchesTheLinkOnAgain()
    {
        Editor editor = clickedEditor();
        const TreeUpdate update = editor.switchLinkOf("E4", true);
        QVERIFY(editor.item("E4").copiesCommands);
        QCOMPARE(editor.item("E4").copyKey, QStringLiteral("E7"));
        QVERIFY(!editor.document.saved);
        TreeUpdate expected;
        expected.showItem();
        QCOMPARE(update, expected);
        QVERIFY(update.refusal().isEmpty());
    }

    void checkingAnItemWithOwnCommandsDoesNotPaintItMaroon()
    {
        Editor editor = unclickedEditor();
        editor.switchLinkOf("E3", false);
        editor.document.saved = true;
        const TreeUpdate update = editor.switchLinkOf("E3", true);
        QVERIFY(editor.item("E3").copiesCommands);
        QVERIFY(!editor.document.saved);
        TreeUpdate expected;
        expected.showItem().recolour();
        QCOMPARE(update, expected);
    }

    void switchingToTheStateItAlreadyHasLeavesTheMenuSaved()
    {
        Editor editor = clickedEditor();
        TreeUpdate expected;
        expected.showItem();
        QCOMPARE(editor.switchLinkOf("E3", true), expected);
        QVERIFY(editor.document.saved);

        // An item that never had a target can always be unchecked.
        QCOMPARE(editor.switchLinkOf("E2", false), expected);
        QVERIFY(editor.document.saved);
        TreeUpdate maroon;
        maroon.setNodeColour(QStringLiteral("E0"), NodeStyle::Colour::Maroon).showItem();
        QCOMPARE(editor.switchLinkOf("E0", false), maroon);
        QVERIFY(editor.document.saved);
        QVERIFY(editor.document == linkMenu());
    }

    // Choosing a link target.

    void targetThatIsALinkIsRefused()
    {
        Editor editor = clickedEditor();
        QCOMPARE(editor.refusalOf("E2", "E3"), badTargetRefusal);
    }

    void sourceItselfIsRefusedAsItsTarget()
    {
        Editor editor = clickedEditor();
        QCOMPARE(editor.refusalOf("E2", "E2"), badTargetRefusal);
        QCOMPARE(editor.refusalOf("E0", "E0"), badTargetRefusal);
    }

    void anyOtherItemIsAcceptedAsTarget()
    {
        Editor editor = clickedEditor();
        QVERIFY(editor.refusalOf("E2", "E0").isEmpty());
        // Neither a target without commands nor one that keeps a switched-off target is refused.
        QVERIFY(editor.refusalOf("E2", "E5").isEmpty());
        QVERIFY(editor.refusalOf("E2", "E4").isEmpty());
        // A link may be given a new target.
        QVERIFY(editor.refusalOf("E3", "E7").isEmpty());
        QVERIFY(editor.document == linkMenu());
    }

    void choosingATargetLinksTheSourceToIt()
    {
        Editor editor = clickedEditor();
        const TreeUpdate update = editor.choose("E2", "E7");
        QVERIFY(editor.item("E2").copiesCommands);
        QCOMPARE(editor.item("E2").copyKey, QStringLiteral("E7"));
        TreeUpdate expected;
        expected.selectNode(QStringLiteral("E2"))
            .endLinkTargetChoice()
            .showItem()
            .setNodeColour(QStringLiteral("E2"), NodeStyle::Colour::Black);
        QCOMPARE(update, expected);
        // Only the source changes.
        MenuDocument rest = editor.document;
        rest.items[2] = linkMenu().items.at(2);
        rest.saved = true;
        QVERIFY(rest == linkMenu());
    }

    void choosingATargetBeforeAnyNodeClickRecoloursBeforeBlackeningTheSource()
    {
        Editor editor = unclickedEditor();
        const TreeUpdate update = editor.choose("E0", "E7");
        QVERIFY(editor.item("E0").copiesCommands);
        QCOMPARE(editor.item("E0").copyKey, QStringLiteral("E7"));
        // The source keeps its own commands for when the link goes off again.
        QCOMPARE(editor.item("E0").commands, MenuItem::placeholderCommands() + deleteCommands);
        TreeUpdate expected;
        expected.selectNode(QStringLiteral("E0"))
            .endLinkTargetChoice()
            .showItem()
            .recolour()
            .setNodeColour(QStringLiteral("E0"), NodeStyle::Colour::Black);
        QCOMPARE(update, expected);
    }

    void choosingANewTargetReplacesTheOldOne()
    {
        Editor editor = clickedEditor();
        editor.choose("E3", "E7");
        QVERIFY(editor.item("E3").copiesCommands);
        QCOMPARE(editor.item("E3").copyKey, QStringLiteral("E7"));
        editor.choose("E4", "E0");
        QVERIFY(editor.item("E4").copiesCommands);
        QCOMPARE(editor.item("E4").copyKey, QStringLiteral("E0"));
    }

    void followingALinkShowsItsTarget()
    {
        Editor editor = clickedEditor();
        const TreeUpdate update = editor.run(&followLink, QStringLiteral("E3"));
        TreeUpdate expected;
        expected.clickNode(QStringLiteral("E0")).focusTree();
        QCOMPARE(update, expected);
        QVERIFY(editor.document == linkMenu());
    }

    void followingALinkThatIsOffDoesNothing()
    {
        Editor editor = clickedEditor();
        QVERIFY(editor.run(&followLink, QStringLiteral("E4")).isEmpty());
        QVERIFY(editor.run(&followLink, QStringLiteral("E2")).isEmpty());
        QVERIFY(editor.run(&followLink, QStringLiteral("E0")).isEmpty());
        QVERIFY(editor.document == linkMenu());
    }

    void selectAnItemToCopyPressesOrReleasesTheChoiceButton()
    {
        Editor editor = clickedEditor();
        TreeUpdate expected;
        expected.toggleLinkTargetChoice();
        QCOMPARE(editor.run(&toggleLinkTargetChoice, QStringLiteral("E2")), expected);
        QVERIFY(editor.document == linkMenu());
    }

    // The bulk link commands.

    void lookingForCopyCommandLinksEqualCommandLists()
    {
        Editor editor = clickedEditor();
        editor.document = menuWithUnlinkedTwins();
        MenuDocument expected = menuWithUnlinkedTwins();
        normalizeCopyLinks(expected);
        expected.saved = false;

        const TreeUpdate update = editor.run(&lookForCopyCommand, QStringLiteral("E0"));
        QVERIFY(editor.document == expected);
        QVERIFY(!editor.document.saved);
        QVERIFY(editor.item("E2").copiesCommands);
        QCOMPARE(editor.item("E2").copyKey, QStringLiteral("E7"));
        QVERIFY(editor.item("E5").copiesCommands);
        QCOMPARE(editor.item("E5").copyKey, QStringLiteral("E0"));
        TreeUpdate recolour;
        recolour.recolour();
        QCOMPARE(update, recolour);
    }

    void lookingForCopyCommandWhenEveryLinkIsInPlaceLeavesTheMenuSaved()
    {
        Editor editor = clickedEditor();
        editor.document = menuWithUnlinkedTwins();
        normalizeCopyLinks(editor.document);
        editor.document.saved = true;
        const MenuDocument before = editor.document;
        editor.run(&lookForCopyCommand, QStringLiteral("E0"));
        QVERIFY(editor.document == before);
        QVERIFY(editor.document.saved);
    }

    void bulkLinkCommandsRebuildATreeThatHidesLinks_data()
    {
        QTest::addColumn<int>("hideMode");
        QTest::addColumn<bool>("rebuilds");
        QTest::newRow("all shown") << 0 << false;
        QTest::newRow("links hidden") << 1 << true;
        QTest::newRow("items without command hidden") << 2 << false;
        QTest::newRow("both hidden") << 3 << true;
    }

    void bulkLinkCommandsRebuildATreeThatHidesLinks()
    {
        QFETCH(int, hideMode);
        QFETCH(bool, rebuilds);
        TreeUpdate expected;
        if (rebuilds) {
            expected.regenerate();
        }
        expected.recolour();

        for (auto operation : { &lookForCopyCommand, &uncheckAllCopyCommand }) {
            // Once with a change and once without: the steps do not depend on it.
            Editor editor = clickedEditor();
            editor.document = menuWithUnlinkedTwins();
            editor.document.hideMode = hideMode;
            QCOMPARE(editor.run(operation, QStringLiteral("E0")), expected);
            QCOMPARE(editor.document.hideMode, hideMode);
            QVERIFY(!editor.document.saved);
            editor.document.saved = true;
            QCOMPARE(editor.run(operation, QStringLiteral("E0")), expected);
            QVERIFY(editor.document.saved);
        }
    }

    void uncheckingAllSwitchesEveryLinkOffAndKeepsTheTargets()
    {
        Editor editor = clickedEditor();
        editor.document.items[2].copyKey = QStringLiteral("E7");
        editor.document.items[2].copiesCommands = true;
        const TreeUpdate update = editor.run(&uncheckAllCopyCommand, QStringLiteral("E0"));

        MenuDocument expected = linkMenu();
        expected.items[2].copyKey = QStringLiteral("E7");
        expected.items[3].copiesCommands = false;
        expected.saved = false;
        QVERIFY(editor.document == expected);
        QCOMPARE(editor.item("E3").copyKey, QStringLiteral("E0"));
        QCOMPARE(editor.item("E2").copyKey, QStringLiteral("E7"));
        TreeUpdate recolour;
        recolour.recolour();
        QCOMPARE(update, recolour);
    }

    void uncheckingAllWithoutLinksLeavesTheMenuSaved()
    {
        Editor editor = clickedEditor();
        editor.document.items[3].copiesCommands = false;
        const MenuDocument before = editor.document;
        editor.run(&uncheckAllCopyCommand, QStringLiteral("E0"));
        QVERIFY(editor.document == before);
        QVERIFY(editor.document.saved);
    }

    // The item panel.

    void panelOfAnItemWithOwnCommandsListsThem()
    {
        const MenuDocument document = linkMenu();
        const ItemPanel panel = itemPanel(document, 0);
        QVERIFY(!panel.linked);
        QVERIFY(panel.linkTarget.isEmpty());
        QCOMPARE(panel.commandLines, lines({ "txt=del ", "=rename " }));
    }

    void panelOfALinkShowsTheTargetsSlotAndCommands()
    {
        MenuDocument document = linkMenu();
        document.items[3].copyKey = QStringLiteral("E7");
        const ItemPanel panel = itemPanel(document, 3);
        QVERIFY(panel.linked);
        // The slot of E7, not the number in its key.
        QCOMPARE(panel.linkTarget, QStringLiteral("1"));
        QCOMPARE(panel.commandLines, lines({ "jpg=view " }));
    }

    void panelOfASwitchedOffLinkShowsTheKeptTargetAndOwnCommands()
    {
        MenuDocument document = linkMenu();
        ItemPanel panel = itemPanel(document, 4);
        QVERIFY(!panel.linked);
        QCOMPARE(panel.linkTarget, QStringLiteral("1"));
        QVERIFY(panel.commandLines.isEmpty());

        document.items[3].copiesCommands = false;
        document.items[3].commands = MenuItem::placeholderCommands() + QList<Command> { cmd("doc", "print ") };
        panel = itemPanel(document, 3);
        QVERIFY(!panel.linked);
        QCOMPARE(panel.linkTarget, QStringLiteral("0"));
        QCOMPARE(panel.commandLines, lines({ "doc=print " }));
    }

    void panelOfAnItemThatNeverHadATargetShowsNoIndex()
    {
        const MenuDocument document = linkMenu();
        for (const int slot : { 2, 5 }) {
            const ItemPanel panel = itemPanel(document, slot);
            QVERIFY(!panel.linked);
            QVERIFY(panel.linkTarget.isEmpty());
            QVERIFY(panel.commandLines.isEmpty());
        }
    }

    void panelOfALinkToAMissingItemShowsMinusOneAndNoCommands()
    {
        MenuDocument document = linkMenu();
        document.items[3].copyKey = QStringLiteral("E9");
        const ItemPanel panel = itemPanel(document, 3);
        QVERIFY(panel.linked);
        QCOMPARE(panel.linkTarget, QStringLiteral("-1"));
        QVERIFY(panel.commandLines.isEmpty());
    }

    void panelOfALinkThatNeverGotATargetShowsMinusOne()
    {
        // A switched-on link always shows where it points, even when that is nowhere.
        MenuDocument document = linkMenu();
        for (const QString& copyKey : { QStringLiteral("-1"), QString() }) {
            document.items[2].copyKey = copyKey;
            document.items[2].copiesCommands = true;
            const ItemPanel panel = itemPanel(document, 2);
            QVERIFY(panel.linked);
            QCOMPARE(panel.linkTarget, QStringLiteral("-1"));
            QVERIFY(panel.commandLines.isEmpty());
        }
    }

    void linkOperationsAreDescribedForTheSession()
    {
        QCOMPARE(EditOperations::switchLink.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::switchLink.apply == &::switchLink);

        QCOMPARE(QString::fromLatin1(EditOperations::chooseLinkTarget.name), QStringLiteral("link"));
        QCOMPARE(EditOperations::chooseLinkTarget.needs, EditOperation::Needs::Document);
        QCOMPARE(EditOperations::chooseLinkTarget.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::chooseLinkTarget.refusal == &linkTargetRefusal);
        QVERIFY(EditOperations::chooseLinkTarget.apply == &::chooseLinkTarget);

        QCOMPARE(EditOperations::followLink.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::followLink.apply == &::followLink);

        QCOMPARE(QString::fromLatin1(EditOperations::lookForCopyCommand.name), QStringLiteral("look-for-links"));
        QCOMPARE(EditOperations::lookForCopyCommand.needs, EditOperation::Needs::Document);
        QCOMPARE(EditOperations::lookForCopyCommand.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::lookForCopyCommand.apply == &::lookForCopyCommand);

        QCOMPARE(QString::fromLatin1(EditOperations::uncheckAllCopyCommand.name), QStringLiteral("uncheck-links"));
        QCOMPARE(EditOperations::uncheckAllCopyCommand.needs, EditOperation::Needs::Document);
        QCOMPARE(EditOperations::uncheckAllCopyCommand.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::uncheckAllCopyCommand.apply == &::uncheckAllCopyCommand);
    }
};

QTEST_GUILESS_MAIN(TestLinkEditing)
#include "test_linkediting.moc"
