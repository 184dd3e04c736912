#pragma once

#include <QtGlobal>

/// What Undo and Redo need from the main window and its editor windows.
class HistoryHost
{
public:
    virtual ~HistoryHost() = default;

    /// Document index of the active editor window; 0 when no editor window is active.
    virtual qint16 activeDocumentIndex() const = 0;
    /// Rebuilds the tree of document `index` in its editor window. `modeChange` changes the
    /// document's hideMode first: -3 keeps it, 0 sets 0, 3 sets 3, any other value is added to it.
    virtual void regenerateTree(qint16 index, qint32 modeChange) = 0;
    /// Shows the number of items of the active document in the status bar (panel 4).
    virtual void showItemCount(int count) = 0;
};
