#include "core/aboutinfo.h"
#include "core/editorcommandline.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

namespace {

struct RunResult
{
    bool finished = false;
    bool exitedNormally = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

/// Runs the built editor with no display at all: what it prints must not need one.
RunResult runWithoutDisplay(const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : { "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" }) {
        environment.remove(QString::fromLatin1(name));
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELVEDITOR_PATH), arguments);
    RunResult result;
    result.finished = process.waitForFinished(30000);
    result.exitedNormally = result.finished && process.exitStatus() == QProcess::NormalExit;
    if (!result.finished) {
        process.kill();
        process.waitForFinished(5000);
    }
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

} // namespace

class TestEditorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(QStringLiteral(KELVEDITOR_PATH)), KELVEDITOR_PATH); }

    void helpPrintsTheUsageAndExits_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("--help") << QStringLiteral("--help");
        QTest::newRow("-h") << QStringLiteral("-h");
    }

    void helpPrintsTheUsageAndExits()
    {
        QFETCH(QString, option);
        const RunResult result = runWithoutDisplay({ option });
        QVERIFY(result.exitedNormally);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.err.isEmpty(), result.err);
        QCOMPARE(result.out, EditorCommandLine::usageText().toUtf8());
    }

    void versionPrintsTheVersionAndExits()
    {
        const RunResult result = runWithoutDisplay({ QStringLiteral("--version") });
        QVERIFY(result.exitedNormally);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.err.isEmpty(), result.err);
        QCOMPARE(result.out, versionText(QStringLiteral("KELVEditor")).toUtf8());
        QVERIFY(result.out.startsWith("KELVEditor (KELV Menu Editor) "));
    }

    void aMenuFileArgumentStartsTheEditor()
    {
        // Without a display the editor cannot start: it stops at the windowing system instead of
        // printing anything above.
        const RunResult result = runWithoutDisplay({ QStringLiteral("--help.ini") });
        QVERIFY(result.finished);
        QVERIFY(!result.exitedNormally || result.exitCode != 0);
        QVERIFY(result.out.isEmpty());
        QVERIFY2(result.err.contains("platform plugin"), result.err);
    }
};

QTEST_GUILESS_MAIN(TestEditorProgram)
#include "test_editorprogram.moc"
