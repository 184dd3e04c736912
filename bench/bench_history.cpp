// Measures what the undo history costs on the largest menu a menu file can hold: the resident memory
// of 15 undo and 15 redo states, and the time of one recorded edit (the snapshot and the rewrite of
// the autosave file). Run by hand on a release build: kelvbench_history [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "history/historymenu.h"
#include "history/historytable.h"
#include "history/undomanager.h"
#include "menufile/menufilewriter.h"
#include "model/documentlist.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>

namespace {

/// The Undo and Redo entries without a window.
class SilentHistoryMenu final : public HistoryMenu
{
public:
    void setUndoEnabled(bool) override { }
    void setRedoEnabled(bool) override { }
};

/// Resident memory of this process in KiB, as the kernel reports it (VmRSS); -1 when unknown.
qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
        }
    }
    return -1;
}

QString mebibytes(qint64 kibibytes)
{
    return QString::number(double(kibibytes) / 1024.0, 'f', 1);
}

/// A user's edit between two snapshots: one caption changes, so the item array of the document
/// stops sharing with the state recorded before it, as it would in real use.
void renameOneItem(MenuDocument& document, int round)
{
    const int item = (round * 2111 + 7) % int(document.items.size());
    document.items[item].caption = QStringLiteral("Renamed %1").arg(round);
}

/// A copy of `document` that shares no text and no array with it: what whole-document states would
/// cost without implicit sharing.
MenuDocument deepCopy(const MenuDocument& document)
{
    const auto fresh = [](const QString& text) { return QString(text.constData(), text.size()); };
    MenuDocument copy = document;
    copy.filePath = fresh(document.filePath);
    copy.items.detach();
    for (MenuItem& item : copy.items) {
        item.caption = fresh(item.caption);
        item.key = fresh(item.key);
        item.copyKey = fresh(item.copyKey);
        item.lastCopyKey = fresh(item.lastCopyKey);
        item.commands.detach();
        for (Command& command : item.commands) {
            command.extension = fresh(command.extension);
            command.command = fresh(command.command);
        }
    }
    return copy;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 15;

    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fputs("cannot create a temporary folder\n", stderr);
        return 1;
    }
    QTextStream out(stdout);

    try {
        const qint64 atStart = residentKiB();
        DocumentList documents;
        HistoryTable histories;
        SilentHistoryMenu menu;
        UndoManager undoManager(documents, histories, folder.path(), menu);

        const qint16 index = documents.append();
        histories.appendSlot();
        MenuGenerator::Options options;
        options.shape = MenuShape::Mixed;
        documents.document(index) = MenuGenerator::generate(options);
        MenuDocument& document = documents.document(index);
        document.windowIndex = index;
        const int itemCount = int(document.items.size());
        const qint64 withDocument = residentKiB();

        int round = 0;
        for (int state = 0; state < DocumentHistory::MaxStates; ++state) {
            undoManager.saveUndoState(index, true);
            renameOneItem(document, ++round);
            undoManager.completeAutosave();
        }
        const qint64 withUndoStates = residentKiB();
        for (int state = 0; state < DocumentHistory::MaxStates; ++state) {
            undoManager.saveRedoState(index);
            renameOneItem(document, ++round);
        }
        const qint64 withRedoStates = residentKiB();
        const DocumentHistory& history = histories.history(index);
        if (history.undoCount() != DocumentHistory::MaxStates || history.redoCount() != DocumentHistory::MaxStates) {
            std::fputs("the stacks were not filled\n", stderr);
            return 1;
        }

        const MenuDocument unshared = deepCopy(document);
        const qint64 withDeepCopy = residentKiB();

        const qint64 autosaveBytes = QFileInfo(undoManager.autosavePath(index)).size();
        const double recordedEdit = medianMilliseconds(
            runs, [edited = &document, counter = &round] { renameOneItem(*edited, ++*counter); },
            [manager = &undoManager, index] { manager->saveUndoState(index, true); });
        undoManager.completeAutosave();
        const double recordedAndWritten = medianMilliseconds(
            runs, [edited = &document, counter = &round] { renameOneItem(*edited, ++*counter); },
            [manager = &undoManager, index] {
                manager->saveUndoState(index, true);
                manager->completeAutosave();
            });
        const double writeOnly = medianMilliseconds(
            runs, [] {},
            [written = &document, manager = &undoManager, index] {
                writeMenuFile(*written, manager->autosavePath(index));
            });
        const double undoStep = medianMilliseconds(
            std::min(runs, int(DocumentHistory::MaxStates)), [] {},
            [manager = &undoManager, index] { manager->undoDocument(index); });

        out << "Undo history of one document of " << itemCount << " items (mixed shape), sizeof(MenuItem) "
            << sizeof(MenuItem) << " bytes.\n\n";
        out << "Resident memory (VmRSS), MiB\n";
        out << "  at start                          " << mebibytes(atStart) << "\n";
        out << "  with the document                 " << mebibytes(withDocument) << "  (document "
            << mebibytes(withDocument - atStart) << ")\n";
        out << "  + 15 undo states                  " << mebibytes(withUndoStates) << "  (+"
            << mebibytes(withUndoStates - withDocument) << ", "
            << mebibytes((withUndoStates - withDocument) / DocumentHistory::MaxStates) << " per state)\n";
        out << "  + 15 redo states                  " << mebibytes(withRedoStates) << "  (+"
            << mebibytes(withRedoStates - withUndoStates) << ", "
            << mebibytes((withRedoStates - withUndoStates) / DocumentHistory::MaxStates) << " per state)\n";
        out << "  30 states together                +" << mebibytes(withRedoStates - withDocument) << "\n";
        out << "  one copy sharing nothing          +" << mebibytes(withDeepCopy - withRedoStates)
            << "  (what each state would cost without sharing)\n\n";
        out << "Median of " << runs << " runs, milliseconds\n";
        out << "  saveUndoState, stack full (the autosave file is written meanwhile)  "
            << QString::number(recordedEdit, 'f', 2) << "\n";
        out << "  saveUndoState and the wait for its autosave file                    "
            << QString::number(recordedAndWritten, 'f', 2) << "  (autosave file " << mebibytes(autosaveBytes / 1024)
            << " MiB)\n";
        out << "  writeMenuFile of the same document alone                            "
            << QString::number(writeOnly, 'f', 2) << "\n";
        out << "  undoDocument                                                        "
            << QString::number(undoStep, 'f', 4) << "\n";
        out.flush();
        // Keeps the unshared copy alive until its memory has been read.
        return unshared.items.isEmpty() ? 1 : 0;
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
