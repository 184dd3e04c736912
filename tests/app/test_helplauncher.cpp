#include "app/helplauncher.h"
#include "recordedprompts.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A system whose viewer (or lack of one) the test decides, and which starts nothing.
class ScriptedHelpLauncher final : public HelpLauncher
{
public:
    using HelpLauncher::HelpLauncher;

    std::optional<Viewer> viewer;
    bool startSucceeds = true;
    QList<QStringList> started;

protected:
    std::optional<Viewer> findViewer() const override { return viewer; }
    bool startViewer(const QString& program, const QStringList& arguments) override
    {
        started.append(QStringList { program } + arguments);
        return startSucceeds;
    }
};

QString fileText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromLocal8Bit(file.readAll());
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestHelpLauncher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help")));
        m_helpFile = QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm"));
    }

    void withoutViewerTheUserIsTold()
    {
        QVERIFY(writeBytes(m_helpFile, "ITSF"));
        RecordedPrompts prompts;
        ScriptedHelpLauncher launcher(prompts);
        QVERIFY(!launcher.showHelp(m_helpFile));
        QVERIFY(launcher.started.isEmpty());
        QCOMPARE(prompts.messages.size(), 1);
        const MessageRequest& message = prompts.messages.first();
        QCOMPARE(message.icon, MessageRequest::Icon::Exclamation);
        QCOMPARE(message.buttons, MessageRequest::Buttons::Ok);
        QVERIFY(message.text.startsWith(
            QStringLiteral("No program to show help files (.chm) is installed on this system.\r\n")));
        QVERIFY(message.text.endsWith(QDir::toNativeSeparators(m_helpFile)));
        QCOMPARE(message.text, HelpLauncher::noViewerText(m_helpFile));
    }

    void withViewerItIsStartedWithTheFilesPath()
    {
        QVERIFY(writeBytes(m_helpFile, "ITSF"));
        RecordedPrompts prompts;
        ScriptedHelpLauncher launcher(prompts);
        launcher.viewer = HelpLauncher::Viewer { QStringLiteral("/usr/bin/xchm"), {} };
        QVERIFY(launcher.showHelp(m_helpFile));
        QVERIFY(prompts.messages.isEmpty());
        QCOMPARE(launcher.started.size(), 1);
        QCOMPARE(launcher.started.first(),
                 (QStringList { QStringLiteral("/usr/bin/xchm"), QDir::toNativeSeparators(m_helpFile) }));
    }

    void viewerArgumentsComeBeforeTheFile()
    {
        QVERIFY(writeBytes(m_helpFile, "ITSF"));
        RecordedPrompts prompts;
        ScriptedHelpLauncher launcher(prompts);
        launcher.viewer = HelpLauncher::Viewer { QStringLiteral("viewer"), { QStringLiteral("--new-window") } };
        QVERIFY(launcher.showHelp(m_helpFile));
        QCOMPARE(launcher.started.first(),
                 (QStringList { QStringLiteral("viewer"), QStringLiteral("--new-window"),
                                QDir::toNativeSeparators(m_helpFile) }));
    }

    void missingHelpFileIsReportedBeforeLookingForAViewer()
    {
        RecordedPrompts prompts;
        ScriptedHelpLauncher launcher(prompts);
        launcher.viewer = HelpLauncher::Viewer { QStringLiteral("viewer"), {} };
        QVERIFY(!launcher.showHelp(m_helpFile));
        QVERIFY(launcher.started.isEmpty());
        QCOMPARE(prompts.messages.size(), 1);
        QCOMPARE(prompts.messages.first().icon, MessageRequest::Icon::Exclamation);
        QCOMPARE(prompts.messages.first().text, HelpLauncher::missingFileText(m_helpFile));
        QVERIFY(prompts.messages.first().text.endsWith(QDir::toNativeSeparators(m_helpFile)));
    }

    void viewerThatDoesNotStartIsReported()
    {
        QVERIFY(writeBytes(m_helpFile, "ITSF"));
        RecordedPrompts prompts;
        ScriptedHelpLauncher launcher(prompts);
        launcher.viewer = HelpLauncher::Viewer { QStringLiteral("broken-viewer"), {} };
        launcher.startSucceeds = false;
        QVERIFY(!launcher.showHelp(m_helpFile));
        QCOMPARE(launcher.started.size(), 1);
        QCOMPARE(prompts.messages.size(), 1);
        QCOMPARE(prompts.messages.first().text,
                 HelpLauncher::startFailedText(QStringLiteral("broken-viewer"), m_helpFile));
    }

    void realStartRunsTheProgram()
    {
        // The real process start, with a stand-in viewer that leaves a mark.
        const QString shell = QStandardPaths::findExecutable(QStringLiteral("sh"));
        if (shell.isEmpty()) {
            QSKIP("No POSIX shell to stand in for a help viewer.");
        }
        QVERIFY(writeBytes(m_helpFile, "ITSF"));
        const QString mark = QDir(m_folder->path()).filePath(QStringLiteral("opened.txt"));
        RecordedPrompts prompts;
        ScriptedStart launcher(prompts);
        launcher.viewer
            = HelpLauncher::Viewer { shell,
                                     { QStringLiteral("-c"), QStringLiteral("printf %s \"$1\" > \"$0\""), mark } };
        QVERIFY(launcher.showHelp(m_helpFile));
        QVERIFY(prompts.messages.isEmpty());
        QTRY_COMPARE(fileText(mark), QDir::toNativeSeparators(m_helpFile));
    }

private:
    /// The real process start, with the viewer chosen by the test.
    class ScriptedStart final : public HelpLauncher
    {
    public:
        using HelpLauncher::HelpLauncher;
        std::optional<Viewer> viewer;

    protected:
        std::optional<Viewer> findViewer() const override { return viewer; }
    };

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_helpFile;
};

QTEST_GUILESS_MAIN(TestHelpLauncher)
#include "test_helplauncher.moc"
