#include "recordingprompts.h"

#include "core/aboutinfo.h"
#include "history/undoerrorreport.h"
#include "model/errortable.h"
#include "model/runtimeerror.h"

#include <QTest>

#include <stdexcept>

namespace {

MessageRequest critical(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.buttons = MessageRequest::Buttons::Ok;
    return request;
}

QString undoFailed()
{
    return QStringLiteral("An error occured while undoing your last action !\r\n"
                          "Contact the developer for further information :\r\n")
        + contactLines();
}

/// Stands for the main window's Undo: counts the calls, notes whether the report's guard was up and
/// can fail the way a broken tree rebuild would.
struct UndoProbe
{
    enum class Failure { None, ReportedThroughTheReport, Escaping };

    void undo()
    {
        ++undos;
        events.append(QStringLiteral("undo"));
        activeDuringUndo = report->isActive();
        if (failure == Failure::ReportedThroughTheReport) {
            report->show(RunTimeError(ErrorNumber::SubscriptOutOfRange, QStringLiteral("generateTree")));
        } else if (failure == Failure::Escaping) {
            throw std::runtime_error("tree control gone");
        }
    }

    UndoErrorReport* report = nullptr;
    Failure failure = Failure::None;
    int undos = 0;
    bool activeDuringUndo = false;
    QStringList events;
};

} // namespace

class TestUndoErrorReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsTheErrorAndThenUndoes()
    {
        RecordingPrompts prompts;
        UndoProbe probe;
        prompts.onMessage
            = [target = &probe](const MessageRequest&) { target->events.append(QStringLiteral("message")); };
        UndoErrorReport report(prompts.criticalMessages(), contactLines(), [target = &probe] { target->undo(); });
        probe.report = &report;

        report.show(RunTimeError(ErrorNumber::Overflow, QStringLiteral("newItem")));

        QCOMPARE(prompts.messages.size(), 1);
        QCOMPARE(prompts.messages.first(),
                 critical(QStringLiteral("Error 6 : Overflow (newItem)\r\nThis error will undo your action")));
        QVERIFY(prompts.messages.first().title.isEmpty());
        QCOMPARE(probe.events, QStringList({ QStringLiteral("message"), QStringLiteral("undo") }));
        QVERIFY(probe.activeDuringUndo);
        QVERIFY(!report.isActive());
    }

    void noPendingErrorReportsNumberZero()
    {
        RecordingPrompts prompts;
        UndoProbe probe;
        UndoErrorReport report(prompts.criticalMessages(), contactLines(), [target = &probe] { target->undo(); });
        probe.report = &report;
        report.show(RunTimeError::noError());
        QCOMPARE(prompts.messages.size(), 1);
        QCOMPARE(prompts.messages.first(),
                 critical(QStringLiteral("Error 0 :  ()\r\nThis error will undo your action")));
        QCOMPARE(probe.undos, 1);
    }

    void anErrorWhileUndoingShowsTheSecondMessageAndDoesNotUndoAgain()
    {
        RecordingPrompts prompts;
        UndoProbe probe;
        probe.failure = UndoProbe::Failure::ReportedThroughTheReport;
        UndoErrorReport report(prompts.criticalMessages(), contactLines(), [target = &probe] { target->undo(); });
        probe.report = &report;

        report.show(RunTimeError(ErrorNumber::PathNotFound, QStringLiteral("writeMenuFile")));

        QCOMPARE(probe.undos, 1);
        QCOMPARE(prompts.messages.size(), 2);
        QCOMPARE(
            prompts.messages.at(0),
            critical(QStringLiteral("Error 76 : Path not found (writeMenuFile)\r\nThis error will undo your action")));
        QCOMPARE(prompts.messages.at(1), critical(undoFailed()));
        QVERIFY(!report.isActive());

        // The guard is down again: the next error is reported and undone normally.
        probe.failure = UndoProbe::Failure::None;
        report.show(RunTimeError(ErrorNumber::Overflow, QStringLiteral("paste")));
        QCOMPARE(probe.undos, 2);
        QCOMPARE(prompts.messages.size(), 3);
        QCOMPARE(prompts.messages.at(2).text,
                 QStringLiteral("Error 6 : Overflow (paste)\r\nThis error will undo your action"));
    }

    void anExceptionEscapingTheUndoCountsAsAFailedUndo()
    {
        RecordingPrompts prompts;
        UndoProbe probe;
        probe.failure = UndoProbe::Failure::Escaping;
        UndoErrorReport report(prompts.criticalMessages(), contactLines(), [target = &probe] { target->undo(); });
        probe.report = &report;
        report.show(RunTimeError(ErrorNumber::Overflow, QStringLiteral("drop")));
        QCOMPARE(probe.undos, 1);
        QCOMPARE(prompts.messages.size(), 2);
        QCOMPARE(prompts.messages.at(1), critical(undoFailed()));
        QVERIFY(!report.isActive());
    }

    void theTextsAreTheProgramsOwn()
    {
        QCOMPARE(UndoErrorReport::errorText(RunTimeError(ErrorNumber::OutOfMemory, QStringLiteral("KELVEditor"))),
                 QStringLiteral("Error 7 : Out of memory (KELVEditor)\r\nThis error will undo your action"));
        QCOMPARE(UndoErrorReport::undoFailedText(contactLines()), undoFailed());
        // The maker's e-mail and forum close the message, each on its own indented line.
        const QStringList lines = UndoErrorReport::undoFailedText(contactLines()).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines.at(2).startsWith(QStringLiteral("    ")));
        QVERIFY(lines.at(3).startsWith(QStringLiteral("    ")));
    }
};

QTEST_GUILESS_MAIN(TestUndoErrorReport)
#include "test_undoerrorreport.moc"
