#pragma once

#include "fakehistoryhost.h"
#include "recordinghistorymenu.h"
#include "recordingprompts.h"

#include "core/aboutinfo.h"
#include "history/historytable.h"
#include "history/undocontroller.h"
#include "history/undoerrorreport.h"
#include "history/undomanager.h"
#include "model/documentlist.h"
#include "model/menudocument.h"

#include <QTemporaryDir>

/// The history as the main window holds it: the document list and the history table in step, the
/// Undo and Redo entries, the error report whose undo is the controller's Undo, and a main window
/// that the tests steer.
class HistoryFixture
{
public:
    /// Autosave files go to a temporary folder of the fixture's own.
    HistoryFixture()
        : HistoryFixture(QString())
    {
    }

    /// Autosave files go to `autosaveFolder`; empty means the fixture's own temporary folder.
    explicit HistoryFixture(const QString& autosaveFolder)
        : undoManager(documents, histories, autosaveFolder.isEmpty() ? folder.path() : autosaveFolder, menu)
        , report(prompts.criticalMessages(), contactLines(), [this] { controller.mnuUndo_Click(); })
        , controller(documents, undoManager, report, host)
    {
    }

    HistoryFixture(const HistoryFixture&) = delete;
    HistoryFixture& operator=(const HistoryFixture&) = delete;

    /// Opens a document of `itemCount` top-level items, as the main window does after reading a file:
    /// one slot in each list, saved, with a path. Items with an odd index get a command.
    qint16 openDocument(int itemCount)
    {
        const qint16 index = documents.append();
        histories.appendSlot();
        MenuDocument& document = documents.document(index);
        for (int i = 0; i < itemCount; ++i) {
            MenuItem item;
            item.caption = QStringLiteral("Item %1").arg(i);
            item.siblingOrder = qint16(i + 1);
            item.key = QStringLiteral("E%1").arg(i);
            if (i % 2 == 1) {
                item.commands.append(Command { QStringLiteral("txt"), QStringLiteral("notepad $fs-001$") });
            }
            document.items.append(item);
        }
        document.lastIndex = qint16(itemCount - 1);
        document.windowIndex = index;
        document.filePath = QStringLiteral("/menus/menu%1.ini").arg(index);
        document.saved = true;
        return index;
    }

    /// One recorded edit, as every editing operation makes it: the snapshot first, then the change
    /// (here the caption of the first item).
    void edit(qint16 index, const QString& caption)
    {
        undoManager.saveUndoState(index, true);
        documents.document(index).items[0].caption = caption;
        undoManager.completeAutosave();
    }

    MenuDocument& document(qint16 index) { return documents.document(index); }

    QTemporaryDir folder;
    DocumentList documents;
    HistoryTable histories;
    RecordingHistoryMenu menu;
    RecordingPrompts prompts;
    FakeHistoryHost host { documents };
    UndoManager undoManager;
    UndoErrorReport report;
    UndoController controller;
};
