#pragma once

/// The Undo and Redo entries of the main window's Edit menu, as the history sees them. The main
/// window implements it with mnuUndo and mnuRedo.
class HistoryMenu
{
public:
    virtual ~HistoryMenu() = default;

    virtual void setUndoEnabled(bool enabled) = 0;
    virtual void setRedoEnabled(bool enabled) = 0;
};
