// An editor in a process of its own, for the recovery tests of the windows: a main window on the
// folders given, which opens and makes menus and edits them through its editing session as the
// user's clicks would, saves one and closes another without saving, waits until the recovery copies
// are on disk, prints "ready", and then
//   crash: waits to be killed (the test kills it with SIGKILL, as a crash ends an editor);
//   quit:  quits as the user does, answering No to the quit question, and ends normally.
// Usage: kelv_recoveryeditor PROGRAM_FOLDER MENU_FOLDER RECOVERY_FOLDER OPTIONS_FILE crash|quit LABEL
// The menu folder must hold alpha.ini, beta.ini and gamma.ini.

#include "fakeprompts.h"
#include "windowedits.h"

#include "app/mainwindow.h"
#include "app/recoverycopies.h"
#include "core/editingsession.h"
#include "core/optionsstore.h"
#include "core/programfolder.h"
#include "core/recoverystore.h"
#include "editing/itemcreation.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

namespace {

using WindowEdits::renameItem;

int fail(const char* text)
{
    std::fputs(text, stderr);
    std::fputs("\n", stderr);
    return 1;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 7) {
        std::fputs("usage: kelv_recoveryeditor PROGRAM_FOLDER MENU_FOLDER RECOVERY_FOLDER OPTIONS_FILE crash|quit "
                   "LABEL\n",
                   stderr);
        return 2;
    }
    const QString programFolder = arguments.at(1);
    const QDir menus(arguments.at(2));
    const QString mode = arguments.at(5);
    const QString label = arguments.at(6);
    ProgramFolder::setOverride(programFolder);
    FakePrompts prompts;
    OptionsStore options(arguments.at(4));
    MainWindow window(prompts, options, programFolder, arguments.at(3));

    // An opened menu renamed twice: the copy holds the second name.
    const qint16 alpha = window.openMenu(menus.filePath(QStringLiteral("alpha.ini")), QStringLiteral("alpha.ini"));
    if (alpha == 0 || !renameItem(window, alpha, QStringLiteral("E0"), label + QStringLiteral(" alpha 1"))
        || !renameItem(window, alpha, QStringLiteral("E0"), label + QStringLiteral(" alpha 2"))) {
        return fail("alpha was not edited");
    }
    // A new menu with a second item and a new name for its first.
    window.mnuNew_Click();
    const qint16 fresh = window.activeDocumentIndex();
    if (!window.session().run(fresh, EditOperations::newItem)
        || !renameItem(window, fresh, QStringLiteral("E0"), label + QStringLiteral(" fresh"))) {
        return fail("the new menu was not edited");
    }
    // A menu saved after its change, and one closed without saving: neither leaves a copy.
    const qint16 beta = window.openMenu(menus.filePath(QStringLiteral("beta.ini")), QStringLiteral("beta.ini"));
    if (beta == 0 || !renameItem(window, beta, QStringLiteral("E0"), label + QStringLiteral(" beta"))) {
        return fail("beta was not edited");
    }
    window.mnuSave_Click();
    const qint16 gamma = window.openMenu(menus.filePath(QStringLiteral("gamma.ini")), QStringLiteral("gamma.ini"));
    if (gamma == 0 || !renameItem(window, gamma, QStringLiteral("E0"), label + QStringLiteral(" gamma"))) {
        return fail("gamma was not edited");
    }
    prompts.answers = { UserPrompts::Answer::No };
    window.mnuClose_Click();
    if (!prompts.answers.isEmpty() || window.editor(gamma) != nullptr) {
        return fail("gamma was not closed");
    }

    if (!window.recoveryCopies().store().waitForWrites(30000)) {
        return fail("the copies were not written");
    }
    std::fputs("ready\n", stdout);
    std::fflush(stdout);
    if (mode == QLatin1String("crash")) {
        return QApplication::exec();
    }
    prompts.answers = { UserPrompts::Answer::No };
    return window.close() ? 0 : fail("quitting stopped");
}
