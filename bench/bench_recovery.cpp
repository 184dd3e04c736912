// Times the recovery copies on the largest menus a menu file can hold. What an edit pays for them,
// over 100 edits (median and worst), beside the same edits without a recovery store: an edit is a
// caption changed and the change noted; "plain" edits record nothing (as the copy-command check box),
// "recorded" ones first keep an undo state of the menu, which already makes the change copy the items
// it changes. The copies are written on the store's own thread meanwhile, the user pausing 40 ms
// between edits. Then the time from the last change to its copy being on disk, the write delay
// included, and the write alone.
// Run by hand on a release build: kelvbench_recovery [edits]

#include "benchtiming.h"
#include "menugenerator.h"

#include "core/recoverystore.h"
#include "editing/copylinks.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 2).rightJustified(12);
}

/// `edits` edits of `document`, each timed: with `recorded`, an undo state kept first (15 at most, as
/// the history keeps them); a caption changed; with a store, the change noted.
MedianAndWorst timeEdits(MenuDocument& document, RecoveryStore* store, bool recorded, int edits)
{
    QRandomGenerator random(7);
    QList<MenuDocument> undoStates;
    std::vector<double> times;
    for (int edit = 0; edit < edits; ++edit) {
        const int index = random.bounded(int(document.items.size()));
        QElapsedTimer timer;
        timer.start();
        if (recorded) {
            if (undoStates.size() == 15) {
                undoStates.removeFirst();
            }
            undoStates.append(document);
        }
        document.items[index].caption = QStringLiteral("Edit %1").arg(edit);
        if (store != nullptr) {
            store->noteChanged(1, QStringLiteral("menu.ini"));
        }
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
        idle(40);
    }
    return medianAndWorst(std::move(times));
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int edits = arguments.size() > 1 ? std::max(3, arguments.at(1).toInt()) : 100;

    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fputs("cannot create a temporary folder\n", stderr);
        return 1;
    }

    QTextStream out(stdout);
    out << "Milliseconds. 32,767 items, 2 to 5 commands each; " << edits << " edits 40 ms apart.\n"
        << "store: the edits with recovery copies (RecoveryStore::noteChanged, the copies written meanwhile);\n"
           "bare: the same edits without. plain: nothing recorded; recorded: an undo state kept first. to disk:\n"
           "from the last change to its copy on disk (1 s write delay included); write: the write alone.\n"
           "Goals: an edit waits at most 5 ms for the copies; a change is on disk within 2 s.\n\n";
    const QStringList headers { QStringLiteral("shape"),       QStringLiteral("edits"),    QStringLiteral("store med"),
                                QStringLiteral("store worst"), QStringLiteral("bare med"), QStringLiteral("bare worst"),
                                QStringLiteral("to disk"),     QStringLiteral("write") };
    for (const QString& header : headers) {
        out << header.rightJustified(12);
    }
    out << "\n";
    out.flush();

    for (const MenuShape shape : MenuGenerator::allShapes()) {
        MenuGenerator::Options options;
        options.shape = shape;
        MenuDocument document = MenuGenerator::generate(options);
        normalizeCopyLinks(document);
        document.saved = false;

        RecoveryStore store(folder.filePath(MenuGenerator::shapeName(shape)),
                            [&document](qint16) -> const MenuDocument* { return &document; });
        if (!store.isActive()) {
            std::fputs("the recovery folder cannot be used\n", stderr);
            return 1;
        }
        double toDisk = 0;
        double writeAlone = 0;
        for (const bool recorded : { false, true }) {
            const MedianAndWorst withStore = timeEdits(document, &store, recorded, edits);
            store.waitForWrites();
            const MedianAndWorst bare = timeEdits(document, nullptr, recorded, edits);

            if (!recorded) {
                // The last change of a burst, and the moment its copy is reported on disk.
                QElapsedTimer sinceChange;
                QEventLoop written;
                const QMetaObject::Connection connection
                    = QObject::connect(&store, &RecoveryStore::copyWritten, &written, [&] {
                          toDisk = double(sinceChange.nsecsElapsed()) / 1e6;
                          written.quit();
                      });
                document.items[0].caption = QStringLiteral("Last change");
                sinceChange.start();
                store.noteChanged(1, QStringLiteral("menu.ini"));
                written.exec();
                QObject::disconnect(connection);
                document.items[0].caption = QStringLiteral("Written at once");
                store.noteChanged(1, QStringLiteral("menu.ini"));
                QElapsedTimer sinceWrite;
                sinceWrite.start();
                store.waitForWrites();
                writeAlone = double(sinceWrite.nsecsElapsed()) / 1e6;
            }

            out << (recorded ? QString() : MenuGenerator::shapeName(shape)).rightJustified(12)
                << (recorded ? QStringLiteral("recorded") : QStringLiteral("plain")).rightJustified(12)
                << cell(withStore.median) << cell(withStore.worst) << cell(bare.median) << cell(bare.worst);
            if (!recorded) {
                out << cell(toDisk) << cell(writeAlone);
            }
            out << "\n";
            out.flush();
        }
        store.remove(1);
        store.waitForWrites();
    }
    return 0;
}
