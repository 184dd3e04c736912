#include "desktophelpsystem.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace {

#ifndef Q_OS_WIN
/// The desktop entry the desktop opens help files with, as xdg-mime reports it; empty when the
/// desktop names none or xdg-mime is not there.
QString desktopDefaultForHelpFiles()
{
    const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (xdgMime.isEmpty()) {
        return {};
    }
    QProcess query;
    query.start(xdgMime,
                { QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("application/vnd.ms-htmlhelp") });
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
    if (!desktopDefaultForHelpFiles().isEmpty()) {
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
    return QDesktopServices::openUrl(QUrl::fromLocalFile(htmlFilePath));
}

QStringList DesktopHelpSystem::knownViewers()
{
    return { QStringLiteral("xchm"), QStringLiteral("kchmviewer"), QStringLiteral("uchmviewer"),
             QStringLiteral("okular"), QStringLiteral("chmsee") };
}
