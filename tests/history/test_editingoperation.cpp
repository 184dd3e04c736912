#include "historyfixture.h"

#include "history/editingoperation.h"
#include "menufile/menufilewriter.h"
#include "model/errortable.h"
#include "model/int16.h"
#include "model/runtimeerror.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <new>
#include <stdexcept>

namespace {

QString undoNotice()
{
    return QStringLiteral("\r\nThis error will undo your action");
}

/// An editing operation on the first item of `index` that records its snapshot, renames the item,
/// and then fails in the way `fail` does, leaving `reachedEnd` false.
struct FailingEdit
{
    HistoryFixture* history;
    qint16 index;
    std::function<void()> fail;
    bool* reachedEnd;

    void operator()() const
    {
        history->undoManager.saveUndoState(index, true);
        history->document(index).items[0].caption = QStringLiteral("Half done");
        fail();
        // An edit ends by waiting for the autosave file of its snapshot.
        history->undoManager.completeAutosave();
        *reachedEnd = true;
    }
};

} // namespace

class TestEditingOperation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_history = std::make_unique<HistoryFixture>();
        QVERIFY(m_history->folder.isValid());
    }

    void cleanup() { m_history.reset(); }

    void aCompletedOperationReportsNothing()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.host.activeIndex = index;
        bool reachedEnd = false;
        const FailingEdit edit { &h, index, [] {}, &reachedEnd };
        QVERIFY(runEditingOperation(h.report, edit));
        QVERIFY(reachedEnd);
        QVERIFY(h.prompts.messages.isEmpty());
        QCOMPARE(h.document(index).items[0].caption, QStringLiteral("Half done"));
    }

    void anOverflowAfterTheSnapshotIsReportedAndUndone_data()
    {
        QTest::addColumn<int>("hideMode");
        QTest::newRow("all items shown") << 0;
        QTest::newRow("both kinds hidden") << 3;
    }

    void anOverflowAfterTheSnapshotIsReportedAndUndone()
    {
        QFETCH(int, hideMode);
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(3);
        h.host.activeIndex = index;
        h.document(index).hideMode = hideMode;
        const MenuDocument before = h.document(index);

        // Documents are checked the moment the message is up: the undo runs only after it is closed.
        MenuDocument whileShown;
        h.prompts.onMessage = [target = &whileShown, history = &h, index](const MessageRequest&) {
            *target = history->document(index);
        };
        bool reachedEnd = false;
        const FailingEdit edit { &h, index, [] { Int16::incremented(32767, "newItem"); }, &reachedEnd };
        QVERIFY(!runEditingOperation(h.report, edit));

        QVERIFY(!reachedEnd);
        QCOMPARE(h.prompts.messages.size(), 1);
        QCOMPARE(h.prompts.messages.first().text, QStringLiteral("Error 6 : Overflow (newItem)") + undoNotice());
        QCOMPARE(h.prompts.messages.first().icon, MessageRequest::Icon::Critical);
        QCOMPARE(h.prompts.messages.first().buttons, MessageRequest::Buttons::Ok);
        QVERIFY(h.prompts.messages.first().title.isEmpty());
        QCOMPARE(whileShown.items[0].caption, QStringLiteral("Half done"));

        QCOMPARE(h.document(index), before);
        QCOMPARE(h.histories.history(index).undoCount(), qint16(0));
        QCOMPARE(h.host.shownCounts, QList<int>({ 3 }));
    }

    void aFailedAutosaveWriteIsReportedAndUndone()
    {
        const QString missingFolder = QDir(m_history->folder.path()).filePath(QStringLiteral("gone"));
        HistoryFixture h(missingFolder);
        const qint16 index = h.openDocument(2);
        h.host.activeIndex = index;
        const MenuDocument before = h.document(index);

        // The writer's own error, told as the autosave file's: the user never chose that file.
        const QString expected = QStringLiteral("Error 76 : Path not found: the autosave file %1 cannot be written "
                                                "(writeMenuFile)")
                                     .arg(QDir::toNativeSeparators(h.undoManager.autosavePath(index)));

        bool reachedEnd = false;
        const FailingEdit edit { &h, index, [] {}, &reachedEnd };
        QVERIFY(!runEditingOperation(h.report, edit));
        QVERIFY(!reachedEnd);
        QCOMPARE(h.prompts.messages.size(), 1);
        QCOMPARE(h.prompts.messages.first().text, expected + undoNotice());
        QCOMPARE(h.document(index), before);
        QVERIFY(h.document(index).saved);
    }

    void failuresOutsideTheModelGetTheirErrorNumber_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("report");
        QTest::newRow("memory") << 0 << QStringLiteral("Error 7 : Out of memory (KELVEditor)");
        QTest::newRow("index") << 1 << QStringLiteral("Error 9 : Subscript out of range (KELVEditor)");
        QTest::newRow("other") << 2 << QStringLiteral("Error 5 : Invalid procedure call or argument (KELVEditor)");
    }

    void failuresOutsideTheModelGetTheirErrorNumber()
    {
        QFETCH(int, kind);
        QFETCH(QString, report);
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.host.activeIndex = index;
        const MenuDocument before = h.document(index);

        bool reachedEnd = false;
        const FailingEdit edit { &h, index,
                                 [kind] {
                                     if (kind == 0) {
                                         throw std::bad_alloc();
                                     }
                                     if (kind == 1) {
                                         throw std::out_of_range("items");
                                     }
                                     throw std::runtime_error("anything else");
                                 },
                                 &reachedEnd };
        QVERIFY(!runEditingOperation(h.report, edit));
        QVERIFY(!reachedEnd);
        QCOMPARE(h.prompts.messages.size(), 1);
        QCOMPARE(h.prompts.messages.first().text, report + undoNotice());
        QCOMPARE(h.document(index), before);
    }

    void aFailureBeforeTheSnapshotUndoesTheLastRecordedEdit()
    {
        HistoryFixture& h = *m_history;
        const qint16 index = h.openDocument(2);
        h.host.activeIndex = index;
        const MenuDocument opened = h.document(index);
        h.edit(index, QStringLiteral("Renamed"));

        // A key that names no item fails before anything is recorded.
        QVERIFY(!runEditingOperation(h.report, [history = &h, index] {
            history->documents.document(index + 5).items[0].caption = QStringLiteral("Never");
        }));
        QCOMPARE(h.prompts.messages.first().text,
                 QStringLiteral("Error 9 : Subscript out of range (DocumentList)") + undoNotice());
        QCOMPARE(h.document(index), opened);
    }

private:
    std::unique_ptr<HistoryFixture> m_history;
};

QTEST_GUILESS_MAIN(TestEditingOperation)
#include "test_editingoperation.moc"
