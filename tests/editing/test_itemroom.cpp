#include "menufile/menufixtures.h"

#include "editing/itemcreation.h"
#include "editing/itemmoving.h"
#include "editing/itemroom.h"
#include "editing/subtreecopy.h"

#include "model/errortable.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QTest>

#include <functional>

namespace {

/// The error `operation` throws; number 0 when it throws none.
RunTimeError errorOf(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const RunTimeError& error) {
        return error;
    }
    return RunTimeError::noError();
}

/// `count` top-level items, the first of which holds a chain of `branch` - 1 items below it.
MenuDocument menuWithBranch(int count, int branch)
{
    MenuDocument document = flatMenu(count);
    for (int i = 1; i < branch; ++i) {
        MenuItem& item = document.items[i];
        item.parent = qint16(i - 1);
        item.siblingOrder = 1;
        item.level = qint16(i);
        document.items[i - 1].childCount = 1;
    }
    for (int i = branch; i < count; ++i) {
        document.items[i].siblingOrder = qint16(i - branch + 2);
    }
    return document;
}

struct Editor
{
    MenuDocument document;
    EditingState editing;
    WindowEditingState window;

    TreeUpdate run(TreeUpdate (*operation)(EditContext&), const QString& key, const QString& parentKey)
    {
        EditContext context { document, SelectedNode::of(key, parentKey), EditArguments {}, editing, window };
        return operation(context);
    }
};

DropRequest copyDrop(const QString& draggedKey, const QString& targetKey)
{
    DropRequest request;
    request.draggedKey = draggedKey;
    request.targetKey = targetKey;
    request.targetParentKey = SelectedNode::rootKey();
    request.place = DropPlace::Next;
    request.copy = true;
    return request;
}

} // namespace

class TestItemRoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMenuHoldsAtMost32767Items()
    {
        const MenuDocument full = flatMenu(32767);
        ensureRoomForNewItems(full, 0, "test");
        const RunTimeError error = errorOf([&full] { ensureRoomForNewItems(full, 1, "mnuSomething"); });
        QCOMPARE(error.number(), ErrorNumber::Overflow);
        QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (mnuSomething)"));

        const MenuDocument almost = flatMenu(32766);
        ensureRoomForNewItems(almost, 1, "test");
        QCOMPARE(errorOf([&almost] { ensureRoomForNewItems(almost, 2, "test"); }).number(), ErrorNumber::Overflow);
        QCOMPARE(errorOf([&almost] { ensureRoomForNewItems(almost, 70000, "test"); }).number(), ErrorNumber::Overflow);
    }

    void theKeyCounterRunsOutBeforeTheItemCountAfterDeletions()
    {
        MenuDocument document = flatMenu(10);
        document.lastIndex = 32765;
        ensureRoomForNewItems(document, 2, "test");
        QCOMPARE(errorOf([&document] { ensureRoomForNewItems(document, 3, "test"); }).number(), ErrorNumber::Overflow);
    }

    void newItemOnAFullMenuFailsBeforeAnyChange()
    {
        Editor editor { flatMenu(32767), {}, {} };
        const MenuDocument before = editor.document;
        const RunTimeError error
            = errorOf([&editor] { editor.run(&createItem, QStringLiteral("E5"), SelectedNode::rootKey()); });
        QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (mnuNewItem)"));
        QCOMPARE(editor.document, before);
        // No label edit was started, so the next one records its own step.
        QVERIFY(editor.editing.snapshotNextLabelEdit);

        // One item less, and the new one is the last a menu can hold.
        editor.document = flatMenu(32766);
        editor.run(&createItem, QStringLiteral("E5"), SelectedNode::rootKey());
        QCOMPARE(editor.document.items.size(), 32767);
    }

    void duplicateThatWouldPassTheLimitFailsBeforeAnyChange()
    {
        // A branch of 8 items beside 32,752 more: its copy would make 32,768.
        Editor editor { menuWithBranch(32760, 8), {}, {} };
        const MenuDocument before = editor.document;
        const RunTimeError error
            = errorOf([&editor] { editor.run(&duplicateItem, QStringLiteral("E0"), SelectedNode::rootKey()); });
        QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (mnuDuplicate_Click)"));
        // Not even the source items' note of their newest copy has changed.
        QCOMPARE(editor.document, before);

        // A branch of 7 fills the menu exactly.
        editor.document = menuWithBranch(32760, 7);
        editor.run(&duplicateItem, QStringLiteral("E0"), SelectedNode::rootKey());
        QCOMPARE(editor.document.items.size(), 32767);
        QCOMPARE(editor.document.lastIndex, qint16(32766));
    }

    void aBranchThatLoopsBackIsRefusedInsteadOfCopiedForEver()
    {
        // A pasted record keeps the parent it was copied under, which can be the item itself.
        Editor editor { flatMenu(3), {}, {} };
        editor.document.items[1].parent = 1;
        editor.document.items[1].childCount = 1;
        editor.document.items[1].siblingOrder = 1;
        const MenuDocument before = editor.document;
        const RunTimeError error
            = errorOf([&editor] { editor.run(&duplicateItem, QStringLiteral("E1"), SelectedNode::rootKey()); });
        QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (mnuDuplicate_Click)"));
        QCOMPARE(editor.document, before);
    }

    void aCopyingDropWithinAMenuFailsBeforeAnyChange()
    {
        MenuDocument document = menuWithBranch(32760, 8);
        document.windowIndex = 1;
        const MenuDocument before = document;
        const RunTimeError error = errorOf(
            [&document] { dropCopy(document, document, copyDrop(QStringLiteral("E0"), QStringLiteral("E9"))); });
        QCOMPARE(error.report(), QStringLiteral("Error 6 : Overflow (lstMenu_OLEDragDrop)"));
        QCOMPARE(document, before);
    }

    void aDropIntoAFullMenuFromAnotherFailsBeforeAnyChangeToEither()
    {
        MenuDocument source = menuWithBranch(20, 3);
        source.windowIndex = 1;
        MenuDocument target = flatMenu(32765);
        target.windowIndex = 2;
        const MenuDocument sourceBefore = source;
        const MenuDocument targetBefore = target;
        const DropRequest copy = copyDrop(QStringLiteral("E0"), QStringLiteral("E4"));
        QCOMPARE(errorOf([&] { dropCopy(source, target, copy); }).report(),
                 QStringLiteral("Error 6 : Overflow (lstMenu_OLEDragDrop)"));
        QCOMPARE(source, sourceBefore);
        QCOMPARE(target, targetBefore);

        // Moving the branch over copies it first: refused the same, and it stays where it was.
        DropRequest move = copy;
        move.copy = false;
        EditingState editing;
        QCOMPARE(errorOf([&] { dropMoveBetween(source, target, move, editing); }).report(),
                 QStringLiteral("Error 6 : Overflow (lstMenu_OLEDragDrop)"));
        QCOMPARE(source, sourceBefore);
        QCOMPARE(target, targetBefore);

        // Two items fit.
        dropCopy(source, target, copyDrop(QStringLiteral("E1"), QStringLiteral("E4")));
        QCOMPARE(target.items.size(), 32767);
    }
};

QTEST_GUILESS_MAIN(TestItemRoom)
#include "test_itemroom.moc"
