#pragma once

/// What the Edit menu needs from the main window beyond the editing session: the history, the
/// Replace dialog and find bar of the active editor window, the option it toggles, and keeping every
/// entry up to date.
class EditMenuHost
{
public:
    virtual ~EditMenuHost() = default;

    virtual void mnuUndo_Click() = 0;
    virtual void mnuRedo_Click() = 0;
    /// Shows the Replace dialog, without blocking the editor windows.
    virtual void showReplaceDialog() = 0;
    /// Opens the find bar of the active editor window.
    virtual void openFindBar() = 0;
    /// Toggles the "CopyCommand at Duplication" option and saves the options.
    virtual void toggleCopyCommandDup(bool checked) = 0;
    /// Brings every menu entry up to date with the active editor window.
    virtual void updateMenus() = 0;
};
