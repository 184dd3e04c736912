#include "treeupdatetext.h"

#include "editing/itemcreation.h"

#include "model/errortable.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QTest>

namespace {

struct Node
{
    const char* key;
    int parent;
    int siblingOrder;
};

/// Items in the given array order, captioned after their keys; childCount and level are derived
/// from the parents.
MenuDocument documentOf(std::initializer_list<Node> nodes, qint16 lastIndex)
{
    MenuDocument document;
    for (const Node& node : nodes) {
        MenuItem item;
        item.key = QString::fromLatin1(node.key);
        item.caption = QStringLiteral("Caption of ") + item.key;
        item.parent = qint16(node.parent);
        item.siblingOrder = qint16(node.siblingOrder);
        document.items.append(item);
    }
    for (const MenuItem& item : std::as_const(document.items)) {
        if (item.parent >= 0) {
            ++document.items[item.parent].childCount;
        }
    }
    for (MenuItem& item : document.items) {
        int level = 1;
        for (int p = item.parent; p >= 0; p = document.items.at(p).parent) {
            ++level;
        }
        item.level = qint16(level);
    }
    document.lastIndex = lastIndex;
    document.saved = true;
    return document;
}

/// One editor window on one document, with the editing state the whole run shares.
struct Editor
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), const QString& key, const QString& parentKey,
                   const QString& text = QString())
    {
        EditContext context { document, SelectedNode::of(key, parentKey), EditArguments {}, editing, window };
        context.arguments.text = text;
        return operation(context);
    }
};

Editor editorOn(const MenuDocument& document)
{
    Editor editor;
    editor.document = document;
    return editor;
}

const MenuItem& itemWithKey(const MenuDocument& document, const QString& key)
{
    const qint16 index = findItemByKey(document, key);
    if (index < 0) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("test"));
    }
    return document.items.at(index);
}

template <typename Operation> int errorNumberOf(Operation operation)
{
    try {
        operation();
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

/// Three top-level items E0, E1, E2.
MenuDocument threeTopLevelItems()
{
    return documentOf({ { "E0", -1, 1 }, { "E1", -1, 2 }, { "E2", -1, 3 } }, 2);
}

/// A top-level submenu E4 (stored in slot 2) holding E1 and E3, between the top-level items E0 and E2.
MenuDocument submenuInTheMiddle()
{
    return documentOf({ { "E0", -1, 1 }, { "E1", 2, 1 }, { "E4", -1, 2 }, { "E3", 2, 2 }, { "E2", -1, 3 } }, 4);
}

} // namespace

class TestItemCreation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newItemIsAppendedAndNamedAfterTheItemCount()
    {
        Editor editor = editorOn(threeTopLevelItems());
        editor.run(&createItem, QStringLiteral("E1"), QStringLiteral("Root"));
        QCOMPARE(editor.document.items.size(), qsizetype(4));
        const MenuItem& created = editor.document.items.at(3);
        QCOMPARE(created.caption, QStringLiteral("New Item 4"));
        QCOMPARE(created.key, QStringLiteral("E3"));
        QCOMPARE(editor.document.lastIndex, qint16(3));
        // The items that were there stay where they were, as they were.
        const MenuDocument before = threeTopLevelItems();
        for (int i = 0; i < 3; ++i) {
            QVERIFY(editor.document.items.at(i) == before.items.at(i));
        }
    }

    void newItemCaptionMayRepeatAnExistingCaption()
    {
        MenuDocument document = documentOf({ { "E0", -1, 1 } }, 0);
        document.items[0].caption = QStringLiteral("New Item 2");
        Editor editor = editorOn(document);
        editor.run(&createItem, QStringLiteral("E0"), QStringLiteral("Root"));
        QCOMPARE(editor.document.items.at(1).caption, QStringLiteral("New Item 2"));
        QCOMPARE(editor.document.items.at(0).caption, QStringLiteral("New Item 2"));
    }

    void newItemKeyComesFromTheKeyCounterNotTheItemCount()
    {
        // E1 was deleted: the counter stays at 2, so the next key is E3 while the caption counts items.
        Editor editor = editorOn(documentOf({ { "E0", -1, 1 }, { "E2", -1, 2 } }, 2));
        editor.run(&createItem, QStringLiteral("E2"), QStringLiteral("Root"));
        QCOMPARE(editor.document.items.size(), qsizetype(3));
        QCOMPARE(editor.document.items.at(2).key, QStringLiteral("E3"));
        QCOMPARE(editor.document.items.at(2).caption, QStringLiteral("New Item 3"));
        QCOMPARE(editor.document.lastIndex, qint16(3));

        Editor far = editorOn(documentOf({ { "E0", -1, 1 }, { "E9", -1, 2 } }, 9));
        far.run(&createItem, QStringLiteral("E0"), QStringLiteral("Root"));
        QCOMPARE(far.document.items.at(2).key, QStringLiteral("E10"));
        QCOMPARE(far.document.items.at(2).caption, QStringLiteral("New Item 3"));
        QCOMPARE(far.document.lastIndex, qint16(10));
    }

    void newItemIsTheLastSiblingOfTheSelectedItem()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        editor.run(&createItem, QStringLiteral("E1"), QStringLiteral("E4"));
        const MenuItem& created = editor.document.items.at(5);
        QCOMPARE(created.key, QStringLiteral("E5"));
        QCOMPARE(created.parent, qint16(2));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E4")).childCount, qint16(3));
        QCOMPARE(created.siblingOrder, qint16(3));
        // The siblings keep their places.
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E1")).siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E3")).siblingOrder, qint16(2));
    }

    void newTopLevelItemComesAfterEveryTopLevelItem()
    {
        // Selecting the first top-level item still puts the new one last among the top level.
        Editor editor = editorOn(submenuInTheMiddle());
        editor.run(&createItem, QStringLiteral("E0"), QStringLiteral("Root"));
        const MenuItem& created = editor.document.items.at(5);
        QCOMPARE(created.parent, qint16(-1));
        QCOMPARE(created.siblingOrder, qint16(4));
        QCOMPARE(countTopLevel(editor.document), qint16(4));
        // No item gains a child.
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E0")).childCount, qint16(0));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E4")).childCount, qint16(2));
    }

    void newItemStartsWithoutLinkCommandsOrChildren()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        editor.run(&createItem, QStringLiteral("E3"), QStringLiteral("E4"));
        const MenuItem& created = editor.document.items.at(5);
        // A new item has never had a link target: its copyKey is empty, not "-1".
        QVERIFY(created.copyKey.isEmpty());
        QVERIFY(created.copyKey != QStringLiteral("-1"));
        QVERIFY(!created.copiesCommands);
        QCOMPARE(created.level, qint16(0));
        QCOMPARE(created.childCount, qint16(0));
        QCOMPARE(created.commands, MenuItem::placeholderCommands());
        QVERIFY(created.lastCopyKey.isEmpty());
    }

    void newItemNodeIsAddedSelectedAndOpenedForNaming()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        const TreeUpdate update = editor.run(&createItem, QStringLiteral("E3"), QStringLiteral("E4"));
        TreeUpdate expected;
        expected.addNode(QStringLiteral("E4"), QStringLiteral("E5"), QStringLiteral("New Item 6"))
            .showItemCount()
            .clickNode(QStringLiteral("E5"))
            .startLabelEdit(QStringLiteral("E5"));
        QCOMPARE(update, expected);
    }

    void newTopLevelItemNodeGoesUnderTheRootNode()
    {
        Editor editor = editorOn(threeTopLevelItems());
        const TreeUpdate update = editor.run(&createItem, QStringLiteral("E2"), QStringLiteral("Root"));
        TreeUpdate expected;
        expected.addNode(QStringLiteral("Root"), QStringLiteral("E3"), QStringLiteral("New Item 4"))
            .showItemCount()
            .clickNode(QStringLiteral("E3"))
            .startLabelEdit(QStringLiteral("E3"));
        QCOMPARE(update, expected);
    }

    void namingTheNewItemBelongsToTheSameUndoStep()
    {
        Editor editor = editorOn(threeTopLevelItems());
        QVERIFY(editor.editing.snapshotNextLabelEdit);
        editor.run(&createItem, QStringLiteral("E0"), QStringLiteral("Root"));
        QVERIFY(!editor.editing.snapshotNextLabelEdit);

        // The label edit that the new item opens records nothing when it ends...
        editor.window.labelEditTag = true;
        QVERIFY(editor.run(&beginLabelEdit, QStringLiteral("E3"), QStringLiteral("Root")).isEmpty());
        QVERIFY(!editor.window.labelEditTag);
        QVERIFY(editor.editing.snapshotNextLabelEdit);
        QVERIFY(editor.run(&storeLabelEdit, QStringLiteral("E3"), QStringLiteral("Root"), QStringLiteral("Notepad"))
                    .isEmpty());
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E3")).caption, QStringLiteral("Notepad"));

        // ... but the next one does again.
        editor.run(&beginLabelEdit, QStringLiteral("E3"), QStringLiteral("Root"));
        QVERIFY(editor.window.labelEditTag);
        QVERIFY(editor.editing.snapshotNextLabelEdit);
    }

    void newItemOverflowsWhenTheKeyCounterIsFull()
    {
        Editor editor = editorOn(documentOf({ { "E0", -1, 1 }, { "E32767", -1, 2 } }, 32767));
        const int number
            = errorNumberOf([&] { editor.run(&createItem, QStringLiteral("E0"), QStringLiteral("Root")); });
        QCOMPARE(number, ErrorNumber::Overflow);
        QCOMPARE(number, 6);
        // The edit that failed never names an item, so the next label edit still records its own step.
        QVERIFY(editor.editing.snapshotNextLabelEdit);
    }

    void newSubItemBecomesTheLastChildOfTheSelectedItem()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        const TreeUpdate update = editor.run(&createSubItem, QStringLiteral("E4"), QStringLiteral("Root"));
        QCOMPARE(editor.document.items.size(), qsizetype(6));
        const MenuItem& created = editor.document.items.at(5);
        QCOMPARE(created.key, QStringLiteral("E5"));
        QCOMPARE(created.caption, QStringLiteral("New Item 6"));
        QCOMPARE(created.parent, qint16(2));
        QCOMPARE(created.siblingOrder, qint16(3));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E4")).childCount, qint16(3));
        QCOMPARE(editor.document.lastIndex, qint16(5));
        TreeUpdate expected;
        expected.addNode(QStringLiteral("E4"), QStringLiteral("E5"), QStringLiteral("New Item 6"))
            .showItemCount()
            .clickNode(QStringLiteral("E5"))
            .startLabelEdit(QStringLiteral("E5"));
        QCOMPARE(update, expected);
        // The items that were there keep their places.
        const MenuDocument before = submenuInTheMiddle();
        for (int i = 0; i < 5; ++i) {
            if (i != 2) {
                QVERIFY(editor.document.items.at(i) == before.items.at(i));
            }
        }
    }

    void newSubItemOfALeafIsItsFirstChild()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        editor.run(&createSubItem, QStringLiteral("E3"), QStringLiteral("E4"));
        const MenuItem& created = editor.document.items.at(5);
        QCOMPARE(created.parent, qint16(3));
        QCOMPARE(created.siblingOrder, qint16(1));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E3")).childCount, qint16(1));
        // Its new parent stays where it was among its own siblings.
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E3")).siblingOrder, qint16(2));
        QCOMPARE(itemWithKey(editor.document, QStringLiteral("E4")).childCount, qint16(2));
    }

    void newSubItemOfTheRootIsTheLastTopLevelItem()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        const TreeUpdate update = editor.run(&createSubItem, QStringLiteral("Root"), QString());
        const MenuItem& created = editor.document.items.at(5);
        QCOMPARE(created.parent, qint16(-1));
        QCOMPARE(created.siblingOrder, qint16(4));
        QCOMPARE(countTopLevel(editor.document), qint16(4));
        TreeUpdate expected;
        expected.addNode(QStringLiteral("Root"), QStringLiteral("E5"), QStringLiteral("New Item 6"))
            .showItemCount()
            .clickNode(QStringLiteral("E5"))
            .startLabelEdit(QStringLiteral("E5"));
        QCOMPARE(update, expected);
    }

    void newSubItemIsNewItemOneLevelDown()
    {
        // New Sub-item on E4 is New Item on its last child E3, and on the root New Item on a
        // top-level item: the same item, the same key, the same node, the same undo step.
        Editor sub = editorOn(submenuInTheMiddle());
        Editor sibling = editorOn(submenuInTheMiddle());
        QCOMPARE(sub.run(&createSubItem, QStringLiteral("E4"), QStringLiteral("Root")),
                 sibling.run(&createItem, QStringLiteral("E3"), QStringLiteral("E4")));
        QVERIFY(sub.document == sibling.document);
        QCOMPARE(sub.editing.snapshotNextLabelEdit, sibling.editing.snapshotNextLabelEdit);
        QVERIFY(!sub.editing.snapshotNextLabelEdit);

        Editor top = editorOn(submenuInTheMiddle());
        Editor topSibling = editorOn(submenuInTheMiddle());
        QCOMPARE(top.run(&createSubItem, QStringLiteral("Root"), QString()),
                 topSibling.run(&createItem, QStringLiteral("E2"), QStringLiteral("Root")));
        QVERIFY(top.document == topSibling.document);
    }

    void newSubItemOverflowsAsNewItemDoes()
    {
        // The key counter is full.
        Editor full = editorOn(documentOf({ { "E0", -1, 1 }, { "E32767", -1, 2 } }, 32767));
        const int number
            = errorNumberOf([&] { full.run(&createSubItem, QStringLiteral("E0"), QStringLiteral("Root")); });
        QCOMPARE(number, ErrorNumber::Overflow);
        QVERIFY(full.editing.snapshotNextLabelEdit);

        // The menu holds as many items as a menu file can: one more would be too many.
        MenuDocument largest;
        for (int i = 0; i < 32767; ++i) {
            MenuItem item;
            item.key = QStringLiteral("E%1").arg(i);
            item.parent = -1;
            item.siblingOrder = qint16(i + 1);
            largest.items.append(item);
        }
        largest.lastIndex = 32766;
        Editor crowded = editorOn(largest);
        QCOMPARE(errorNumberOf([&] { crowded.run(&createSubItem, QStringLiteral("E5"), QStringLiteral("Root")); }), 6);
        QCOMPARE(errorNumberOf([&] { crowded.run(&createSubItem, QStringLiteral("Root"), QString()); }), 6);
        QCOMPARE(errorNumberOf([&] { crowded.run(&createItem, QStringLiteral("E5"), QStringLiteral("Root")); }), 6);
        QCOMPARE(crowded.document.items.size(), qsizetype(32767));
        QCOMPARE(crowded.document.lastIndex, qint16(32766));
        QCOMPARE(itemWithKey(crowded.document, QStringLiteral("E5")).childCount, qint16(0));
    }

    void labelEditStartHandsTheSnapshotFlagToTheWindow_data()
    {
        QTest::addColumn<bool>("snapshotNextLabelEdit");
        QTest::newRow("after New Item") << false;
        QTest::newRow("any other edit") << true;
    }

    void labelEditStartHandsTheSnapshotFlagToTheWindow()
    {
        QFETCH(bool, snapshotNextLabelEdit);
        Editor editor = editorOn(threeTopLevelItems());
        editor.editing.snapshotNextLabelEdit = snapshotNextLabelEdit;
        editor.window.labelEditTag = !snapshotNextLabelEdit;
        const TreeUpdate update = editor.run(&beginLabelEdit, QStringLiteral("E1"), QStringLiteral("Root"));
        QVERIFY(update.isEmpty());
        QCOMPARE(editor.window.labelEditTag, snapshotNextLabelEdit);
        QVERIFY(editor.editing.snapshotNextLabelEdit);
        QVERIFY(editor.document == threeTopLevelItems());
    }

    void confirmedLabelIsStoredExactlyAsTyped()
    {
        Editor editor = editorOn(threeTopLevelItems());
        editor.editing.snapshotNextLabelEdit = false;
        const QString typed = QStringLiteral("  Open &with  ");
        const TreeUpdate update = editor.run(&storeLabelEdit, QStringLiteral("E1"), QStringLiteral("Root"), typed);
        QVERIFY(update.isEmpty());
        QCOMPARE(editor.document.items.at(1).caption, typed);
        QVERIFY(editor.editing.snapshotNextLabelEdit);
        // Only the caption of the edited item changes.
        MenuDocument expected = threeTopLevelItems();
        expected.items[1].caption = typed;
        QVERIFY(editor.document == expected);
    }

    void emptyLabelGivesAnEmptyCaption()
    {
        Editor editor = editorOn(threeTopLevelItems());
        editor.run(&storeLabelEdit, QStringLiteral("E2"), QStringLiteral("Root"), QString());
        QVERIFY(editor.document.items.at(2).caption.isEmpty());
        editor.run(&storeLabelEdit, QStringLiteral("E0"), QStringLiteral("Root"), QStringLiteral(" "));
        QCOMPARE(editor.document.items.at(0).caption, QStringLiteral(" "));
    }

    void labelOfAnItemThatIsGoneIsError9()
    {
        Editor editor = editorOn(threeTopLevelItems());
        const int number = errorNumberOf(
            [&] { editor.run(&storeLabelEdit, QStringLiteral("E7"), QStringLiteral("Root"), QStringLiteral("x")); });
        QCOMPARE(number, 9);
        QVERIFY(editor.document == threeTopLevelItems());
    }

    void renamingOpensTheSelectedLabelAndChangesNothing()
    {
        Editor editor = editorOn(submenuInTheMiddle());
        const TreeUpdate update = editor.run(&startRenaming, QStringLiteral("E3"), QStringLiteral("E4"));
        TreeUpdate expected;
        expected.startLabelEdit(QStringLiteral("E3"));
        QCOMPARE(update, expected);
        QVERIFY(editor.document == submenuInTheMiddle());
    }

    void itemOperationsAreDescribedForTheSession()
    {
        QCOMPARE(QString::fromLatin1(EditOperations::newItem.name), QStringLiteral("new-item"));
        QCOMPARE(EditOperations::newItem.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::newItem.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::newItem.apply == &createItem);

        QCOMPARE(QString::fromLatin1(EditOperations::rename.name), QStringLiteral("rename"));
        QCOMPARE(EditOperations::rename.needs, EditOperation::Needs::ItemNode);
        QCOMPARE(EditOperations::rename.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::rename.apply == &startRenaming);

        QCOMPARE(EditOperations::beginLabelEdit.recording, EditOperation::Recording::Nothing);
        QVERIFY(EditOperations::beginLabelEdit.apply == &::beginLabelEdit);

        QCOMPARE(EditOperations::storeLabelEdit.recording, EditOperation::Recording::SnapshotWhenLabelTagged);
        QVERIFY(EditOperations::storeLabelEdit.apply == &::storeLabelEdit);

        // New Sub-item also runs with the root selected.
        QCOMPARE(QString::fromLatin1(EditOperations::newSubItem.name), QStringLiteral("new-sub-item"));
        QCOMPARE(EditOperations::newSubItem.needs, EditOperation::Needs::Node);
        QCOMPARE(EditOperations::newSubItem.recording, EditOperation::Recording::SnapshotBefore);
        QVERIFY(EditOperations::newSubItem.apply == &createSubItem);
        QVERIFY(EditOperations::newSubItem.applicable == nullptr);
    }
};

QTEST_GUILESS_MAIN(TestItemCreation)
#include "test_itemcreation.moc"
