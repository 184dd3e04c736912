#pragma once

#include <QtGlobal>

class DocumentList;
class HistoryHost;
class UndoErrorReport;
class UndoManager;

/// What the main window's Undo and Redo entries do on the active document: restore the state,
/// rebuild the editor window's tree and show the item count.
class UndoController final
{
public:
    UndoController(DocumentList& documents, UndoManager& undoManager, UndoErrorReport& report, HistoryHost& host);

    UndoController(const UndoController&) = delete;
    UndoController& operator=(const UndoController&) = delete;

    /// Undo of the active document. With no active editor window it goes straight to the error
    /// report; a failure on the way is reported there too.
    void mnuUndo_Click();
    /// Redo of the active document, the same way.
    void mnuRedo_Click();
    /// Undo of document `index`, active or not (the error report of a drop between two windows
    /// undoes both); the item count is shown when it is the active one.
    void undoDocument(qint16 index);

private:
    enum class Direction { Undo, Redo };

    void step(qint16 index, Direction direction);

    DocumentList& m_documents;
    UndoManager& m_undoManager;
    UndoErrorReport& m_report;
    HistoryHost& m_host;
};
