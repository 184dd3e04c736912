#include "guisandbox.h"
#include "menutexts.h"

#include "app/edithistory.h"
#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/aboutinfo.h"
#include "editing/itemdeletion.h"
#include "menufile/menufilewriter.h"
#include "model/int16.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include <functional>

namespace {

MessageRequest critical(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.buttons = MessageRequest::Buttons::Ok;
    return request;
}

QString undoFailedText()
{
    return QStringLiteral("An error occured while undoing your last action !\r\n"
                          "Contact the developer for further information :\r\n")
        + contactLines();
}

QString panelText(MainWindow& window, int panel)
{
    return window.findChild<QLabel*>(QStringLiteral("pnl") + QString::number(panel))->text();
}

void activate(MainWindow& window, qint16 index)
{
    auto* frame = qobject_cast<QMdiSubWindow*>(window.editor(index)->parentWidget());
    window.findChild<QMdiArea*>()->setActiveSubWindow(frame);
    QCOMPARE(window.activeDocumentIndex(), index);
}

/// An edit the way every editing handler makes one: record the undo state, change the document
/// through the core, rebuild the tree and show the item count, all inside the error handling of
/// editing operations.
bool edit(MainWindow& window, qint16 index, const std::function<void(MenuDocument&)>& change)
{
    return window.history().runGuarded([&window, index, &change] {
        window.undoManager().saveUndoState(index, true);
        change(window.state().document(index));
        window.regenerateTree(index);
        window.showItemCount(int(window.state().document(index).items.size()));
    });
}

void renameFirstItem(MenuDocument& document, const QString& caption)
{
    document.items[0].caption = caption;
}

} // namespace

class TestUndoRedo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void undoAndRedoEntriesHaveTheStandardShortcuts()
    {
        GuiSandbox sandbox;
        QAction* undo = sandbox.action(QStringLiteral("mnuUndo"));
        QAction* redo = sandbox.action(QStringLiteral("mnuRedo"));
        QCOMPARE(MenuTexts::visible(undo->text()), QStringLiteral("Undo"));
        QCOMPARE(MenuTexts::visible(redo->text()), QStringLiteral("Redo"));
        QCOMPARE(undo->shortcut(), QKeySequence(QKeySequence::Undo));
        QCOMPARE(redo->shortcut(), QKeySequence(QKeySequence::Redo));
        QVERIFY(!undo->isEnabled());
        QVERIFY(!redo->isEnabled());
    }

    void undoRestoresTheDocumentTreeAndItemCount()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        QVERIFY(index > 0);
        const MenuDocument before = window.state().document(index);
        const int nodesBefore = window.editor(index)->tree()->nodeCount();

        // Delete the first top-level item with its branch (Archive and its four descendants).
        QVERIFY(edit(window, index, [](MenuDocument& document) { removeItemBranch(document, QStringLiteral("E0")); }));
        QCOMPARE(window.editor(index)->tree()->nodeCount(), nodesBefore - 5);
        QCOMPARE(panelText(window, 4), QString::number(before.items.size() - 5));
        QVERIFY(!window.state().document(index).saved);
        QVERIFY(sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(!sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());

        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(index), before);
        QCOMPARE(window.editor(index)->tree()->nodeCount(), nodesBefore);
        QVERIFY(window.editor(index)->tree()->nodeByKey(QStringLiteral("E0")).isValid());
        QCOMPARE(panelText(window, 4), QString::number(before.items.size()));
        QVERIFY(!sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void undoThenRedoReturnsTheStateBeforeTheUndo()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("one")); }));
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("two")); }));
        const MenuDocument afterEdits = window.state().document(index);

        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(index).items.at(0).caption, QStringLiteral("one"));
        QCOMPARE(window.editor(index)->tree()->textOf(window.editor(index)->tree()->node(2)), QStringLiteral("one"));
        sandbox.action(QStringLiteral("mnuRedo"))->trigger();
        QCOMPARE(window.state().document(index), afterEdits);
        QCOMPARE(window.editor(index)->tree()->textOf(window.editor(index)->tree()->node(2)), QStringLiteral("two"));
        QVERIFY(sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(!sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());
    }

    void aNewEditAfterUndosCutsTheRedoChain()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        for (const QString& caption : { QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") }) {
            QVERIFY(edit(window, index, [caption](MenuDocument& document) { renameFirstItem(document, caption); }));
        }
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QVERIFY(sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("d")); }));
        QCOMPARE(window.state().histories().history(index).redoCount(), qint16(0));
        QVERIFY(!sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());
    }

    void sixteenEditsKeepFifteenUndoSteps()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 index = window.activeDocumentIndex();
        for (int n = 1; n <= 16; ++n) {
            QVERIFY(edit(window, index,
                         [n](MenuDocument& document) { renameFirstItem(document, QStringLiteral("edit %1").arg(n)); }));
        }
        QAction* undo = sandbox.action(QStringLiteral("mnuUndo"));
        for (int n = 1; n <= 15; ++n) {
            QVERIFY(undo->isEnabled());
            undo->trigger();
        }
        QCOMPARE(window.state().document(index).items.at(0).caption, QStringLiteral("edit 1"));
        QVERIFY(!undo->isEnabled());
        // The sixteenth Undo, as the error report would run it, finds nothing left to restore.
        window.mnuUndo_Click();
        QCOMPARE(window.state().document(index).items.at(0).caption, QStringLiteral("edit 1"));
        QVERIFY(sandbox.prompts().messages.isEmpty());
    }

    void entriesFollowTheDocumentOfTheActiveEditorWindow()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        window.mnuNew_Click();
        const qint16 first = window.activeDocumentIndex();
        window.mnuNew_Click();
        const qint16 second = window.activeDocumentIndex();
        QVERIFY(first != second);
        QVERIFY(edit(window, second, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("x")); }));
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QVERIFY(!sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());

        activate(window, first);
        QVERIFY(!sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(!sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());
        QVERIFY(edit(window, first, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("y")); }));
        QVERIFY(sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());

        activate(window, second);
        QVERIFY(!sandbox.action(QStringLiteral("mnuUndo"))->isEnabled());
        QVERIFY(sandbox.action(QStringLiteral("mnuRedo"))->isEnabled());

        // Undo acts on the active document only.
        activate(window, first);
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(first).items.at(0).caption, QStringLiteral("New Item 1"));
        QCOMPARE(window.state().document(second).items.at(0).caption, QStringLiteral("New Item 1"));
    }

    void undoAfterSaveAndOneEditRestoresASavedDocument()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        window.mnuSave_Click();
        QVERIFY(window.state().document(index).saved);
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("x")); }));
        QVERIFY(!window.state().document(index).saved);
        QVERIFY(sandbox.action(QStringLiteral("mnuSave"))->isEnabled());

        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QVERIFY(window.state().document(index).saved);
        QVERIFY(!sandbox.action(QStringLiteral("mnuSave"))->isEnabled());
    }

    void undoAddsTheHideModesOfOneAndTwo()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        sandbox.action(QStringLiteral("mnuHideCopies"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 1);
        // The recorded state holds hideMode 1 too; undoing with 1 showing adds them.
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("x")); }));
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 2);
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideCopies"))->isChecked());
        QVERIFY(sandbox.action(QStringLiteral("mnuHideWCommand"))->isChecked());
        QVERIFY(!sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked());
        QCOMPARE(window.editor(index)->tree()->textOf(window.editor(index)->tree()->node(1)),
                 QStringLiteral("KELV (Some items may be hidded)"));
    }

    void undoKeepsHideModesZeroAndThree()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("x")); }));
        sandbox.action(QStringLiteral("mnuHideBoth"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 3);
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 3);
        QVERIFY(sandbox.action(QStringLiteral("mnuHideBoth"))->isChecked());

        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("y")); }));
        sandbox.action(QStringLiteral("mnuHideBoth"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 0);
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QCOMPARE(window.state().document(index).hideMode, 0);
        QCOMPARE(window.editor(index)->tree()->textOf(window.editor(index)->tree()->node(1)), QStringLiteral("KELV"));
    }

    void undoOrRedoWithoutAnActiveEditorShowsBothMessages()
    {
        for (const bool redo : { false, true }) {
            GuiSandbox sandbox;
            MainWindow& window = sandbox.window();
            QCOMPARE(window.activeDocumentIndex(), qint16(0));
            if (redo) {
                window.mnuRedo_Click();
            } else {
                window.mnuUndo_Click();
            }
            const QList<MessageRequest> expected {
                critical(QStringLiteral("Error 0 :  ()\r\nThis error will undo your action")),
                critical(undoFailedText()),
            };
            QCOMPARE(sandbox.prompts().messages, expected);
        }
    }

    void autosaveFilesHoldTheStateBeforeTheLatestEditOfEachDocument()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const QString archive = sandbox.copyExample(QStringLiteral("archive-tools.ini"));
        const QString media = sandbox.copyExample(QStringLiteral("media-tools.ini"));
        QCOMPARE(window.openMenu(archive, QStringLiteral("archive-tools.ini")), qint16(1));
        QCOMPARE(window.openMenu(media, QStringLiteral("media-tools.ini")), qint16(2));
        QCOMPARE(window.openMenu(archive, QStringLiteral("archive-tools.ini")), qint16(3));

        QVERIFY(edit(window, 1, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("first")); }));
        const MenuDocument beforeLatestOfOne = window.state().document(1);
        QVERIFY(edit(window, 1, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("second")); }));
        const MenuDocument beforeLatestOfThree = window.state().document(3);
        QVERIFY(edit(window, 3, [](MenuDocument& document) { removeItemBranch(document, document.items.last().key); }));
        // The files are written on a second thread; the main window collects the result soon after.
        QTRY_VERIFY(!window.undoManager().isAutosavePending());

        const QDir folder(sandbox.programFolder());
        QCOMPARE(GuiSandbox::readFile(folder.filePath(QStringLiteral("menuAutoSave1.ini"))),
                 menuFileBytes(beforeLatestOfOne));
        QCOMPARE(GuiSandbox::readFile(folder.filePath(QStringLiteral("menuAutoSave3.ini"))),
                 menuFileBytes(beforeLatestOfThree));
        QVERIFY(!folder.exists(QStringLiteral("menuAutoSave2.ini")));
        QVERIFY(GuiSandbox::readFile(folder.filePath(QStringLiteral("menuAutoSave1.ini"))).contains("\r\nfirst\r\n"));

        // Undo neither reads nor removes them.
        sandbox.action(QStringLiteral("mnuUndo"))->trigger();
        QVERIFY(folder.exists(QStringLiteral("menuAutoSave3.ini")));
        QCOMPARE(GuiSandbox::readFile(folder.filePath(QStringLiteral("menuAutoSave3.ini"))),
                 menuFileBytes(beforeLatestOfThree));
    }

    void failureInsideAnEditIsReportedAndUndone()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        const MenuDocument before = window.state().document(index);
        const int nodesBefore = window.editor(index)->tree()->nodeCount();

        // The edit has changed the document when a 16-bit count overflows.
        const bool completed = edit(window, index, [](MenuDocument& document) {
            removeItemBranch(document, QStringLiteral("E0"));
            document.items[0].childCount = Int16::incremented(32767, "mnuDelete");
        });
        QVERIFY(!completed);
        const QList<MessageRequest> expected { critical(
            QStringLiteral("Error 6 : Overflow (mnuDelete)\r\nThis error will undo your action")) };
        QCOMPARE(sandbox.prompts().messages, expected);
        QCOMPARE(window.state().document(index), before);
        QCOMPARE(window.editor(index)->tree()->nodeCount(), nodesBefore);
        QCOMPARE(panelText(window, 4), QString::number(before.items.size()));
    }

    void aFailedAutosaveWriteStopsTheNextEditAndUndoesItsOwn()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        const MenuDocument before = window.state().document(index);
        QVERIFY(QDir(sandbox.programFolder()).mkdir(QStringLiteral("menuAutoSave1.ini")));

        // The next edit comes before the main window has looked at the first file: it waits for it,
        // finds it failed, and the first edit is undone instead of the second being made.
        QVERIFY(edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("one")); }));
        QVERIFY(!edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("two")); }));
        QCOMPARE(sandbox.prompts().messages.size(), 1);
        QVERIFY(sandbox.prompts().messages.first().text.startsWith(QStringLiteral("Error 75 : ")));
        QCOMPARE(window.state().document(index), before);
        QCOMPARE(window.state().histories().history(index).undoCount(), qint16(0));
    }

    void failedAutosaveWriteIsReportedAndUndone()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        const qint16 index = window.openMenu(sandbox.copyExample(QStringLiteral("archive-tools.ini")),
                                             QStringLiteral("archive-tools.ini"));
        const MenuDocument before = window.state().document(index);
        // A folder where the autosave file should go makes its write fail.
        QVERIFY(QDir(sandbox.programFolder()).mkdir(QStringLiteral("menuAutoSave1.ini")));

        // The autosave file is written while the editor goes on; once its write has failed, the edit
        // that recorded it is reported and undone.
        QVERIFY(
            edit(window, index, [](MenuDocument& document) { renameFirstItem(document, QStringLiteral("never")); }));
        const QList<MessageRequest> expected { critical(
            QStringLiteral("Error 75 : Path/File access error: the autosave file %1 cannot be written: Is a "
                           "directory (writeMenuFile)\r\nThis error will undo your action")
                .arg(QDir::toNativeSeparators(
                    QDir(sandbox.programFolder()).filePath(QStringLiteral("menuAutoSave1.ini"))))) };
        QTRY_COMPARE(sandbox.prompts().messages, expected);
        QVERIFY(!window.undoManager().isAutosavePending());
        QCOMPARE(window.state().document(index), before);
        QVERIFY(window.state().document(index).saved);
    }
};

QTEST_MAIN(TestUndoRedo)
#include "test_undoredo.moc"
