#include "guisandbox.h"

#include "app/applicationstate.h"
#include "app/editorwindow.h"
#include "app/mainwindow.h"
#include "model/runtimeerror.h"

#include <QTest>

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
    }

    void slotsAreAppendedAndDroppedTogether()
    {
        ApplicationState state;
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
        QCOMPARE(state.appendDocumentSlot(), qint16(2));
        QCOMPARE(state.documents().lastSlot(), qint16(2));
        state.document(2).filePath = QStringLiteral("/menus/a.ini");
        state.removeLastDocumentSlot();
        QCOMPARE(state.lastSlot(), qint16(1));
        QCOMPARE(state.appendDocumentSlot(), qint16(2));
        QVERIFY(state.document(2).filePath.isEmpty());
        state.removeLastDocumentSlot();
        state.removeLastDocumentSlot();
        state.removeLastDocumentSlot(); // never the placeholder
        QCOMPARE(state.lastSlot(), qint16(0));
        QCOMPARE(state.appendDocumentSlot(), qint16(1));
    }

    void closedEditorsLeaveTheirSlot()
    {
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        ApplicationState& state = window.state();
        const qint16 first = state.appendDocumentSlot();
        const qint16 second = state.appendDocumentSlot();
        const qint16 third = state.appendDocumentSlot();
        EditorWindow firstEditor(window, first);
        EditorWindow thirdEditor(window, third);
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
        GuiSandbox sandbox;
        MainWindow& window = sandbox.window();
        ApplicationState& state = window.state();
        const qint16 index = state.appendDocumentSlot();
        auto* editor = new EditorWindow(window, index);
        state.setEditor(index, editor);
        delete editor;
        QVERIFY(!state.editor(index));
        QVERIFY(state.openDocumentIndexes().isEmpty());
    }

    void countsEditorsCreated()
    {
        ApplicationState state;
        state.noteEditorCreated();
        state.noteEditorCreated();
        QCOMPARE(state.editorsCreated(), 2);
    }
};

QTEST_MAIN(TestApplicationState)
#include "test_applicationstate.moc"
