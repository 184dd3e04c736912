#include "helpmenu.h"

#include "app/desktophelpsystem.h"
#include "core/aboutinfo.h"
#include "core/helplauncher.h"
#include "core/languageconfig.h"
#include "core/userprompts.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>

namespace {

QAction* addEntry(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* entry = menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

} // namespace

HelpMenu::HelpMenu(QMenu* menu, UserPrompts& prompts, const QString& programFolder, QObject* parent)
    : QObject(parent)
    , m_prompts(prompts)
    , m_programFolder(programFolder)
{
    QAction* mnuHelp = addEntry(menu, QStringLiteral("mnuHelp"), QStringLiteral("&Help"));
    mnuHelp->setShortcut(QKeySequence(Qt::Key_F1));
    connect(mnuHelp, &QAction::triggered, this, &HelpMenu::showHelp);
    QAction* mnuAbout = addEntry(menu, QStringLiteral("mnuAbout"), QStringLiteral("&About"));
    connect(mnuAbout, &QAction::triggered, this, &HelpMenu::showAbout);
    // The toolkit's licence asks for its own About box to be reachable.
    QAction* mnuAboutQt = addEntry(menu, QStringLiteral("mnuAboutQt"), QStringLiteral("About &Qt"));
    mnuAboutQt->setMenuRole(QAction::AboutQtRole);
    connect(mnuAboutQt, &QAction::triggered, qApp, &QApplication::aboutQt);
}

void HelpMenu::showHelp()
{
    DesktopHelpSystem system;
    HelpLauncher launcher(system, m_prompts);
    const LanguageConfig language(m_programFolder);
    launcher.showHelp(language.helpFilePath(), language.htmlGuidePath());
}

void HelpMenu::showAbout()
{
    MessageRequest request;
    request.text = aboutText();
    request.icon = MessageRequest::Icon::Information;
    m_prompts.showMessage(request);
}
