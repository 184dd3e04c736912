#include "app/applicationicon.h"
#include "app/mainwindow.h"
#include "app/widgetprompts.h"
#include "app/widgetrecoveryprompt.h"
#include "core/aboutinfo.h"
#include "core/editorcommandline.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"
#include "core/recoverystore.h"

#include <QApplication>
#include <QFile>
#include <QStringList>

#include <cstdio>

namespace {

int printAndExit(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    // --help and --version answer on the terminal, before a display is needed.
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QFile::decodeName(argv[i]));
    }
    switch (EditorCommandLine::requestOf(arguments)) {
    case EditorCommandLine::Request::ShowUsage:
        return printAndExit(EditorCommandLine::usageText());
    case EditorCommandLine::Request::ShowVersion:
        return printAndExit(versionText(QStringLiteral("KELVEditor")));
    case EditorCommandLine::Request::StartEditor:
        break;
    }

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KELVEditor"));
    QApplication::setApplicationVersion(programVersion());
    // Lets the desktop match the windows to the installed desktop entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.kelv_editor.KELVEditor"));
    QApplication::setWindowIcon(applicationIcon());

    WidgetPrompts prompts;
    OptionsStore optionsStore;
    MainWindow window(prompts, optionsStore, ProgramFolder::path(), RecoveryStore::defaultFolder());
    prompts.setParentWidget(&window);

    // The command line holds at most one menu file; a path with blanks may come split in pieces.
    window.openCommandLineMenu(QApplication::arguments().mid(1).join(QLatin1Char(' ')));
    window.show();
    // Menus whose changes an editor that did not quit normally left behind, over the open window.
    WidgetRecoveryPrompt recoveryPrompt(&window);
    window.offerRecovery(recoveryPrompt);
    return QApplication::exec();
}
