#include "sessionfixture.h"

#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "editing/linkediting.h"
#include "editing/menureloading.h"
#include "editing/subtreecopy.h"
#include "menufile/menufixtures.h"
#include "model/errortable.h"
#include "model/menudocument.h"

#include <QTest>

namespace {

MenuItem topItem(const QString& caption, int number, const QList<Command>& commands = {})
{
    MenuItem item;
    item.caption = caption;
    item.key = QStringLiteral("E%1").arg(number);
    item.parent = -1;
    item.siblingOrder = qint16(number + 1);
    item.commands = MenuItem::placeholderCommands() + commands;
    return item;
}

/// Alpha (E0, one command), Beta (E1), Gamma (E2, a link to Alpha).
MenuDocument threeItems()
{
    MenuDocument document;
    const Command open { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") };
    document.items = { topItem(QStringLiteral("Alpha"), 0, { open }), topItem(QStringLiteral("Beta"), 1),
                       topItem(QStringLiteral("Gamma"), 2, { open }) };
    document.items[2].copiesCommands = true;
    document.items[2].copyKey = QStringLiteral("E0");
    document.lastIndex = 2;
    return document;
}

} // namespace

class TestEditingSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOperationOnAnItemNeedsAnItemNodeSelected()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        f.view.selected = SelectedNode();
        QVERIFY(!f.session.run(EditOperations::deleteItem));
        f.view.select(SelectedNode::rootKey());
        QVERIFY(!f.session.run(EditOperations::deleteItem));
        QVERIFY(!f.session.run(EditOperations::newItem));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());
        QVERIFY(f.refusals.isEmpty());
        // An operation on the whole document runs whatever is selected.
        QVERIFY(f.session.run(EditOperations::lookForCopyCommand));
        QCOMPARE(f.view.updates.size(), 1);
    }

    void newSubItemRunsOnTheRootNodeButNotWithoutANode()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        f.view.selected = SelectedNode();
        QVERIFY(!f.session.run(EditOperations::newSubItem));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());

        f.view.select(SelectedNode::rootKey());
        QVERIFY(f.session.run(EditOperations::newSubItem));
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ before }));
        QCOMPARE(f.document().items.size(), 4);
        QCOMPARE(f.document().items[3].parent, qint16(-1));
        QCOMPARE(f.document().items[3].siblingOrder, qint16(4));
        QCOMPARE(f.view.updates.size(), 1);
        // Naming it is part of the same step.
        QVERIFY(!f.state.editing().snapshotNextLabelEdit);
    }

    void nestingWithNothingToNestIntoOrOutOfDoesNothing()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        // The first item has no item above and, on the top level, no parent to leave.
        f.view.select(QStringLiteral("E0"));
        f.view.selected.nextSiblingKey = QStringLiteral("E1");
        QVERIFY(f.session.run(EditOperations::moveIntoItemAbove));
        QVERIFY(f.session.run(EditOperations::moveOutOfParent));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());
        QVERIFY(f.refusals.isEmpty());
        QVERIFY(f.criticalMessages.isEmpty());

        // The second one goes into the first in one step, and out again in another.
        f.view.select(QStringLiteral("E1"));
        f.view.selected.previousSiblingKey = QStringLiteral("E0");
        QVERIFY(f.session.run(EditOperations::moveIntoItemAbove));
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.document().items[1].parent, qint16(0));
        QCOMPARE(f.document().items[2].siblingOrder, qint16(2));
        f.view.select(QStringLiteral("E1"), QStringLiteral("E0"));
        QVERIFY(f.session.run(EditOperations::moveOutOfParent));
        QCOMPARE(f.undoCount(), 2);
        MenuDocument restored = before;
        restored.saved = false;
        QCOMPARE(f.document(), restored);
        QCOMPARE(f.view.updates.size(), 2);
    }

    void nothingRunsWithoutAnEditorWindow()
    {
        SessionFixture f;
        const qint16 index = f.open(threeItems());
        f.view.select(QStringLiteral("E1"));
        f.state.clearEditor(index);
        QVERIFY(!f.session.run(EditOperations::deleteItem));
        QCOMPARE(f.document().items.size(), 3);
    }

    void theSnapshotIsRecordedBeforeTheChangeAndTheUpdateReachesTheView()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E1"));
        QVERIFY(f.session.run(EditOperations::deleteItem));
        QCOMPARE(f.recordedDocuments, QList<MenuDocument>({ before }));
        QCOMPARE(f.undoCount(), 1);
        QVERIFY(f.undoEnabled);
        QCOMPARE(f.document().items.size(), 2);
        QVERIFY(!f.document().saved);

        MenuDocument expectedDocument = before;
        SelectedNode selected = SelectedNode::of(QStringLiteral("E1"), SelectedNode::rootKey());
        EditingState editing;
        WindowEditingState window;
        EditContext context { expectedDocument, selected, EditArguments(), editing, window };
        const TreeUpdate expectedUpdate = deleteSelectedItem(context);
        QCOMPARE(f.view.updates, QList<TreeUpdate>({ expectedUpdate }));
        expectedDocument.saved = false;
        QCOMPARE(f.document(), expectedDocument);
    }

    void aRefusalComesBeforeAnythingIsRecorded()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        EditArguments arguments;
        arguments.sourceKey = QStringLiteral("E1");
        arguments.targetKey = QStringLiteral("E2"); // a link cannot be a target
        QVERIFY(!f.session.run(EditOperations::chooseLinkTarget, arguments));
        QCOMPARE(f.refusals,
                 QStringList({ QStringLiteral("You must select an item with copycommand option unchecked "
                                              "and not the same one !") }));
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());
        QCOMPARE(f.document(), before);

        arguments.targetKey = QStringLiteral("E0");
        QVERIFY(f.session.run(EditOperations::chooseLinkTarget, arguments));
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.document().items[1].copyKey, QStringLiteral("E0"));
    }

    void aRefusalTheOperationShowsItselfCountsAsNotRun()
    {
        SessionFixture f;
        f.open(threeItems());
        f.view.select(QStringLiteral("E1"));
        EditArguments arguments;
        arguments.checked = true;
        QVERIFY(!f.session.run(EditOperations::switchLink, arguments));
        QCOMPARE(f.view.updates.size(), 1);
        QCOMPARE(f.view.updates.first().refusal(), QStringLiteral("Select an item to copy command before !"));
        QVERIFY(!f.document().items[1].copiesCommands);
        QCOMPARE(f.undoCount(), 0);
    }

    void aFailureIsReportedAndTheDocumentUndone()
    {
        SessionFixture f;
        MenuDocument full = threeItems();
        full.lastIndex = 32767;
        full.items[0].key = QStringLiteral("E32767");
        full.items[2].copyKey = QStringLiteral("E32767");
        f.open(full);
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E1"));
        QVERIFY(!f.session.run(EditOperations::newItem));
        QCOMPARE(
            f.criticalMessages,
            QStringList({ QStringLiteral("Error 6 : Overflow (mnuNewItem)\r\nThis error will undo your action") }));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        // The failed operation handed nothing to the view.
        QVERIFY(f.view.updates.isEmpty());
    }

    void anEditThatWouldPassTheMostItemsAMenuHoldsIsAnOverflowWithTheMenuAsItWas()
    {
        SessionFixture f;
        f.open(flatMenu(32767));
        const MenuDocument before = f.document();
        f.view.select(QStringLiteral("E3"));
        QVERIFY(!f.session.run(EditOperations::duplicate));
        QCOMPARE(f.criticalMessages,
                 QStringList({ QStringLiteral(
                     "Error 6 : Overflow (mnuDuplicate_Click)\r\nThis error will undo your action") }));
        QCOMPARE(f.document(), before);
        QCOMPARE(f.undoCount(), 0);
        QVERIFY(f.view.updates.isEmpty());

        // The menu is whole and savable, so the next edit runs as usual.
        QVERIFY(f.session.run(EditOperations::deleteItem));
        QCOMPARE(f.criticalMessages.size(), 1);
        QCOMPARE(f.document().items.size(), 32766);
    }

    void aCopyingDropIntoAFullMenuLeavesBothMenusAsTheyWere()
    {
        SessionFixture f;
        const qint16 source = f.open(threeItems());
        const qint16 target = f.open(flatMenu(32767));
        const MenuDocument sourceBefore = f.state.document(source);
        const MenuDocument targetBefore = f.state.document(target);
        for (const bool copy : { true, false }) {
            DropRequest request;
            request.draggedKey = QStringLiteral("E0");
            request.targetKey = QStringLiteral("E5");
            request.targetParentKey = SelectedNode::rootKey();
            request.place = DropPlace::Next;
            request.copy = copy;
            QVERIFY(!f.session.runDrop(source, target, request));
            QCOMPARE(f.criticalMessages.size(), copy ? 1 : 2);
            QVERIFY(
                f.criticalMessages.constLast().startsWith(QStringLiteral("Error 6 : Overflow (lstMenu_OLEDragDrop)")));
            QCOMPARE(f.state.document(source), sourceBefore);
            QCOMPARE(f.state.document(target), targetBefore);
        }
    }

    void aFailureOfTheViewIsReportedAndUndoneToo()
    {
        SessionFixture f;
        f.open(threeItems());
        const MenuDocument before = f.document();
        f.view.onUpdate = [](const TreeUpdate&) {
            throw RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("lstMenu_NodeClick"));
        };
        f.view.select(QStringLiteral("E0"));
        QVERIFY(!f.session.run(EditOperations::deleteItem));
        QCOMPARE(f.criticalMessages.size(), 1);
        QVERIFY(f.criticalMessages.first().startsWith(QStringLiteral("Error 9 : Subscript out of range")));
        QCOMPARE(f.document(), before);
    }

    void theEndOfALabelEditRecordsOnlyWhenTheTagSaysSo()
    {
        SessionFixture f;
        const qint16 index = f.open(threeItems());
        f.view.select(QStringLiteral("E1"));
        QVERIFY(f.session.run(EditOperations::newItem));
        QCOMPARE(f.undoCount(), 1);
        const SelectedNode created = SelectedNode::of(QStringLiteral("E3"), SelectedNode::rootKey());
        QVERIFY(f.session.runOn(index, created, EditOperations::beginLabelEdit));
        QVERIFY(!f.state.window(index).labelEditTag);
        EditArguments text;
        text.text = QStringLiteral("Delta");
        QVERIFY(f.session.runOn(index, created, EditOperations::storeLabelEdit, text));
        QCOMPARE(f.undoCount(), 1);
        QCOMPARE(f.document().items[3].caption, QStringLiteral("Delta"));

        // A later edit of any item records a step of its own; it names the item it was given, not the
        // selected one.
        QVERIFY(f.session.runOn(index, created, EditOperations::beginLabelEdit));
        QVERIFY(f.state.window(index).labelEditTag);
        text.text = QStringLiteral("Epsilon");
        f.view.select(QStringLiteral("E0"));
        QVERIFY(f.session.runOn(index, created, EditOperations::storeLabelEdit, text));
        QCOMPARE(f.undoCount(), 2);
        QCOMPARE(f.document().items[3].caption, QStringLiteral("Epsilon"));
        QCOMPARE(f.document().items[0].caption, QStringLiteral("Alpha"));
    }

    void reloadPutsTheFilesMenuInPlaceAsOneStepThatUndoesToAnUnsavedMenu_data()
    {
        QTest::addColumn<bool>("changedHere");
        QTest::newRow("changed here too") << true;
        QTest::newRow("unchanged here") << false;
    }

    void reloadPutsTheFilesMenuInPlaceAsOneStepThatUndoesToAnUnsavedMenu()
    {
        QFETCH(bool, changedHere);
        SessionFixture f;
        const qint16 index = f.open(threeItems());
        f.document().hideMode = 2;
        f.view.select(QStringLiteral("E1"));
        if (changedHere) {
            QVERIFY(f.session.run(EditOperations::newItem));
            QVERIFY(!f.document().saved);
        }
        const MenuDocument mine = f.document();
        const int stepsBefore = f.undoCount();

        auto file = std::make_shared<MenuDocument>(flatMenu(2));
        file->lastIndex = 1;
        file->filePath = f.document().filePath;
        EditArguments arguments;
        arguments.fileDocument = file;
        QVERIFY(f.session.run(index, EditOperations::reloadMenu, arguments));

        QCOMPARE(f.undoCount(), stepsBefore + 1);
        QVERIFY(f.document().items == file->items);
        QVERIFY(f.document().saved);
        QCOMPARE(f.document().hideMode, 2);
        // Keys given out before are never given out again.
        QCOMPARE(f.document().lastIndex, mine.lastIndex);
        QVERIFY(f.view.updates.last() == TreeUpdate().regenerate().recolour().showItemCount());

        f.controller.mnuUndo_Click();
        QVERIFY(f.document().items == mine.items);
        // The menu undone to no longer matches its file, even where it did before the reload.
        QVERIFY(!f.document().saved);
    }

    void reloadWithoutTheFilesMenuFailsAndChangesNothing()
    {
        SessionFixture f;
        const qint16 index = f.open(threeItems());
        const MenuDocument before = f.document();
        QVERIFY(!f.session.run(index, EditOperations::reloadMenu));
        QVERIFY(f.document().items == before.items);
        QCOMPARE(f.criticalMessages.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestEditingSession)
#include "test_editingsession.moc"
