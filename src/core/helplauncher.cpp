#include "helplauncher.h"

#include "helpsystem.h"
#include "userprompts.h"

#include <QDir>
#include <QFileInfo>

#include <optional>

namespace {

QString lineBreak()
{
    return QStringLiteral("\r\n");
}

QString shownPath(const QString& path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

} // namespace

HelpLauncher::HelpLauncher(HelpSystem& system, UserPrompts& prompts)
    : m_system(system)
    , m_prompts(prompts)
{
}

bool HelpLauncher::showHelp(const QString& chmFilePath, const QString& htmlGuidePath)
{
    const bool haveChm = QFileInfo(chmFilePath).isFile();
    const bool haveHtml = QFileInfo(htmlGuidePath).isFile();

    std::optional<HelpSystem::Viewer> viewer;
    if (haveChm) {
        viewer = m_system.findChmViewer();
        if (viewer && m_system.startChmViewer(*viewer, shownPath(chmFilePath))) {
            return true;
        }
    }
    if (haveHtml && m_system.openInBrowser(shownPath(htmlGuidePath))) {
        return true;
    }

    if (!haveChm && !haveHtml) {
        tellUser(missingFileText(chmFilePath));
    } else if (viewer) {
        tellUser(startFailedText(viewer->program, chmFilePath));
    } else if (haveChm) {
        tellUser(noViewerText(chmFilePath));
    } else {
        tellUser(browserFailedText(htmlGuidePath));
    }
    return false;
}

QString HelpLauncher::missingFileText(const QString& chmFilePath)
{
    return QStringLiteral("The help file could not be found :") + lineBreak() + lineBreak() + shownPath(chmFilePath);
}

QString HelpLauncher::noViewerText(const QString& chmFilePath)
{
    const QStringList packages = viewerPackages();
    const QString choice = packages.mid(0, packages.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" or ")
        + packages.constLast();
    return QStringLiteral("No program to show help files (.chm) is installed on this system.") + lineBreak()
        + QStringLiteral("Install one, for example the package ") + choice + QStringLiteral(".") + lineBreak()
        + lineBreak() + shownPath(chmFilePath);
}

QString HelpLauncher::startFailedText(const QString& program, const QString& chmFilePath)
{
    return QStringLiteral("The help viewer could not be started :") + lineBreak() + QStringLiteral("    ")
        + QDir::toNativeSeparators(program) + lineBreak() + lineBreak() + shownPath(chmFilePath);
}

QString HelpLauncher::browserFailedText(const QString& htmlGuidePath)
{
    return QStringLiteral("The help pages could not be opened in a web browser :") + lineBreak() + lineBreak()
        + shownPath(htmlGuidePath);
}

QStringList HelpLauncher::viewerPackages()
{
    return { QStringLiteral("xchm"), QStringLiteral("kchmviewer"), QStringLiteral("okular") };
}

void HelpLauncher::tellUser(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    m_prompts.showMessage(request);
}
