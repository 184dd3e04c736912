#include "app/desktophelpsystem.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeExecutable(const QString& path, const QByteArray& script)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size()) {
        return false;
    }
    file.close();
    return file.setPermissions(file.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser);
}

QString fileText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

/// Sets PATH for the life of the object.
class PathOverride final
{
public:
    explicit PathOverride(const QString& path)
        : m_old(qgetenv("PATH"))
    {
        qputenv("PATH", QFile::encodeName(path));
    }
    ~PathOverride() { qputenv("PATH", m_old); }
    PathOverride(const PathOverride&) = delete;
    PathOverride& operator=(const PathOverride&) = delete;

private:
    QByteArray m_old;
};

} // namespace

class TestDesktopHelpSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void viewersOfTheCommonDesktopsAreKnown()
    {
        const QStringList viewers = DesktopHelpSystem::knownViewers();
        for (const char* name : { "xchm", "kchmviewer", "okular" }) {
            QVERIFY2(viewers.contains(QString::fromLatin1(name)), name);
        }
    }

#ifndef Q_OS_WIN
    void aKnownViewerInPathIsFound()
    {
        QTemporaryDir bin;
        QVERIFY(bin.isValid());
        const QString viewer = bin.filePath(QStringLiteral("kchmviewer"));
        QVERIFY(writeExecutable(viewer, "#!/bin/sh\nexit 0\n"));
        // Only this folder is searched: neither xdg-mime nor any installed viewer is found.
        PathOverride path(bin.path());
        const std::optional<HelpSystem::Viewer> found = DesktopHelpSystem().findChmViewer();
        QVERIFY(found.has_value());
        QCOMPARE(found->program, viewer);
        QVERIFY(found->arguments.isEmpty());
    }

    void withoutViewerInPathNoneIsFound()
    {
        QTemporaryDir bin;
        QVERIFY(bin.isValid());
        PathOverride path(bin.path());
        QVERIFY(!DesktopHelpSystem().findChmViewer().has_value());
    }

    void theViewerIsStartedWithItsArgumentsAndTheFile()
    {
        const QString shell = QStandardPaths::findExecutable(QStringLiteral("sh"));
        if (shell.isEmpty()) {
            QSKIP("No POSIX shell to stand in for a help viewer.");
        }
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString mark = folder.filePath(QStringLiteral("opened.txt"));
        const QString helpFile = folder.filePath(QStringLiteral("en.chm"));
        DesktopHelpSystem system;
        const HelpSystem::Viewer viewer { shell,
                                          { QStringLiteral("-c"), QStringLiteral("printf %s \"$1\" > \"$0\""), mark } };
        QVERIFY(system.startChmViewer(viewer, helpFile));
        QTRY_COMPARE(fileText(mark), helpFile);
    }

    void withoutAnyBrowserTheGuideIsNotOpened()
    {
        QTemporaryDir bin;
        QVERIFY(bin.isValid());
        PathOverride path(bin.path());
        const QByteArray browser = qgetenv("BROWSER");
        qunsetenv("BROWSER");
        QVERIFY(!DesktopHelpSystem::hasWebBrowser());
        QVERIFY(!DesktopHelpSystem().openInBrowser(bin.filePath(QStringLiteral("index.html"))));
        // A browser among the known ones counts, and so does one named by BROWSER.
        QVERIFY(writeExecutable(bin.filePath(QStringLiteral("firefox")), "#!/bin/sh\nexit 0\n"));
        QVERIFY(DesktopHelpSystem::hasWebBrowser());
        QVERIFY(QFile::remove(bin.filePath(QStringLiteral("firefox"))));
        qputenv("BROWSER", "lynx");
        QVERIFY(DesktopHelpSystem::hasWebBrowser());
        if (browser.isNull()) {
            qunsetenv("BROWSER");
        } else {
            qputenv("BROWSER", browser);
        }
    }

    void aViewerThatCannotStartIsReported()
    {
        DesktopHelpSystem system;
        QVERIFY(!system.startChmViewer(HelpSystem::Viewer { QStringLiteral("/nonexistent/viewer"), {} },
                                       QStringLiteral("/tmp/en.chm")));
    }
#endif
};

QTEST_GUILESS_MAIN(TestDesktopHelpSystem)
#include "test_desktophelpsystem.moc"
