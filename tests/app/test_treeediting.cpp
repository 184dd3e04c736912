#include "guisandbox.h"
#include "treehelpers.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/editingsession.h"
#include "core/optionsstore.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "model/menudocument.h"

#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using TreeHelpers::clickNode;
using TreeHelpers::colourOf;
using TreeHelpers::isBold;
using TreeHelpers::labelEditor;
using TreeHelpers::nodeOutline;
using TreeHelpers::texts;
using TreeHelpers::typeLabel;

namespace {

const QColor black(0, 0, 0);
const QColor navy(0, 0, 128);
const QColor maroon(128, 0, 0);

QString panelText(GuiSandbox& sandbox, int panel)
{
    return sandbox.window().findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel))->text();
}

int undoCount(GuiSandbox& sandbox, qint16 index)
{
    return sandbox.window().state().histories().history(index).undoCount();
}

} // namespace

class TestTreeEditing : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GuiSandbox> m_sandbox;
    qint16 m_index = 0;

    GuiSandbox& sandbox() { return *m_sandbox; }
    MainWindow& window() { return m_sandbox->window(); }
    const MenuDocument& document() { return window().state().document(m_index); }
    ItemTree& tree() { return *window().editor(m_index)->tree(); }

    /// Opens a menu of `itemLines` in a shown main window.
    void open(const QStringList& itemLines, const QStringList& commandLines = {})
    {
        QVERIFY(sandbox().showWindow());
        m_index = sandbox().openMenu(QStringLiteral("menu.ini"), itemLines, commandLines);
        QVERIFY(m_index > 0);
    }

    void openThree() { open({ QStringLiteral("Alpha"), QStringLiteral("Beta"), QStringLiteral("Gamma") }); }

private Q_SLOTS:
    void init() { m_sandbox = std::make_unique<GuiSandbox>(); }
    void cleanup() { m_sandbox.reset(); }

    // ---- Delete ------------------------------------------------------------------------------

    void deletingTheFirstOfThreeMovesTheLastIntoItsSlot()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDelete"));

        QCOMPARE(document().items.size(), 2);
        QCOMPARE(document().items[0].key, QStringLiteral("E2"));
        QCOMPARE(document().items[0].caption, QStringLiteral("Gamma"));
        QCOMPARE(document().items[0].siblingOrder, qint16(2));
        QCOMPARE(document().items[1].key, QStringLiteral("E1"));
        QCOMPARE(document().items[1].siblingOrder, qint16(1));
        QCOMPARE(document().lastIndex, qint16(2));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Beta", "  Gamma" }));
        // The first item is selected and shown.
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E1")));
        QCOMPARE(panelText(sandbox(), 2), QStringLiteral("1"));
        QCOMPARE(panelText(sandbox(), 4), QStringLiteral("2"));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(1 ; 0)"));
        QVERIFY(!document().saved);
        QCOMPARE(undoCount(sandbox(), m_index), 1);

        // Keys are never given out twice.
        sandbox().trigger(QStringLiteral("mnuNewItem"));
        QCOMPARE(document().items.last().key, QStringLiteral("E3"));
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void aNewItemAfterADeletionTakesTheNextKey()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        sandbox().trigger(QStringLiteral("mnuNewItem"));
        QCOMPARE(document().items.size(), 3);
        QCOMPARE(document().items[2].key, QStringLiteral("E3"));
        QCOMPARE(document().items[2].caption, QStringLiteral("New Item 3"));
        QCOMPARE(document().lastIndex, qint16(3));
    }

    void deletingABranchRemovesEveryDescendant()
    {
        QVERIFY(sandbox().showWindow());
        m_index = window().openMenu(sandbox().copyExample(QStringLiteral("archive-tools.ini")),
                                    QStringLiteral("archive-tools.ini"));
        QVERIFY(m_index > 0);
        const MenuDocument before = document();
        clickNode(tree(), QStringLiteral("E0")); // Archive, with four items below it
        sandbox().trigger(QStringLiteral("mnuDelete"));

        QCOMPARE(document().items.size(), before.items.size() - 5);
        for (const QString& gone : texts({ "E0", "E1", "E2", "E3", "E4" })) {
            QVERIFY2(!tree().nodeByKey(gone).isValid(), qPrintable(gone));
            for (const MenuItem& item : document().items) {
                QVERIFY(item.key != gone);
            }
        }
        QCOMPARE(nodeOutline(tree()).first(), QStringLiteral("KELV"));
        QCOMPARE(nodeOutline(tree()).at(1), QStringLiteral("  Files"));
        QCOMPARE(panelText(sandbox(), 4), QString::number(before.items.size() - 5));

        // One undo step brings everything back.
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(), before);
        QCOMPARE(tree().nodeCount(), int(before.items.size()) + 1);
    }

    void deletingTheOnlyItemLeavesAFreshOne()
    {
        open({ QStringLiteral("Only") }, { QStringLiteral("0001:txt=notepad") });
        sandbox().trigger(QStringLiteral("mnuDelete"));

        QCOMPARE(document().items.size(), 1);
        const MenuItem& fresh = document().items.first();
        QCOMPARE(fresh.caption, QStringLiteral("New item 1"));
        QCOMPARE(fresh.key, QStringLiteral("E0"));
        QCOMPARE(fresh.level, qint16(1));
        QCOMPARE(fresh.parent, qint16(-1));
        QCOMPARE(fresh.childCount, qint16(0));
        QCOMPARE(fresh.siblingOrder, qint16(1));
        QCOMPARE(fresh.copyKey, QStringLiteral("-1"));
        QVERIFY(!fresh.hasOwnCommands());
        // The tree spells it with a capital I.
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  New Item 1" }));
        QCOMPARE(tree().keyOf(tree().node(2)), QStringLiteral("E0"));
        QCOMPARE(tree().currentIndex(), tree().node(2));
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), black);
        QCOMPARE(panelText(sandbox(), 4), QStringLiteral("1"));
    }

    void deletingTheTopItemThatHoldsEverythingLeavesAFreshOne()
    {
        open({ QStringLiteral("Top"), QStringLiteral("···Middle"), QStringLiteral("······Bottom") },
             { QStringLiteral("0003:=del $fs-001$") });
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        QCOMPARE(document().items.size(), 1);
        QCOMPARE(document().items.first().caption, QStringLiteral("New item 1"));
        QCOMPARE(document().items.first().key, QStringLiteral("E0"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  New Item 1" }));
        QCOMPARE(document().lastIndex, qint16(2));
    }

    void linksToADeletedItemKeepItsCommandsAndAreLinkedAgain()
    {
        // With link detection on, X and Y link to D, which holds the same command.
        Options options;
        options.checkCopyCommand = 1;
        sandbox().optionsStore().saveOptions(options);
        open({ QStringLiteral("D"), QStringLiteral("X"), QStringLiteral("Y") },
             { QStringLiteral("0001:txt=edit $fs-001$"), QStringLiteral("0002:txt=edit $fs-001$"),
               QStringLiteral("0003:txt=edit $fs-001$") });
        QVERIFY(document().items[1].copiesCommands);
        QVERIFY(document().items[2].copiesCommands);

        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        // Y moved into D's slot and now comes first: X keeps D's commands and links to Y.
        QCOMPARE(document().items.size(), 2);
        const MenuItem& y = document().items[0];
        const MenuItem& x = document().items[1];
        QCOMPARE(y.key, QStringLiteral("E2"));
        QVERIFY(!y.copiesCommands);
        QCOMPARE(y.copyKey, QStringLiteral("-1"));
        QCOMPARE(y.commands.size(), 2);
        QCOMPARE(y.commands[1].command, QStringLiteral("edit $fs-001$"));
        QCOMPARE(x.key, QStringLiteral("E1"));
        QVERIFY(x.copiesCommands);
        QCOMPARE(x.copyKey, QStringLiteral("E2"));
        QCOMPARE(x.commands, y.commands);
        // The colours follow: the holder of the commands is maroon, the link black.
        QCOMPARE(colourOf(tree(), QStringLiteral("E2")), maroon);
        QCOMPARE(colourOf(tree(), QStringLiteral("E1")), black);
    }

    void deletingTheLastChildRecoloursItsParent()
    {
        open({ QStringLiteral("Parent"), QStringLiteral("···Child") });
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), navy);
        QVERIFY(isBold(tree(), QStringLiteral("E0")));
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Parent" }));
        QCOMPARE(colourOf(tree(), QStringLiteral("E0")), black);
        QVERIFY(!isBold(tree(), QStringLiteral("E0")));
    }

    void theDeleteKeyDeletesOnlyWhileTheTreeHasTheFocus()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E2"));
        tree().setFocus();
        QTRY_VERIFY(tree().hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
        QCOMPARE(document().items.size(), 2);
        QVERIFY(!tree().nodeByKey(QStringLiteral("E2")).isValid());

        // The command list keeps the key to itself.
        auto* list = window().editor(m_index)->findChild<QListWidget*>(QStringLiteral("lstCommand"));
        list->setFocus();
        QTRY_VERIFY(list->hasFocus());
        QTest::keyClick(list, Qt::Key_Delete);
        QCOMPARE(document().items.size(), 2);

        // While a label is edited, Delete edits the label.
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        QLineEdit* editor = labelEditor(tree());
        QVERIFY(editor);
        editor->setCursorPosition(0);
        QTest::keyClick(editor, Qt::Key_Delete);
        QCOMPARE(editor->text(), QStringLiteral("eta"));
        QCOMPARE(document().items.size(), 2);
        QTest::keyClick(editor, Qt::Key_Escape);
    }

    void nothingThatNeedsAnItemWorksOnTheRoot()
    {
        openThree();
        tree().setCurrentIndex(tree().node(1));
        for (const QString& name : texts({ "mnuDelete", "mnuNewItem", "mnuRename", "mnuSelectCopy" })) {
            QVERIFY2(!sandbox().action(name)->isEnabled(), qPrintable(name));
        }
        const MenuDocument before = document();
        QVERIFY(!window().session().run(EditOperations::deleteItem));
        QVERIFY(!window().session().run(EditOperations::newItem));
        QCOMPARE(document(), before);
        QCOMPARE(undoCount(sandbox(), m_index), 0);
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    // ---- New item, rename, label editing -------------------------------------------------------

    void aNewItemIsTheLastSiblingOfTheSelectedTopLevelItem()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuNewItem"));

        QCOMPARE(document().items.size(), 4);
        const MenuItem& created = document().items[3];
        QCOMPARE(created.caption, QStringLiteral("New Item 4"));
        QCOMPARE(created.key, QStringLiteral("E3"));
        QCOMPARE(created.parent, qint16(-1));
        QCOMPARE(created.siblingOrder, qint16(4));
        QCOMPARE(created.level, qint16(0));
        QCOMPARE(created.copyKey, QString());
        QVERIFY(!created.copiesCommands);
        QCOMPARE(document().lastIndex, qint16(3));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "  Beta", "  Gamma", "  New Item 4" }));
        // Selected, shown and ready to be named.
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E3")));
        QCOMPARE(window().state().lastNodeIndex(), qint16(tree().nodeCount()));
        QCOMPARE(panelText(sandbox(), 4), QStringLiteral("4"));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(4 ; 0)"));
        QVERIFY(tree().isEditingLabel());
        QCOMPARE(labelEditor(tree())->text(), QStringLiteral("New Item 4"));

        typeLabel(tree(), QStringLiteral("Zip tools"));
        QCOMPARE(document().items[3].caption, QStringLiteral("Zip tools"));
        QCOMPARE(tree().textOf(tree().nodeByKey(QStringLiteral("E3"))), QStringLiteral("Zip tools"));
        // Creating and naming it is one undo step.
        QCOMPARE(undoCount(sandbox(), m_index), 1);
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document().items.size(), 3);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Alpha", "  Beta", "  Gamma" }));
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void aNewItemUnderAParentIsItsLastChild()
    {
        open({ QStringLiteral("P"), QStringLiteral("···a"), QStringLiteral("···b"), QStringLiteral("Q") });
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuNewItem"));
        QCOMPARE(document().items.size(), 5);
        const MenuItem& created = document().items[4];
        QCOMPARE(created.caption, QStringLiteral("New Item 5"));
        QCOMPARE(created.parent, qint16(0));
        QCOMPARE(created.siblingOrder, qint16(3));
        QCOMPARE(document().items[0].childCount, qint16(3));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  P", "    a", "    b", "    New Item 5", "  Q" }));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(3 ; 0)"));
        QTest::keyClick(labelEditor(tree()), Qt::Key_Escape);
        QTRY_VERIFY(!tree().isEditingLabel());
        QCOMPARE(document().items[4].caption, QStringLiteral("New Item 5"));
    }

    void anItemDeletedOrUndoneWhileItsLabelIsEditedLeavesLaterEditsWorking()
    {
        openThree();
        for (const char* entry : { "mnuDelete", "mnuUndo" }) {
            clickNode(tree(), QStringLiteral("E0"));
            sandbox().trigger(QStringLiteral("mnuNewItem"));
            QVERIFY(tree().isEditingLabel());
            // The menu entry is chosen while the label editor is still open.
            sandbox().trigger(QString::fromLatin1(entry));
            QCOMPARE(document().items.size(), 3);
            QVERIFY(!tree().isEditingLabel());
            QTRY_VERIFY(tree().viewport()->findChildren<QLineEdit*>().isEmpty());

            clickNode(tree(), QStringLiteral("E1"));
            sandbox().trigger(QStringLiteral("mnuRename"));
            QVERIFY2(tree().isEditingLabel(), entry);
            typeLabel(tree(), QStringLiteral("Bravo"));
            QCOMPARE(document().items[1].caption, QStringLiteral("Bravo"));
        }
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void renamingIsAnUndoStepOfItsOwn()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuNewItem"));
        typeLabel(tree(), QStringLiteral("Delta"));
        QCOMPARE(undoCount(sandbox(), m_index), 1);

        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        QVERIFY(tree().isEditingLabel());
        QCOMPARE(undoCount(sandbox(), m_index), 1); // nothing is recorded before the edit ends
        typeLabel(tree(), QStringLiteral("Bravo"));
        QCOMPARE(document().items[1].caption, QStringLiteral("Bravo"));
        QCOMPARE(undoCount(sandbox(), m_index), 2);

        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document().items[1].caption, QStringLiteral("Beta"));
        QCOMPARE(tree().textOf(tree().nodeByKey(QStringLiteral("E1"))), QStringLiteral("Beta"));
        QCOMPARE(document().items[3].caption, QStringLiteral("Delta"));
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document().items.size(), 3);
    }

    void escapeCancelsALabelEditAndRecordsNothing()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E2"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        QLineEdit* editor = labelEditor(tree());
        QVERIFY(editor);
        QTest::keyClicks(editor, QStringLiteral("xyz"));
        QTest::keyClick(editor, Qt::Key_Escape);
        QTRY_VERIFY(!tree().isEditingLabel());
        QCOMPARE(document().items[2].caption, QStringLiteral("Gamma"));
        QCOMPARE(tree().textOf(tree().nodeByKey(QStringLiteral("E2"))), QStringLiteral("Gamma"));
        QCOMPARE(undoCount(sandbox(), m_index), 0);
        QVERIFY(document().saved);
        // The next edit records as usual.
        sandbox().trigger(QStringLiteral("mnuRename"));
        typeLabel(tree(), QStringLiteral("G"));
        QCOMPARE(undoCount(sandbox(), m_index), 1);
    }

    void anEmptyLabelGivesAnEmptyCaption()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        typeLabel(tree(), QString());
        QCOMPARE(document().items[1].caption, QString());
        QCOMPARE(undoCount(sandbox(), m_index), 1);
    }

    void theKeysOfTheTreeCreateAndRename()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E0"));
        tree().setFocus();
        QTRY_VERIFY(tree().hasFocus());
        QTest::keyClick(&tree(), Qt::Key_Insert);
        QCOMPARE(document().items.size(), 4);
        QVERIFY(tree().isEditingLabel());
        typeLabel(tree(), QStringLiteral("Inserted"));
        QCOMPARE(document().items[3].caption, QStringLiteral("Inserted"));

        clickNode(tree(), QStringLiteral("E1"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_F2);
        QVERIFY(tree().isEditingLabel());
        typeLabel(tree(), QStringLiteral("Renamed"));
        QCOMPARE(document().items[1].caption, QStringLiteral("Renamed"));
        QCOMPARE(undoCount(sandbox(), m_index), 2);
        QCOMPARE(sandbox().action(QStringLiteral("mnuNewItem"))->shortcut(), QKeySequence(Qt::Key_Insert));
        QCOMPARE(sandbox().action(QStringLiteral("mnuRename"))->shortcut(), QKeySequence(Qt::Key_F2));
        QCOMPARE(sandbox().action(QStringLiteral("mnuDelete"))->shortcut(), QKeySequence(QKeySequence::Delete));
    }

    void aLabelEditEndedByAClickElsewhereNamesItsOwnItem()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuRename"));
        QLineEdit* editor = labelEditor(tree());
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, QStringLiteral("First"));
        clickNode(tree(), QStringLiteral("E2"));
        QTRY_VERIFY(!tree().isEditingLabel());
        QCOMPARE(document().items[0].caption, QStringLiteral("First"));
        QCOMPARE(document().items[2].caption, QStringLiteral("Gamma"));
    }

    // ---- Cut, copy, paste, duplicate -----------------------------------------------------------

    void pasteOverwritesAnItemInAnotherWindowWithTheCopiedRecord()
    {
        open(texts({ "Alpha", "Beta" }), texts({ "0002:txt=notepad $fs-001$" }));
        const qint16 first = m_index;
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuCopy"));
        QCOMPARE(undoCount(sandbox(), first), 0);

        m_index = sandbox().openMenu(QStringLiteral("other.ini"), texts({ "One", "···Two", "Three" }));
        const MenuDocument before = document();
        const int nodes = tree().nodeCount();
        clickNode(tree(), QStringLiteral("E2"));
        sandbox().trigger(QStringLiteral("mnuPaste"));
        const MenuItem& pasted = document().items[2];
        QCOMPARE(pasted.key, QStringLiteral("E2"));
        QCOMPARE(pasted.caption, QStringLiteral("Beta"));
        QCOMPARE(pasted.siblingOrder, qint16(2));
        QCOMPARE(pasted.commands.size(), 2);
        QCOMPARE(pasted.commands[1].command, QStringLiteral("notepad $fs-001$"));
        // Only the node's text changes; nothing is rebuilt or recoloured.
        QCOMPARE(tree().textOf(tree().nodeByKey(QStringLiteral("E2"))), QStringLiteral("Beta"));
        QCOMPARE(tree().nodeCount(), nodes);
        QCOMPARE(colourOf(tree(), QStringLiteral("E2")), black);
        QCOMPARE(undoCount(sandbox(), m_index), 1);
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(), before);
    }

    void pasteOntoAParentKeepsItsKeyButTakesTheCopiedChildCount()
    {
        open(texts({ "Leaf", "Parent", "···a", "···b" }));
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuCopy"));
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuPaste"));
        const MenuItem& pasted = document().items[1];
        QCOMPARE(pasted.key, QStringLiteral("E1"));
        QCOMPARE(pasted.caption, QStringLiteral("Leaf"));
        QCOMPARE(pasted.childCount, qint16(0));
        QCOMPARE(pasted.siblingOrder, qint16(2));
        // Its children still name it as their parent, and still show until the tree is rebuilt.
        QCOMPARE(document().items[2].parent, qint16(1));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Leaf", "  Leaf", "    a", "    b" }));
        sandbox().trigger(QStringLiteral("mnuRefresh"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Leaf", "  Leaf" }));
    }

    void aCopiedItemCanBePastedAfterItsDeletion()
    {
        open(texts({ "Alpha", "Beta", "Gamma" }), texts({ "0002:txt=b", "0003:txt=b" }));
        sandbox().trigger(QStringLiteral("mnuLFCopyCommand"));
        QVERIFY(document().items[2].copiesCommands);
        clickNode(tree(), QStringLiteral("E1"));
        sandbox().trigger(QStringLiteral("mnuCopy"));
        sandbox().trigger(QStringLiteral("mnuDelete"));
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuPaste"));
        const MenuItem& pasted = document().items[0];
        QCOMPARE(pasted.caption, QStringLiteral("Beta"));
        QCOMPARE(pasted.commands.size(), 2);
        QCOMPARE(pasted.key, QStringLiteral("E0"));
    }

    void cutTakesTwoUndoSteps()
    {
        openThree();
        const MenuDocument before = document();
        clickNode(tree(), QStringLiteral("E1"));
        QVERIFY(!sandbox().action(QStringLiteral("mnuPaste"))->isEnabled());
        sandbox().trigger(QStringLiteral("mnuCut"));
        QCOMPARE(document().items.size(), 2);
        QVERIFY(!tree().nodeByKey(QStringLiteral("E1")).isValid());
        QVERIFY(sandbox().action(QStringLiteral("mnuPaste"))->isEnabled());
        QCOMPARE(undoCount(sandbox(), m_index), 2);
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document().items.size(), 3);
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document(), before);
        // Paste stays on for good once something was copied.
        QVERIFY(sandbox().action(QStringLiteral("mnuPaste"))->isEnabled());
    }

    void duplicateCopiesABranchOfThreeLevelsWithKeysInPreOrder()
    {
        QVERIFY(sandbox().showWindow());
        m_index = window().openMenu(sandbox().copyExample(QStringLiteral("archive-tools.ini")),
                                    QStringLiteral("archive-tools.ini"));
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDuplicate"));

        QCOMPARE(document().items.size(), 16);
        const QStringList captions = texts({ "Archive", "Pack", "Unpack", "Unpack here", "Unpack to folder…" });
        for (int n = 0; n < 5; ++n) {
            const MenuItem& copy = document().items.at(11 + n);
            QCOMPARE(copy.key, QStringLiteral("E%1").arg(11 + n));
            QCOMPARE(copy.caption, captions.at(n));
        }
        const MenuItem& top = document().items[11];
        QCOMPARE(top.parent, qint16(-1));
        QCOMPARE(top.siblingOrder, qint16(5));
        QCOMPARE(top.childCount, qint16(2));
        QCOMPARE(document().items[13].childCount, qint16(2));
        QCOMPARE(document().items[14].parent, qint16(13));
        QCOMPARE(document().items[0].lastCopyKey, QStringLiteral("E11"));
        // The copy follows the last sibling, its nodes added, coloured, and expanded as the rest of
        // the tree.
        const QModelIndex copyNode = tree().nodeByKey(QStringLiteral("E11"));
        QCOMPARE(copyNode.parent(), tree().node(1));
        QCOMPARE(copyNode.row(), 4);
        QCOMPARE(tree().model()->rowCount(copyNode), 2);
        QVERIFY(tree().isExpanded(copyNode));
        QCOMPARE(colourOf(tree(), QStringLiteral("E12")), maroon);
        QCOMPARE(colourOf(tree(), QStringLiteral("E11")), navy);
        QVERIFY(window().editor(m_index)->findChild<QFrame*>(QStringLiteral("frm01"))->isHidden());
        QVERIFY(tree().updatesEnabled());
        QCOMPARE(panelText(sandbox(), 4), QStringLiteral("16"));
        QCOMPARE(undoCount(sandbox(), m_index), 1);
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(document().items.size(), 11);
    }

    void duplicateLinksTheCopiesWhenCopyCommandAtDuplicationIsOn()
    {
        open(texts({ "Top", "···Commands", "···Empty" }), texts({ "0002:=run" }));
        sandbox().trigger(QStringLiteral("mnuCopyComDup"));
        QVERIFY(sandbox().action(QStringLiteral("mnuCopyComDup"))->isChecked());
        clickNode(tree(), QStringLiteral("E0"));
        sandbox().trigger(QStringLiteral("mnuDuplicate"));
        const MenuItem& withCommands = document().items[4];
        QCOMPARE(withCommands.caption, QStringLiteral("Commands"));
        QVERIFY(withCommands.copiesCommands);
        QCOMPARE(withCommands.copyKey, QStringLiteral("E1"));
        // Items without commands get no link.
        QVERIFY(!document().items[3].copiesCommands);
        QVERIFY(!document().items[5].copiesCommands);

        // Off again: a copy of a link keeps its source's link.
        sandbox().trigger(QStringLiteral("mnuCopyComDup"));
        clickNode(tree(), QStringLiteral("E4"));
        sandbox().trigger(QStringLiteral("mnuDuplicate"));
        const MenuItem& copyOfLink = document().items.last();
        QVERIFY(copyOfLink.copiesCommands);
        QCOMPARE(copyOfLink.copyKey, QStringLiteral("E1"));
    }

    void theEditKeysOfTheTreeCopyCutPasteAndDuplicate()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E0"));
        tree().setFocus();
        QTRY_VERIFY(tree().hasFocus());
        QTest::keyClick(&tree(), Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(document().items.size(), 4);
        QTest::keyClick(&tree(), Qt::Key_C, Qt::ControlModifier);
        QVERIFY(window().state().editing().clipboardItem.has_value());
        clickNode(tree(), QStringLiteral("E2"));
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(document().items[2].caption, QStringLiteral("Alpha"));
        QTest::keyClick(&tree(), Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(document().items.size(), 3);
    }

    // ---- Move up and down ------------------------------------------------------------------------

    void moveUpExchangesPlacesAndKeepsTheTreesState()
    {
        open(texts({ "A", "···a1", "B", "···b1", "C" }));
        tree().collapse(tree().nodeByKey(QStringLiteral("E2")));
        clickNode(tree(), QStringLiteral("E4"));
        auto* up = window().editor(m_index)->findChild<QPushButton*>(QStringLiteral("cmdUp"));
        auto* down = window().editor(m_index)->findChild<QPushButton*>(QStringLiteral("cmdDown"));
        QTest::mouseClick(up, Qt::LeftButton);

        QCOMPARE(document().items[4].siblingOrder, qint16(2));
        QCOMPARE(document().items[2].siblingOrder, qint16(3));
        QCOMPARE(document().items[4].key, QStringLiteral("E4"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  A", "    a1", "  C", "  B", "    b1" }));
        QVERIFY(!tree().isExpanded(tree().nodeByKey(QStringLiteral("E2"))));
        QVERIFY(tree().isExpanded(tree().nodeByKey(QStringLiteral("E0"))));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E4")));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(2 ; 0)"));
        QCOMPARE(undoCount(sandbox(), m_index), 1);

        // Past a submenu, with the key of the tree.
        tree().setFocus();
        QTRY_VERIFY(tree().hasFocus());
        QTest::keyClick(&tree(), Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  C", "  A", "    a1", "  B", "    b1" }));
        QCOMPARE(document().items[4].siblingOrder, qint16(1));
        QVERIFY(tree().isExpanded(tree().nodeByKey(QStringLiteral("E0"))));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E4")));

        // Nothing moves past either end, and nothing is recorded.
        QTest::mouseClick(up, Qt::LeftButton);
        QCOMPARE(undoCount(sandbox(), m_index), 2);
        clickNode(tree(), QStringLiteral("E2"));
        QTest::mouseClick(down, Qt::LeftButton);
        QCOMPARE(undoCount(sandbox(), m_index), 2);
        QTest::keyClick(&tree(), Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(undoCount(sandbox(), m_index), 2);
        QCOMPARE(document().items[2].siblingOrder, qint16(3));

        sandbox().trigger(QStringLiteral("mnuUndo"));
        sandbox().trigger(QStringLiteral("mnuUndo"));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  A", "    a1", "  B", "    b1", "  C" }));
    }

    void nestingMovesPatchTheTreeAndKeepItsState()
    {
        // The Edit entries come with the tree's context menu; the window already carries out the
        // steps of the two operations.
        open(texts({ "A", "···a1", "B", "···b1", "C" }), texts({ "0002:=x" }));
        tree().collapse(tree().nodeByKey(QStringLiteral("E0")));
        tree().collapse(tree().nodeByKey(QStringLiteral("E2")));
        clickNode(tree(), QStringLiteral("E4"));
        QVERIFY(window().session().run(EditOperations::moveIntoItemAbove));

        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  A", "    a1", "  B", "    b1", "    C" }));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E4")));
        // The node it went into opens to show it; the rest keeps its state.
        QVERIFY(tree().isExpanded(tree().nodeByKey(QStringLiteral("E2"))));
        QVERIFY(!tree().isExpanded(tree().nodeByKey(QStringLiteral("E0"))));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(2 ; 0)"));
        QCOMPARE(undoCount(sandbox(), m_index), 1);

        QVERIFY(window().session().run(EditOperations::moveOutOfParent));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  A", "    a1", "  B", "    b1", "  C" }));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E4")));
        QCOMPARE(panelText(sandbox(), 6), QStringLiteral("(3 ; 0)"));

        // a1 leaves A, which is then a plain leaf again; a1 comes right after it.
        clickNode(tree(), QStringLiteral("E1"));
        QVERIFY(window().session().run(EditOperations::moveOutOfParent));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  A", "  a1", "  B", "    b1", "  C" }));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E1")));
        QVERIFY(!isBold(tree(), QStringLiteral("E0")));
        QCOMPARE(colourOf(tree(), QStringLiteral("E1")), maroon);
        QCOMPARE(undoCount(sandbox(), m_index), 3);

        // Nothing to move into or out of: nothing happens.
        clickNode(tree(), QStringLiteral("E0"));
        QVERIFY(window().session().run(EditOperations::moveIntoItemAbove));
        QVERIFY(window().session().run(EditOperations::moveOutOfParent));
        QCOMPARE(undoCount(sandbox(), m_index), 3);

        // The patched tree is the tree a rebuild shows.
        const QStringList patched = nodeOutline(tree());
        sandbox().trigger(QStringLiteral("mnuRefresh"));
        QCOMPARE(nodeOutline(tree()), patched);
        QVERIFY(sandbox().prompts().messages.isEmpty());
    }

    void aNewSubItemIsTheLastChildOrUnderTheRootATopLevelItem()
    {
        open(texts({ "P", "···a", "Q" }));
        clickNode(tree(), QStringLiteral("E0"));
        QVERIFY(window().session().run(EditOperations::newSubItem));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  P", "    a", "    New Item 4", "  Q" }));
        QVERIFY(tree().isEditingLabel());
        typeLabel(tree(), QStringLiteral("b"));
        QCOMPARE(document().items[3].caption, QStringLiteral("b"));
        QCOMPARE(document().items[3].parent, qint16(0));
        QCOMPARE(undoCount(sandbox(), m_index), 1);

        tree().setCurrentIndex(tree().node(1));
        QVERIFY(window().session().run(EditOperations::newSubItem));
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  P", "    a", "    b", "  Q", "  New Item 5" }));
        QCOMPARE(tree().currentIndex(), tree().nodeByKey(QStringLiteral("E4")));
        typeLabel(tree(), QStringLiteral("R"));
        QCOMPARE(document().items[4].parent, qint16(-1));
        QCOMPARE(undoCount(sandbox(), m_index), 2);
    }

    void movedLeavesKeepTheirNodesForALinkChoice()
    {
        open(texts({ "X", "Y", "Z" }), texts({ "0003:=z" }));
        clickNode(tree(), QStringLiteral("E1"));
        auto* editor = window().editor(m_index);
        QTest::mouseClick(editor->findChild<QPushButton*>(QStringLiteral("cmdUp")), Qt::LeftButton);
        QCOMPARE(nodeOutline(tree()), texts({ "KELV", "  Y", "  X", "  Z" }));
        // The node last clicked is still Y's: choosing a target links Y.
        QTest::mouseClick(editor->findChild<QPushButton*>(QStringLiteral("cmdChangeCopy")), Qt::LeftButton);
        clickNode(tree(), QStringLiteral("E2"));
        QCOMPARE(document().items[1].copyKey, QStringLiteral("E2"));
        QVERIFY(document().items[1].copiesCommands);
        QVERIFY(!document().items[0].copiesCommands);
    }

    void theRootStaysOpenAndItsFirstItemIsSelected()
    {
        openThree();
        clickNode(tree(), QStringLiteral("E2"));
        tree().collapse(tree().node(1));
        QVERIFY(tree().isExpanded(tree().node(1)));
        QCOMPARE(tree().currentIndex(), tree().node(2));
        QCOMPARE(panelText(sandbox(), 2), QStringLiteral("0"));
        // Collapsing another node is left to the tree.
        const qint16 index = sandbox().openMenu(QStringLiteral("nested.ini"), texts({ "P", "···a" }));
        ItemTree* nested = window().editor(index)->tree();
        nested->collapse(nested->nodeByKey(QStringLiteral("E0")));
        QVERIFY(!nested->isExpanded(nested->nodeByKey(QStringLiteral("E0"))));
    }
};

QTEST_MAIN(TestTreeEditing)
#include "test_treeediting.moc"
