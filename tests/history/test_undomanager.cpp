#include "historyfixture.h"

#include "menufile/menufilewriter.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>

namespace {

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    return file.readAll();
}

} // namespace

class TestUndoManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_history = std::make_unique<HistoryFixture>();
        QVERIFY(m_history->folder.isValid());
    }

    void cleanup() { m_history.reset(); }

    void recordingKeepsTheStateBeforeTheEditAndMarksTheDocumentUnsaved()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        const MenuDocument before = h.document(index);

        h.edit(index, QStringLiteral("Renamed"));

        const DocumentHistory& history = h.histories.history(index);
        QCOMPARE(history.undoCount(), qint16(1));
        // The recorded state keeps the saved flag it had; the document itself is now unsaved.
        QCOMPARE(history.undoState(0), before);
        QVERIFY(history.undoState(0).saved);
        QVERIFY(!h.document(index).saved);
        QCOMPARE(h.menu.changes, QStringList({ QStringLiteral("redo off"), QStringLiteral("undo on") }));
    }

    void sixteenEditsKeepFifteenStatesAndTheSixteenthUndoChangesNothing()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(4);
        for (int edit = 1; edit <= 16; ++edit) {
            h.edit(index, QStringLiteral("Edit %1").arg(edit));
        }
        const DocumentHistory& history = h.histories.history(index);
        QCOMPARE(history.undoCount(), qint16(15));
        QCOMPARE(history.undoState(0).items[0].caption, QStringLiteral("Edit 1"));

        for (int undo = 1; undo <= 15; ++undo) {
            h.undoManager.undoDocument(index);
            QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Edit %1").arg(16 - undo));
        }
        QCOMPARE(history.undoCount(), qint16(0));
        QCOMPARE(history.redoCount(), qint16(15));
        QVERIFY(!h.menu.undoEnabled);
        QVERIFY(h.menu.redoEnabled);

        const MenuDocument afterFirstEdit = h.document(index);
        QCOMPARE(afterFirstEdit.items[0].caption, QStringLiteral("Edit 1"));
        h.menu.changes.clear();
        h.undoManager.undoDocument(index);
        QCOMPARE(h.document(index), afterFirstEdit);
        QCOMPARE(history.redoCount(), qint16(15));
        QVERIFY(h.menu.changes.isEmpty());
    }

    void aNewEditAfterUndoCutsTheRedoChain()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("One"));
        h.edit(index, QStringLiteral("Two"));
        h.edit(index, QStringLiteral("Three"));
        h.undoManager.undoDocument(index);
        h.undoManager.undoDocument(index);
        QCOMPARE(h.histories.history(index).redoCount(), qint16(2));
        QVERIFY(h.menu.redoEnabled);

        h.edit(index, QStringLiteral("Other"));
        QCOMPARE(h.histories.history(index).redoCount(), qint16(0));
        QVERIFY(!h.menu.redoEnabled);
        QCOMPARE(h.histories.history(index).undoCount(), qint16(2));

        // Nothing is left to redo.
        const MenuDocument current = h.document(index);
        h.undoManager.redoDocument(index);
        QCOMPARE(h.document(index), current);
    }

    void redoAfterUndoReturnsExactlyTheStateBeforeTheUndo()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        h.edit(index, QStringLiteral("One"));
        h.document(index).hideMode = 1;
        h.document(index).filePath = QStringLiteral("/menus/saved-as.ini");
        h.edit(index, QStringLiteral("Two"));
        h.document(index).items.removeLast();
        const MenuDocument beforeUndo = h.document(index);

        h.undoManager.undoDocument(index);
        QVERIFY(h.document(index) != beforeUndo);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("One"));
        QCOMPARE(h.histories.history(index).undoCount(), qint16(1));

        h.menu.changes.clear();
        h.undoManager.redoDocument(index);
        QCOMPARE(h.document(index), beforeUndo);
        QCOMPARE(h.histories.history(index).undoCount(), qint16(2));
        QCOMPARE(h.histories.history(index).redoCount(), qint16(0));
        QVERIFY(h.menu.undoEnabled);
        QVERIFY(!h.menu.redoEnabled);
        // Redo records without cutting the redo chain, then switches Redo off once it is used up.
        QCOMPARE(h.menu.changes, QStringList({ QStringLiteral("undo on"), QStringLiteral("redo off") }));
    }

    void undoRedoUndoWalksBackAndForthWithoutLoss()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("One"));
        h.edit(index, QStringLiteral("Two"));
        h.undoManager.undoDocument(index);
        h.undoManager.undoDocument(index);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Item 0"));
        h.undoManager.redoDocument(index);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("One"));
        QVERIFY(h.menu.redoEnabled);
        h.undoManager.undoDocument(index);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Item 0"));
        h.undoManager.redoDocument(index);
        h.undoManager.redoDocument(index);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Two"));
        QVERIFY(!h.menu.redoEnabled);
    }

    void undoToAStateRecordedWhenSavedBringsBackSaved()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("One"));
        QVERIFY(!h.document(index).saved);
        // Save sets saved true and leaves the history alone.
        h.document(index).saved = true;
        h.edit(index, QStringLiteral("Two"));
        QVERIFY(!h.document(index).saved);

        h.undoManager.undoDocument(index);
        QVERIFY(h.document(index).saved);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("One"));
        // The state that went onto the redo stack was the unsaved one.
        QVERIFY(!h.histories.history(index).redoState(0).saved);
    }

    void redoMarksTheOutgoingStateUnsavedAndRewritesTheAutosaveFile()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("One"));
        h.undoManager.undoDocument(index);
        QVERIFY(h.document(index).saved);
        const QByteArray expected = menuFileBytes(h.document(index));
        QVERIFY(QFile::remove(h.undoManager.autosavePath(index)));

        h.undoManager.redoDocument(index);
        h.undoManager.completeAutosave();
        // The state recorded for the Undo keeps its saved flag; the restored one is the unsaved edit.
        QVERIFY(h.histories.history(index).undoState(0).saved);
        QVERIFY(!h.document(index).saved);
        QCOMPARE(fileBytes(h.undoManager.autosavePath(index)), expected);
    }

    void autosaveFilesHoldTheStateBeforeTheLatestEditOfEachDocument()
    {
        HistoryFixture& h = *m_history;
        const qint16 first = h.openDocument(3);
        const qint16 second = h.openDocument(5);
        const qint16 third = h.openDocument(4);
        QCOMPARE(third, qint16(3));

        h.edit(first, QStringLiteral("First edit"));
        h.document(first).items.removeLast();
        const QByteArray firstExpected = menuFileBytes(h.document(first));
        h.edit(first, QStringLiteral("Second edit"));

        const QByteArray thirdExpected = menuFileBytes(h.document(third));
        h.edit(third, QStringLiteral("Only edit"));

        const QDir folder(m_history->folder.path());
        QCOMPARE(folder.entryList(QDir::Files),
                 QStringList({ QStringLiteral("menuAutoSave1.ini"), QStringLiteral("menuAutoSave3.ini") }));
        QCOMPARE(fileBytes(folder.filePath(QStringLiteral("menuAutoSave1.ini"))), firstExpected);
        QCOMPARE(fileBytes(folder.filePath(QStringLiteral("menuAutoSave3.ini"))), thirdExpected);
        QVERIFY(firstExpected != menuFileBytes(h.document(first)));
        QVERIFY(h.document(second).saved);
    }

    void undoNeitherWritesNorRemovesTheAutosaveFile()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("One"));
        const QByteArray written = fileBytes(h.undoManager.autosavePath(index));
        QVERIFY(!written.isEmpty());
        h.undoManager.undoDocument(index);
        QCOMPARE(fileBytes(h.undoManager.autosavePath(index)), written);
    }

    void autosavePathNamesTheDocumentIndex()
    {
        HistoryFixture& h = *m_history;
        QCOMPARE(h.undoManager.autosavePath(12),
                 QDir(m_history->folder.path()).filePath(QStringLiteral("menuAutoSave12.ini")));
    }

    void anAutosaveFileWaitsForItsDelayUnlessWaitedFor()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        const QByteArray expected = menuFileBytes(h.document(index));
        // A delay longer than this test: the write must not start on its own, and must start at once
        // when the edit, or the end of the editor, waits for it.
        h.undoManager.setAutosaveDelay(std::chrono::seconds(20));
        h.undoManager.saveUndoState(index, true);
        QTest::qWait(100);
        QVERIFY(!h.undoManager.isAutosaveFinished());
        QVERIFY(!QFile::exists(h.undoManager.autosavePath(index)));
        QElapsedTimer waited;
        waited.start();
        h.undoManager.completeAutosave();
        QVERIFY(waited.elapsed() < 10 * 1000);
        QCOMPARE(fileBytes(h.undoManager.autosavePath(index)), expected);

        // The editor closes with a write still waiting for its delay: it is written before the end.
        h.document(index).items[0].caption = QStringLiteral("Edited");
        const QByteArray edited = menuFileBytes(h.document(index));
        auto closing = std::make_unique<UndoManager>(h.documents, h.histories, h.folder.path(), h.menu);
        closing->setAutosaveDelay(std::chrono::seconds(20));
        closing->saveUndoState(index, true);
        waited.restart();
        closing.reset();
        QVERIFY(waited.elapsed() < 10 * 1000);
        QCOMPARE(fileBytes(h.undoManager.autosavePath(index)), edited);
    }

    void aFailedAutosaveWriteThrowsOnceTheEditWaitsForIt()
    {
        const QString missingFolder = QDir(m_history->folder.path()).filePath(QStringLiteral("no-such-folder"));
        HistoryFixture h(missingFolder);
        const qint16 index = h.openDocument(2);
        const MenuDocument before = h.document(index);
        // A state left to redo: the edit cuts the redo chain before it writes the file.
        h.histories.history(index).pushRedoState(before);
        h.undoManager.saveUndoState(index, true);
        QVERIFY_THROWS_EXCEPTION(RunTimeError, h.undoManager.completeAutosave());
        // Waiting again finds nothing left to wait for.
        h.undoManager.completeAutosave();
        QCOMPARE(h.histories.history(index).undoCount(), qint16(1));
        QCOMPARE(h.histories.history(index).undoState(0), before);
        QVERIFY(!h.document(index).saved);
        QVERIFY(h.menu.undoEnabled);
        QCOMPARE(h.histories.history(index).redoCount(), qint16(0));
        QVERIFY(!h.menu.redoEnabled);
        QVERIFY(!QFileInfo::exists(missingFolder));
    }

    void badIndicesAreSubscriptErrors()
    {
        HistoryFixture& h = *m_history;
        h.openDocument(1);
        for (const qint16 index : { qint16(0), qint16(2), qint16(-1) }) {
            try {
                h.undoManager.saveUndoState(index, true);
                QFAIL("a bad document index was accepted");
            } catch (const RunTimeError& error) {
                QCOMPARE(error.number(), 9);
            }
            QVERIFY_THROWS_EXCEPTION(RunTimeError, h.undoManager.undoDocument(index));
            QVERIFY_THROWS_EXCEPTION(RunTimeError, h.undoManager.redoDocument(index));
        }
        QVERIFY(QDir(m_history->folder.path()).entryList(QDir::Files).isEmpty());
    }

    void theMenuFollowsTheActivatedDocument()
    {
        HistoryFixture& h = *m_history;
        const qint16 first = h.openDocument(2);
        const qint16 second = h.openDocument(2);
        h.edit(first, QStringLiteral("One"));
        h.edit(first, QStringLiteral("Two"));
        h.undoManager.undoDocument(first);

        h.undoManager.updateMenu(second);
        QVERIFY(!h.menu.undoEnabled);
        QVERIFY(!h.menu.redoEnabled);
        h.undoManager.updateMenu(first);
        QVERIFY(h.menu.undoEnabled);
        QVERIFY(h.menu.redoEnabled);
        h.undoManager.undoDocument(first);
        h.undoManager.updateMenu(first);
        QVERIFY(!h.menu.undoEnabled);
        QVERIFY(h.menu.redoEnabled);

        h.edit(second, QStringLiteral("Other"));
        h.undoManager.updateMenu(second);
        QVERIFY(h.menu.undoEnabled);
        QVERIFY(!h.menu.redoEnabled);

        h.undoManager.updateMenu(0);
        QVERIFY(!h.menu.undoEnabled);
        QVERIFY(!h.menu.redoEnabled);
    }

    void eachDocumentHasItsOwnStacks()
    {
        HistoryFixture& h = *m_history;
        const qint16 first = h.openDocument(2);
        const qint16 second = h.openDocument(2);
        h.edit(first, QStringLiteral("One"));
        h.edit(second, QStringLiteral("Other"));
        h.undoManager.undoDocument(first);
        QCOMPARE(h.document(first).items[0].caption, QStringLiteral("Item 0"));
        QCOMPARE(h.document(second).items[0].caption, QStringLiteral("Other"));
        QCOMPARE(h.histories.history(second).undoCount(), qint16(1));
        QCOMPARE(h.histories.history(second).redoCount(), qint16(0));
    }

private:
    std::unique_ptr<HistoryFixture> m_history;
};

QTEST_GUILESS_MAIN(TestUndoManager)
#include "test_undomanager.moc"
