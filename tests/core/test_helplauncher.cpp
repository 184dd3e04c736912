#include "core/helplauncher.h"
#include "core/helpsystem.h"
#include "recordedprompts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

/// A desktop whose viewer and browser the test decides, and which starts nothing.
class FakeHelpSystem final : public HelpSystem
{
public:
    std::optional<Viewer> viewer;
    bool viewerStarts = true;
    bool browserOpens = true;

    QStringList startedViewers; ///< program, then the file, for each start
    QStringList browsedPages;
    int viewerSearches = 0;

    std::optional<Viewer> findChmViewer() const override
    {
        ++const_cast<FakeHelpSystem*>(this)->viewerSearches;
        return viewer;
    }
    bool startChmViewer(const Viewer& started, const QString& chmFilePath) override
    {
        startedViewers << started.program << chmFilePath;
        return viewerStarts;
    }
    bool openInBrowser(const QString& htmlFilePath) override
    {
        browsedPages << htmlFilePath;
        return browserOpens;
    }
};

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
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help/en")));
        m_chm = QDir(m_folder->path()).filePath(QStringLiteral("Help/en.chm"));
        m_html = QDir(m_folder->path()).filePath(QStringLiteral("Help/en/index.html"));
        m_system = FakeHelpSystem();
        m_prompts.messages.clear();
    }

    void aViewerShowsTheHelpFile()
    {
        writeBoth();
        m_system.viewer = HelpSystem::Viewer { QStringLiteral("/usr/bin/xchm"), {} };
        QVERIFY(showHelp());
        QCOMPARE(m_system.startedViewers, (QStringList { QStringLiteral("/usr/bin/xchm"), native(m_chm) }));
        QVERIFY(m_system.browsedPages.isEmpty());
        QVERIFY(m_prompts.messages.isEmpty());
    }

    void withoutViewerTheBrowserShowsThePages()
    {
        writeBoth();
        QVERIFY(showHelp());
        QVERIFY(m_system.startedViewers.isEmpty());
        QCOMPARE(m_system.browsedPages, QStringList { native(m_html) });
        QVERIFY(m_prompts.messages.isEmpty());
    }

    void withoutTheHelpFileThePagesShowWithoutLookingForAViewer()
    {
        QVERIFY(writeBytes(m_html, "<html></html>"));
        m_system.viewer = HelpSystem::Viewer { QStringLiteral("xchm"), {} };
        QVERIFY(showHelp());
        QCOMPARE(m_system.viewerSearches, 0);
        QCOMPARE(m_system.browsedPages, QStringList { native(m_html) });
    }

    void aViewerThatDoesNotStartLeavesItToTheBrowser()
    {
        writeBoth();
        m_system.viewer = HelpSystem::Viewer { QStringLiteral("broken-viewer"), {} };
        m_system.viewerStarts = false;
        QVERIFY(showHelp());
        QCOMPARE(m_system.startedViewers.size(), 2);
        QCOMPARE(m_system.browsedPages, QStringList { native(m_html) });
        QVERIFY(m_prompts.messages.isEmpty());
    }

    void neitherViewerNorBrowserNamesThePackagesOfAViewer()
    {
        writeBoth();
        m_system.browserOpens = false;
        QVERIFY(!showHelp());
        QCOMPARE(m_prompts.messages.size(), 1);
        const MessageRequest& message = m_prompts.messages.first();
        QCOMPARE(message.icon, MessageRequest::Icon::Exclamation);
        QCOMPARE(message.buttons, MessageRequest::Buttons::Ok);
        QCOMPARE(message.text, HelpLauncher::noViewerText(m_chm));
        QVERIFY(message.text.startsWith(
            QStringLiteral("No program to show help files (.chm) is installed on this system.\r\n")));
        for (const QString& package : HelpLauncher::viewerPackages()) {
            QVERIFY2(message.text.contains(package), qPrintable(package));
        }
        QVERIFY(message.text.endsWith(native(m_chm)));
    }

    void noViewerAndNoPagesNamesThePackagesOfAViewer()
    {
        QVERIFY(writeBytes(m_chm, "ITSF"));
        QVERIFY(!showHelp());
        QVERIFY(m_system.browsedPages.isEmpty());
        QCOMPARE(m_prompts.messageTexts(), QStringList { HelpLauncher::noViewerText(m_chm) });
    }

    void aViewerThatDoesNotStartIsNamed()
    {
        QVERIFY(writeBytes(m_chm, "ITSF"));
        m_system.viewer = HelpSystem::Viewer { QStringLiteral("broken-viewer"), {} };
        m_system.viewerStarts = false;
        QVERIFY(!showHelp());
        QCOMPARE(m_prompts.messageTexts(),
                 QStringList { HelpLauncher::startFailedText(QStringLiteral("broken-viewer"), m_chm) });
    }

    void pagesTheBrowserCannotOpenAreNamed()
    {
        QVERIFY(writeBytes(m_html, "<html></html>"));
        m_system.browserOpens = false;
        QVERIFY(!showHelp());
        QCOMPARE(m_prompts.messageTexts(), QStringList { HelpLauncher::browserFailedText(m_html) });
        QVERIFY(m_prompts.messages.first().text.endsWith(native(m_html)));
    }

    void nothingInstalledNamesTheMissingHelpFile()
    {
        m_system.viewer = HelpSystem::Viewer { QStringLiteral("xchm"), {} };
        QVERIFY(!showHelp());
        QCOMPARE(m_system.viewerSearches, 0);
        QVERIFY(m_system.browsedPages.isEmpty());
        QCOMPARE(m_prompts.messageTexts(), QStringList { HelpLauncher::missingFileText(m_chm) });
        QVERIFY(m_prompts.messages.first().text.startsWith(QStringLiteral("The help file could not be found :")));
    }

    void aFolderIsNoHelpFile()
    {
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help/en.chm")));
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("Help/en/index.html")));
        QVERIFY(!showHelp());
        QCOMPARE(m_prompts.messageTexts(), QStringList { HelpLauncher::missingFileText(m_chm) });
    }

    void packagesAreNamedInTheMessageAsAList()
    {
        const QString text = HelpLauncher::noViewerText(m_chm);
        QVERIFY2(text.contains(QStringLiteral("xchm, kchmviewer or okular")), qPrintable(text));
    }

private:
    bool showHelp()
    {
        HelpLauncher launcher(m_system, m_prompts);
        return launcher.showHelp(m_chm, m_html);
    }

    void writeBoth()
    {
        QVERIFY(writeBytes(m_chm, "ITSF"));
        QVERIFY(writeBytes(m_html, "<html></html>"));
    }

    static QString native(const QString& path) { return QDir::toNativeSeparators(path); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_chm;
    QString m_html;
    FakeHelpSystem m_system;
    RecordedPrompts m_prompts;
};

QTEST_GUILESS_MAIN(TestHelpLauncher)
#include "test_helplauncher.moc"
