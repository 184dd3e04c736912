#include "helplauncher.h"

#include "core/userprompts.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace {

QString lineBreak()
{
    return QStringLiteral("\r\n");
}

void tellUser(UserPrompts& prompts, const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    prompts.showMessage(request);
}

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

HelpLauncher::HelpLauncher(UserPrompts& prompts)
    : m_prompts(prompts)
{
}

HelpLauncher::~HelpLauncher() = default;

bool HelpLauncher::showHelp(const QString& helpFilePath)
{
    if (!QFileInfo(helpFilePath).isFile()) {
        tellUser(m_prompts, missingFileText(helpFilePath));
        return false;
    }
    const std::optional<Viewer> viewer = findViewer();
    if (!viewer) {
        tellUser(m_prompts, noViewerText(helpFilePath));
        return false;
    }
    QStringList arguments = viewer->arguments;
    arguments.append(QDir::toNativeSeparators(QFileInfo(helpFilePath).absoluteFilePath()));
    if (!startViewer(viewer->program, arguments)) {
        tellUser(m_prompts, startFailedText(viewer->program, helpFilePath));
        return false;
    }
    return true;
}

QString HelpLauncher::missingFileText(const QString& helpFilePath)
{
    return QStringLiteral("The help file could not be found :") + lineBreak() + lineBreak()
        + QDir::toNativeSeparators(helpFilePath);
}

QString HelpLauncher::noViewerText(const QString& helpFilePath)
{
    return QStringLiteral("No program to show help files (.chm) is installed on this system.") + lineBreak()
        + lineBreak() + QDir::toNativeSeparators(helpFilePath);
}

QString HelpLauncher::startFailedText(const QString& program, const QString& helpFilePath)
{
    return QStringLiteral("The help viewer could not be started :") + lineBreak() + QStringLiteral("    ")
        + QDir::toNativeSeparators(program) + lineBreak() + lineBreak() + QDir::toNativeSeparators(helpFilePath);
}

QStringList HelpLauncher::knownViewers()
{
    return { QStringLiteral("xchm"), QStringLiteral("kchmviewer"), QStringLiteral("uchmviewer"),
             QStringLiteral("okular"), QStringLiteral("chmsee") };
}

std::optional<HelpLauncher::Viewer> HelpLauncher::findViewer() const
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

bool HelpLauncher::startViewer(const QString& program, const QStringList& arguments)
{
    return QProcess::startDetached(program, arguments);
}
