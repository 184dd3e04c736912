#include "editorcommandline.h"

EditorCommandLine::Request EditorCommandLine::requestOf(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        return Request::StartEditor;
    }
    const QString& argument = arguments.first();
    if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
        return Request::ShowUsage;
    }
    if (argument == QLatin1String("--version")) {
        return Request::ShowVersion;
    }
    return Request::StartEditor;
}

QString EditorCommandLine::usageText()
{
    return QStringLiteral(
        "Usage: KELVEditor [MENU-FILE]\n"
        "\n"
        "Starts the KELV Menu Editor, the editor of the .ini menu files of the KELV context menu of the\n"
        "file manager, and opens MENU-FILE in it when one is given.\n"
        "\n"
        "MENU-FILE is opened when its name ends in \"ini\"; \"$exepath$\" in it stands for the editor's own\n"
        "folder, as in '$exepath$/menus/tools.ini'. A command line that names no menu file starts the\n"
        "editor without one.\n"
        "\n"
        "Options:\n"
        "  -h, --help  show this help and exit\n"
        "  --version   show the version and exit\n"
        "\n"
        "The options of the Qt toolkit, such as -style or -platform, are understood as well.\n");
}
