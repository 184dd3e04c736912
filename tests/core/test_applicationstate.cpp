#include "fakeeditorview.h"

#include "core/applicationstate.h"
#include "model/runtimeerror.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestApplicationState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithThePlaceholderOnly()
    {
        ApplicationState state;
        QCOMPARE(state.lastSlot(), qint16(0));
        QCOMPARE(state.activeDocumentIndex(), qint16(0));
        QVERIFY(!state.isQuitting());
        QCOMPARE(state.editorsCreated(), 0);
        QCOMPARE(state.options(), Options());
        QVERIFY(state.openDocumentIndexes().isEmpty());
        QVERIFY(!state.editor(0));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, state.document(0));
        QVERIFY_THROWS_EXCEPTION(RunTimeError, state.window(0));
        QVERIFY(state.editing().snapshotNextLabelEdit);
        QVERIFY(!state.anyLinkTargetChoice());
    }

    void slotsAreAppendedAndDroppedTogether()
    {
        ApplicationState state;
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
        QCOMPARE(state.appendDocumentSlot(), qint16(2));
        QCOMPARE(state.documents().lastSlot(), qint16(2));
        QCOMPARE(state.histories().lastSlot(), qint16(2));
        state.document(2).filePath = QStringLiteral("/menus/a.ini");
        state.window(2).nodeClicked = true;
        state.removeLastDocumentSlot();
        QCOMPARE(state.lastSlot(), qint16(1));
        QCOMPARE(state.histories().lastSlot(), qint16(1));
        QCOMPARE(state.appendDocumentSlot(), qint16(2));
        QVERIFY(state.document(2).filePath.isEmpty());
        QVERIFY(!state.window(2).nodeClicked);
        state.removeLastDocumentSlot();
        state.removeLastDocumentSlot();
        state.removeLastDocumentSlot(); // never the placeholder
        QCOMPARE(state.lastSlot(), qint16(0));
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
    }

    void theIdentityOfEachMenusFileIsKeptBesideItsDocument()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("bytes");
        file.close();
        QVERIFY(file.open(QIODevice::ReadOnly));
        const FileIdentity identity = FileIdentity::ofOpenFile(file, "bytes");

        ApplicationState state;
        QVERIFY(state.fileIdentity(0).isNull());
        QVERIFY(state.fileIdentity(1).isNull());
        state.setFileIdentity(1, identity); // no such document yet: nothing is kept
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
        QVERIFY(state.fileIdentity(1).isNull());
        state.setFileIdentity(1, identity);
        QCOMPARE(state.fileIdentity(1), identity);
        state.removeLastDocumentSlot();
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
        QVERIFY(state.fileIdentity(1).isNull());
    }

    void closedEditorsLeaveTheirSlot()
    {
        ApplicationState state;
        const qint16 first = state.appendDocumentSlot();
        const qint16 second = state.appendDocumentSlot();
        const qint16 third = state.appendDocumentSlot();
        FakeEditorView firstEditor;
        FakeEditorView thirdEditor;
        state.setEditor(first, &firstEditor);
        state.setEditor(third, &thirdEditor);
        QCOMPARE(state.openDocumentIndexes(), QList<qint16>({ first, third }));
        QCOMPARE(state.editor(third), &thirdEditor);
        QVERIFY(!state.editor(second));
        QVERIFY(!state.editor(99));

        state.clearEditor(first);
        QCOMPARE(state.openDocumentIndexes(), QList<qint16>({ third }));
        QCOMPARE(state.lastSlot(), third);
    }

    void anEditorThatIsDeletedCountsAsClosed()
    {
        ApplicationState state;
        const qint16 index = state.appendDocumentSlot();
        auto editor = std::make_unique<FakeEditorView>();
        state.setEditor(index, editor.get());
        state.window(index).linkTargetChoice = true;
        QVERIFY(state.anyLinkTargetChoice());
        editor.reset();
        QVERIFY(!state.editor(index));
        QVERIFY(state.openDocumentIndexes().isEmpty());
        // A closed window chooses nothing any more.
        QVERIFY(!state.anyLinkTargetChoice());
    }

    void theCopyCommandDupOptionReachesTheEditingState()
    {
        ApplicationState state;
        Options options;
        options.copyCommandDup = true;
        state.setOptions(options);
        QVERIFY(state.editing().copyCommandDup);
        options.copyCommandDup = false;
        state.setOptions(options);
        QVERIFY(!state.editing().copyCommandDup);
    }

    void countsEditorsCreated()
    {
        ApplicationState state;
        state.noteEditorCreated();
        state.noteEditorCreated();
        QCOMPARE(state.editorsCreated(), 2);
    }
};

QTEST_GUILESS_MAIN(TestApplicationState)
#include "test_applicationstate.moc"
