// An editor's recovery copies in a process of their own, for the tests of RecoveryStore: it makes the
// changes an editor would note, waits until their copies are on disk, prints "ready", and then
//   crash: waits to be killed (the test kills it with SIGKILL, as a crash ends an editor);
//   quit:  removes its copies, as a quit whose menus were saved or discarded does, and ends normally.
// Usage: kelv_recoverychild FOLDER crash|quit LABEL

#include "core/recoverystore.h"
#include "menufile/menufixtures.h"
#include "model/menudocument.h"

#include <QCoreApplication>

#include <cstdio>
#include <map>

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: kelv_recoverychild FOLDER crash|quit LABEL\n", stderr);
        return 2;
    }
    const QString mode = arguments.at(2);
    const QString label = arguments.at(3);

    std::map<qint16, MenuDocument> documents;
    RecoveryStore store(arguments.at(1), [&documents](qint16 index) -> const MenuDocument* {
        const auto found = documents.find(index);
        return found != documents.end() ? &found->second : nullptr;
    });
    store.setWriteDelay(20);

    // A new menu of three items, renamed three times.
    MenuDocument& newMenu = documents[1];
    newMenu = flatMenu(3);
    for (int edit = 1; edit <= 3; ++edit) {
        newMenu.items[0].caption = QStringLiteral("%1 edit %2").arg(label).arg(edit);
        store.noteChanged(1, QStringLiteral("New menu 1"));
        QCoreApplication::processEvents();
    }
    // An opened menu of five items with one change.
    MenuDocument& opened = documents[2];
    opened = flatMenu(5);
    opened.filePath = QStringLiteral("/menus/%1.ini").arg(label);
    opened.items[4].caption = QStringLiteral("%1 changed").arg(label);
    store.noteChanged(2, label + QStringLiteral(".ini"));
    // A menu just saved has no copy.
    MenuDocument& saved = documents[3];
    saved = flatMenu(2);
    saved.saved = true;
    store.noteChanged(3, QStringLiteral("saved.ini"));

    if (!store.waitForWrites(30000)) {
        std::fputs("the copies were not written\n", stderr);
        return 1;
    }
    std::fputs("ready\n", stdout);
    std::fflush(stdout);

    if (mode == QLatin1String("crash")) {
        return QCoreApplication::exec();
    }
    store.remove(1);
    store.remove(2);
    return 0;
}
