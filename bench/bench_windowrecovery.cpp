// Times what the windows add to an edit for the recovery copies, on the largest menus a menu file
// can hold, in a main window showing the menu: over 100 edits 40 ms apart (the copies being written
// on the store's thread meanwhile), the change of one caption in the document (which copies the part
// of the item list it touches, as the menu noted last still shares it) and the note that follows every
// change (RecoveryCopies::documentsChanged: is the menu another than the one noted last, and if so
// noted for its copy), median and worst; the same edits made as the user makes them, through the
// editing session with the tree patched, and in a window that cannot keep copies, for comparison.
// Then the time from the last change to its copy on disk (the write delay included), and the check at
// Save whether the file changed since (SaveOverwriteCheck): of a file saved long ago (a look at its
// length, time and inode) and of one just saved (whose time is too recent to tell, so its bytes are
// read and hashed).
// Run by hand on a release build (QT_QPA_PLATFORM=offscreen works): kelvbench_windowrecovery [edits]

#include "benchtiming.h"
#include "menugenerator.h"
#include "silentprompts.h"

#include "app/mainwindow.h"
#include "app/messageboxes.h"
#include "app/recoverycopies.h"
#include "app/saveoverwritecheck.h"
#include "core/editingsession.h"
#include "core/optionsstore.h"
#include "core/recoverystore.h"
#include "editing/itemcreation.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 3).rightJustified(12);
}

double milliseconds(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

/// `edits` renames of random items of document `index` through the editing session, as label edits.
std::vector<double> sessionEdits(MainWindow& window, qint16 index, int edits)
{
    QRandomGenerator random(13);
    const MenuDocument& document = window.state().document(index);
    std::vector<double> times;
    for (int edit = 0; edit < edits; ++edit) {
        const SelectedNode node = SelectedNode::of(document.items.at(random.bounded(int(document.items.size()))).key);
        EditArguments renamed;
        renamed.text = QStringLiteral("Session edit %1").arg(edit);
        times.push_back(milliseconds([&] {
            window.session().runOn(index, node, EditOperations::beginLabelEdit);
            window.session().runOn(index, node, EditOperations::storeLabelEdit, renamed);
        }));
        idle(40);
    }
    return times;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const int edits = arguments.size() > 1 ? std::max(3, arguments.at(1).toInt()) : 100;

    QTextStream out(stdout);
    out << "Milliseconds. 32,767 items, 2 to 5 commands each; " << edits << " edits 40 ms apart.\n"
        << "change: one caption changed in the document; note: what every change then costs for the\n"
           "recovery copies (RecoveryCopies::documentsChanged); session: the same edit made through the\n"
           "editing session (label edit, undo state, tree patched, menus and note), and bare: the same\n"
           "in a window that cannot keep copies (compared, never noted nor written), for comparison.\n"
           "to disk: from the last change to its copy on disk (1 s write delay included). check: the\n"
           "check at Save of a file saved long ago (old) and of one just saved (new: bytes hashed).\n"
           "Goals: an edit waits at most 5 ms for the copies; a change is on disk within 2 s.\n\n";
    const QStringList headers { QStringLiteral("shape"),       QStringLiteral("ch+note med"),
                                QStringLiteral("ch+note max"), QStringLiteral("note med"),
                                QStringLiteral("note max"),    QStringLiteral("session med"),
                                QStringLiteral("session max"), QStringLiteral("bare med"),
                                QStringLiteral("bare max"),    QStringLiteral("to disk"),
                                QStringLiteral("check old"),   QStringLiteral("check new") };
    for (const QString& header : headers) {
        out << header.rightJustified(12);
    }
    out << "\n";
    out.flush();

    for (const MenuShape shape : MenuGenerator::allShapes()) {
        QTemporaryDir folder;
        if (!folder.isValid()) {
            std::fputs("cannot create a temporary folder\n", stderr);
            return 1;
        }
        MenuGenerator::Options options;
        options.shape = shape;
        const QString path = folder.filePath(QStringLiteral("menu.ini"));
        // The window without copies gets the menu as generated too, not as the first one saved it.
        const QString barePath = folder.filePath(QStringLiteral("bare.ini"));
        const MenuDocument generated = MenuGenerator::generate(options);
        writeMenuFile(generated, path);
        writeMenuFile(generated, barePath);
        // Saved long ago: the check at Save can trust the file's time.
        {
            QFile file(path);
            if (!file.open(QIODevice::ReadWrite)
                || !file.setFileTime(QDateTime::currentDateTimeUtc().addDays(-1), QFileDevice::FileModificationTime)) {
                std::fputs("cannot set the menu's time\n", stderr);
                return 1;
            }
        }
        SilentPrompts prompts;
        OptionsStore store(folder.filePath(QStringLiteral("options.ini")));
        MainWindow window(prompts, store, folder.path(), folder.filePath(QStringLiteral("recovery")));
        window.show();
        const qint16 index = window.openMenu(path, QStringLiteral("menu.ini"));
        if (index == 0 || !window.recoveryCopies().store().isActive()) {
            std::fputs("the menu did not open, or no copies can be kept\n", stderr);
            return 1;
        }
        // The edits as the user makes them first, while the tree still shows the menu as it is: the
        // changes made behind its back below would leave it out of step.
        const std::vector<double> session = sessionEdits(window, index, edits);

        MenuDocument& document = window.state().document(index);
        QRandomGenerator random(11);

        std::vector<double> changeAndNote;
        std::vector<double> noteAlone;
        for (int edit = 0; edit < edits; ++edit) {
            const int item = random.bounded(int(document.items.size()));
            const double change = milliseconds([&] {
                document.items[item].caption = QStringLiteral("Edit %1").arg(edit);
                document.saved = false;
            });
            const double note = milliseconds([&] { window.recoveryCopies().documentsChanged(); });
            changeAndNote.push_back(change + note);
            noteAlone.push_back(note);
            idle(40);
        }
        window.recoveryCopies().store().waitForWrites();
        // Queued reports of the writes so far must not pass for the next one.
        idle(50);

        double toDisk = 0;
        {
            QElapsedTimer sinceChange;
            QEventLoop written;
            QObject::connect(&window.recoveryCopies().store(), &RecoveryStore::copyWritten, &written, [&] {
                toDisk = double(sinceChange.nsecsElapsed()) / 1e6;
                written.quit();
            });
            sinceChange.start();
            document.items[0].caption = QStringLiteral("Last change");
            window.recoveryCopies().documentsChanged();
            written.exec();
        }

        MessageBoxes messages(prompts);
        SaveOverwriteCheck check(window.state(), messages);
        const double checkOld = milliseconds([&] { check.mayWrite(index, path); });
        window.mnuSave_Click();
        const double checkNew = milliseconds([&] { check.mayWrite(index, path); });
        if (prompts.messages > 0) {
            std::fprintf(stderr, "something was said: %s\n", qPrintable(prompts.lastText));
            return 1;
        }

        window.close();

        // The same session edits in a window whose copies cannot be kept (its folder would lie under
        // a file): the menu is still compared after each change, but nothing is noted or written.
        SilentPrompts barePrompts;
        const QString noFolder = path + QStringLiteral("/recovery");
        MainWindow bare(barePrompts, store, folder.path(), noFolder);
        bare.show();
        const qint16 bareIndex = bare.openMenu(barePath, QStringLiteral("bare.ini"));
        if (bareIndex == 0 || bare.recoveryCopies().store().isActive()) {
            std::fputs("the window without copies did not come up as meant\n", stderr);
            return 1;
        }
        const MedianAndWorst without = medianAndWorst(sessionEdits(bare, bareIndex, edits));
        bare.close();

        const MedianAndWorst both = medianAndWorst(changeAndNote);
        const MedianAndWorst alone = medianAndWorst(noteAlone);
        const MedianAndWorst edited = medianAndWorst(session);
        out << MenuGenerator::shapeName(shape).rightJustified(12) << cell(both.median) << cell(both.worst)
            << cell(alone.median) << cell(alone.worst) << cell(edited.median) << cell(edited.worst)
            << cell(without.median) << cell(without.worst) << cell(toDisk) << cell(checkOld) << cell(checkNew) << "\n";
        out.flush();
    }
    return 0;
}
