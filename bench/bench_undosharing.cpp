// Measures what sharing between undo states saves on the largest menus a menu file can hold: the
// heap memory of 15 undo states of renames against the memory of the document as opened, and the
// time that recording a state and renaming one item take on the editor's thread while the autosave
// file of the state is written on the other. Run by hand on a release build:
// kelvbench_undosharing [runs]
//
// Bytes are counted by the C library's allocator (glibc mallinfo2: bytes in use in every arena plus
// the blocks mapped for large requests), before and after, with nothing else allocating between:
// the autosave writer has finished and let go of its state at each reading.

#include "benchtiming.h"
#include "menugenerator.h"

#include "history/historymenu.h"
#include "history/historytable.h"
#include "history/undomanager.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/documentlist.h"
#include "model/runtimeerror.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

/// The Undo and Redo entries without a window.
class SilentHistoryMenu final : public HistoryMenu
{
public:
    void setUndoEnabled(bool) override { }
    void setRedoEnabled(bool) override { }
};

/// Heap bytes in use as the allocator counts them; -1 where the C library cannot tell.
qint64 heapBytesInUse()
{
#if defined(__GLIBC__)
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
#else
    return -1;
#endif
}

QString mebibytes(qint64 bytes)
{
    return QString::number(double(bytes) / (1024.0 * 1024.0), 'f', 2);
}

QString cell(const QString& text, int width = 12)
{
    return text.rightJustified(width);
}

QString milliseconds(double value)
{
    return QString::number(value, 'f', 3);
}

/// A user's edit between two states: one caption changes, each time in another part of the menu.
void renameOneItem(MenuDocument& document, int round)
{
    const int item = (round * 2111 + 7) % int(document.items.size());
    document.items[item].caption = QStringLiteral("Renamed %1").arg(round);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 100;

    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fputs("cannot create a temporary folder\n", stderr);
        return 1;
    }
    if (heapBytesInUse() < 0) {
        std::fputs("this C library does not count heap bytes (mallinfo2)\n", stderr);
        return 1;
    }
    QTextStream out(stdout);
    out << "15 undo states of renames on 32,767-item menus; items shared in chunks of " << MenuItemArray::ChunkSize
        << " records.\n"
           "document: heap bytes of the menu as read from its file; 15 states: heap bytes added by 15 times\n"
           "(record a state, rename one item, autosave file written); ratio: 15 states / document.\n"
           "record+rename: saveUndoState and one rename on the editor's thread, the autosave file being\n"
           "written meanwhile, median and worst of "
        << runs
        << " runs, ms; whole copy: copying every item record once,\n"
           "what each recorded edit paid when the items were one shared list (median of 20, ms).\n\n";
    const QStringList headers { QStringLiteral("shape"), QStringLiteral("document MB"),  QStringLiteral("15 states MB"),
                                QStringLiteral("ratio"), QStringLiteral("per state KB"), QStringLiteral("median"),
                                QStringLiteral("worst"), QStringLiteral("whole copy") };
    for (const QString& header : headers) {
        out << cell(header, 14);
    }
    out << "\n";
    out.flush();

    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            const QByteArray bytes = menuFileBytes(MenuGenerator::generate(options));

            const qint64 beforeReading = heapBytesInUse();
            MenuDocument opened;
            if (!readMenuBytes(bytes, opened).ok()) {
                std::fputs("the generated menu does not read back\n", stderr);
                return 1;
            }
            const qint64 documentBytes = heapBytesInUse() - beforeReading;

            DocumentList documents;
            HistoryTable histories;
            SilentHistoryMenu menu;
            UndoManager undoManager(documents, histories, folder.path(), menu);
            const qint16 index = documents.append();
            histories.appendSlot();
            documents.document(index) = std::move(opened);
            MenuDocument& document = documents.document(index);
            document.windowIndex = index;

            int round = 0;
            const qint64 beforeStates = heapBytesInUse();
            for (int state = 0; state < DocumentHistory::MaxStates; ++state) {
                undoManager.saveUndoState(index, true);
                renameOneItem(document, ++round);
                undoManager.completeAutosave();
            }
            const qint64 statesBytes = heapBytesInUse() - beforeStates;
            if (histories.history(index).undoCount() != DocumentHistory::MaxStates) {
                std::fputs("the undo stack was not filled\n", stderr);
                return 1;
            }

            const std::vector<double> recorded = sortedMilliseconds(
                runs, [manager = &undoManager] { manager->completeAutosave(); },
                [manager = &undoManager, edited = &document, counter = &round, index] {
                    manager->saveUndoState(index, true);
                    renameOneItem(*edited, ++*counter);
                });
            undoManager.completeAutosave();

            const double wholeCopy = medianMilliseconds(
                20, [] {},
                [items = &document.items] {
                    QList<MenuItem> copy = items->toList();
                    if (copy.isEmpty()) {
                        std::abort();
                    }
                });

            out << cell(MenuGenerator::shapeName(shape), 14) << cell(mebibytes(documentBytes), 14)
                << cell(mebibytes(statesBytes), 14)
                << cell(QString::number(double(statesBytes) / double(documentBytes), 'f', 3), 14)
                << cell(QString::number(double(statesBytes) / DocumentHistory::MaxStates / 1024.0, 'f', 1), 14)
                << cell(milliseconds(recorded[recorded.size() / 2]), 14) << cell(milliseconds(recorded.back()), 14)
                << cell(milliseconds(wholeCopy), 14) << "\n";
            out.flush();
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
