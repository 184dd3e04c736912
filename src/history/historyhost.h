#pragma once

#include <QtGlobal>

struct MenuDocument;

/// What Undo and Redo need from the main window and its editor windows.
class HistoryHost
{
public:
    virtual ~HistoryHost() = default;

    /// Document index of the active editor window; 0 when no editor window is active.
    virtual qint16 activeDocumentIndex() const = 0;
    /// Rebuilds the tree of document `index` in its editor window under the document's hide mode.
    virtual void regenerateTree(qint16 index) = 0;
    /// Shows document `index` in its editor window as a rebuild would, now that an undone or
    /// redone state has replaced `before`: only what differs changes in the view.
    virtual void showRestoredState(qint16 index, const MenuDocument& before) = 0;
    /// Shows the number of items of the active document in the status bar (panel 4).
    virtual void showItemCount(int count) = 0;
};
