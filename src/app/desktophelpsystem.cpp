#include "desktophelpsystem.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace {

#ifndef Q_OS_WIN
/// The desktop entry the desktop opens files of `mimeType` with, as xdg-mime reports it; empty when
/// the desktop names none or xdg-mime is not there.
QString desktopDefaultFor(const QString& mimeType)
{
    const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (xdgMime.isEmpty()) {
        return {};
    }
    QProcess query;
    query.start(xdgMime, { QStringLiteral("query"), QStringLiteral("default"), mimeType });
    if (!query.waitForFinished(5000) || query.exitStatus() != QProcess::NormalExit || query.exitCode() != 0) {
        query.kill();
        query.waitForFinished(1000);
        return {};
    }
    return QString::fromLocal8Bit(query.readAllStandardOutput()).trimmed();
}
#endif

} // namespace

std::optional<HelpSystem::Viewer> DesktopHelpSystem::findChmViewer() const
{
#ifdef Q_OS_WIN
    // The HTML Help viewer of Windows; it lives in the Windows folder, which is normally in PATH.
    QString program = QStandardPaths::findExecutable(QStringLiteral("hh"));
    if (program.isEmpty()) {
        const QString windowsFolder = qEnvironmentVariable("WINDIR");
        const QString candidate = QDir(windowsFolder).filePath(QStringLiteral("hh.exe"));
        if (!windowsFolder.isEmpty() && QFileInfo(candidate).isFile()) {
            program = candidate;
        }
    }
    if (program.isEmpty()) {
        return std::nullopt;
    }
    return Viewer { program, {} };
#else
    // The user's own choice of viewer comes first.
    if (!desktopDefaultFor(QStringLiteral("application/vnd.ms-htmlhelp")).isEmpty()) {
        const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
        if (!opener.isEmpty()) {
            return Viewer { opener, {} };
        }
    }
    const QStringList viewers = knownViewers();
    for (const QString& name : viewers) {
        const QString program = QStandardPaths::findExecutable(name);
        if (!program.isEmpty()) {
            return Viewer { program, {} };
        }
    }
    return std::nullopt;
#endif
}

bool DesktopHelpSystem::startChmViewer(const Viewer& viewer, const QString& chmFilePath)
{
    return QProcess::startDetached(viewer.program, viewer.arguments + QStringList { chmFilePath });
}

bool DesktopHelpSystem::openInBrowser(const QString& htmlFilePath)
{
    if (!hasWebBrowser()) {
        return false;
    }
    return QDesktopServices::openUrl(QUrl::fromLocalFile(htmlFilePath));
}

QStringList DesktopHelpSystem::knownBrowsers()
{
    return { QStringLiteral("x-www-browser"), QStringLiteral("firefox"),          QStringLiteral("firefox-esr"),
             QStringLiteral("chromium"),      QStringLiteral("chromium-browser"), QStringLiteral("google-chrome"),
             QStringLiteral("epiphany"),      QStringLiteral("konqueror"),        QStringLiteral("falkon"),
             QStringLiteral("midori"),        QStringLiteral("qutebrowser") };
}

bool DesktopHelpSystem::hasWebBrowser()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return true; // the system always has one
#else
    if (!qEnvironmentVariable("BROWSER").isEmpty() || !desktopDefaultFor(QStringLiteral("text/html")).isEmpty()) {
        return true;
    }
    const QStringList browsers = knownBrowsers();
    for (const QString& name : browsers) {
        if (!QStandardPaths::findExecutable(name).isEmpty()) {
            return true;
        }
    }
    return false;
#endif
}

QStringList DesktopHelpSystem::knownViewers()
{
    return { QStringLiteral("xchm"), QStringLiteral("kchmviewer"), QStringLiteral("uchmviewer"),
             QStringLiteral("okular"), QStringLiteral("chmsee") };
}
