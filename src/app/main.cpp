#include "app/mainwindow.h"
#include "app/widgetprompts.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"

#include <QApplication>
#include <QStringList>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KELVEditor"));

    WidgetPrompts prompts;
    OptionsStore optionsStore;
    MainWindow window(prompts, optionsStore, ProgramFolder::path());
    prompts.setParentWidget(&window);

    // The command line holds at most one menu file; a path with blanks may come split in pieces.
    window.openCommandLineMenu(QApplication::arguments().mid(1).join(QLatin1Char(' ')));
    window.show();
    return QApplication::exec();
}
