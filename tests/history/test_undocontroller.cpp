#include "historyfixture.h"

#include "core/aboutinfo.h"
#include "history/editingoperation.h"
#include "model/int16.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

MessageRequest critical(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.buttons = MessageRequest::Buttons::Ok;
    return request;
}

} // namespace

class TestUndoController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_history = std::make_unique<HistoryFixture>();
        QVERIFY(m_history->folder.isValid());
    }

    void cleanup() { m_history.reset(); }

    void undoRestoresRebuildsTheTreeAndShowsTheItemCount()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(5);
        h.host.activeIndex = index;
        h.edit(index, QStringLiteral("Renamed"));
        h.document(index).items.append(MenuItem {});

        h.controller.mnuUndo_Click();
        QCOMPARE(h.document(index).items.size(), 5);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Item 0"));
        QCOMPARE(h.host.regenerations, QList<FakeHistoryHost::Regeneration>({ { index, 0 } }));
        QCOMPARE(h.host.shownCounts, QList<int>({ 5 }));
        QVERIFY(!h.menu.undoEnabled);
        QVERIFY(h.menu.redoEnabled);

        h.controller.mnuRedo_Click();
        QCOMPARE(h.document(index).items.size(), 6);
        QCOMPARE(h.host.shownCounts, QList<int>({ 5, 6 }));
        QVERIFY(h.menu.undoEnabled);
        QVERIFY(!h.menu.redoEnabled);
        QVERIFY(h.prompts.messages.isEmpty());
    }

    void undoCombinesTheHideModes_data()
    {
        QTest::addColumn<int>("recorded");
        QTest::addColumn<int>("beforeUndo");
        QTest::addColumn<int>("afterUndo");
        QTest::newRow("1 and 1 give 2") << 1 << 1 << 2;
        QTest::newRow("2 added to 1") << 1 << 2 << 3;
        QTest::newRow("0 is kept") << 2 << 0 << 0;
        QTest::newRow("3 is kept") << 1 << 3 << 3;
    }

    void undoCombinesTheHideModes()
    {
        QFETCH(int, recorded);
        QFETCH(int, beforeUndo);
        QFETCH(int, afterUndo);
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        h.host.activeIndex = index;
        h.document(index).hideMode = recorded;
        h.edit(index, QStringLiteral("Renamed"));
        h.document(index).hideMode = beforeUndo;

        h.controller.mnuUndo_Click();
        QCOMPARE(h.host.regenerations.size(), 1);
        QCOMPARE(h.host.regenerations.first().hideMode, afterUndo);
        QCOMPARE(h.document(index).hideMode, afterUndo);
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Item 0"));
    }

    void undoWithNothingRecordedStillRebuildsWithTheHideModeChange()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(4);
        h.host.activeIndex = index;
        h.document(index).hideMode = 1;
        const MenuItemArray items = h.document(index).items;

        h.controller.mnuUndo_Click();
        QCOMPARE(h.document(index).hideMode, 2);
        QCOMPARE(h.document(index).items, items);
        QCOMPARE(h.host.regenerations, QList<FakeHistoryHost::Regeneration>({ { index, 2 } }));
        QCOMPARE(h.host.shownCounts, QList<int>({ 4 }));
        QCOMPARE(h.histories.history(index).redoCount(), qint16(0));

        h.controller.mnuRedo_Click();
        QCOMPARE(h.document(index).hideMode, 4);
        QCOMPARE(h.host.shownCounts, QList<int>({ 4, 4 }));
        QVERIFY(h.prompts.messages.isEmpty());
    }

    void undoAndRedoWithoutAnActiveEditorWindowShowBothMessages_data()
    {
        QTest::addColumn<bool>("redo");
        QTest::newRow("undo") << false;
        QTest::newRow("redo") << true;
    }

    void undoAndRedoWithoutAnActiveEditorWindowShowBothMessages()
    {
        QFETCH(bool, redo);
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.edit(index, QStringLiteral("Renamed"));
        h.undoManager.undoDocument(index);
        const MenuDocument before = h.document(index);
        h.host.activeIndex = 0;

        if (redo) {
            h.controller.mnuRedo_Click();
        } else {
            h.controller.mnuUndo_Click();
        }

        QCOMPARE(h.prompts.messages.size(), 2);
        QCOMPARE(h.prompts.messages.at(0),
                 critical(QStringLiteral("Error 0 :  ()\r\nThis error will undo your action")));
        QCOMPARE(h.prompts.messages.at(1),
                 critical(QStringLiteral("An error occured while undoing your last action !\r\n"
                                         "Contact the developer for further information :\r\n")
                          + contactLines()));
        QVERIFY(!h.report.isActive());
        QCOMPARE(h.document(index), before);
        QVERIFY(h.host.regenerations.isEmpty());
        QVERIFY(h.host.shownCounts.isEmpty());
    }

    void aFailingTreeRebuildDuringTheReportsUndoDoesNotUndoAgain()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        h.host.activeIndex = index;
        h.edit(index, QStringLiteral("One"));
        h.edit(index, QStringLiteral("Two"));
        h.host.failingRegenerations = 1;

        QVERIFY(!runEditingOperation(h.report, [history = &h, index] {
            history->undoManager.saveUndoState(index, true);
            history->document(index).items[0].caption = QStringLiteral("Half done");
            history->document(index).lastIndex = Int16::checked(70000, "duplicate");
        }));

        QCOMPARE(h.prompts.messages.size(), 2);
        QCOMPARE(h.prompts.messages.at(0).text,
                 QStringLiteral("Error 6 : Overflow (duplicate)\r\nThis error will undo your action"));
        QVERIFY(h.prompts.messages.at(1).text.startsWith(
            QStringLiteral("An error occured while undoing your last action !\r\n")));
        // One undo ran (the state before the failed edit came back), and no second one followed.
        QCOMPARE(h.host.regenerations.size(), 1);
        QCOMPARE(h.histories.history(index).undoCount(), qint16(2));
        QCOMPARE(h.histories.history(index).redoCount(), qint16(1));
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Two"));
        QVERIFY(h.host.shownCounts.isEmpty());
        QVERIFY(!h.report.isActive());
    }

    void aFailingTreeRebuildOnRedoIsReportedAndUndone()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        h.host.activeIndex = index;
        h.edit(index, QStringLiteral("One"));
        h.controller.mnuUndo_Click();
        h.host.failingRegenerations = 1;

        h.controller.mnuRedo_Click();
        QCOMPARE(h.prompts.messages.size(), 1);
        QCOMPARE(h.prompts.messages.first().text,
                 QStringLiteral("Error 9 : Subscript out of range (generateTree)\r\nThis error will undo your action"));
        // The report's Undo takes the redone step back again.
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Item 0"));
        QCOMPARE(h.histories.history(index).redoCount(), qint16(1));
        QCOMPARE(h.host.regenerations.size(), 3);
    }

private:
    std::unique_ptr<HistoryFixture> m_history;
};

QTEST_GUILESS_MAIN(TestUndoController)
#include "test_undocontroller.moc"
