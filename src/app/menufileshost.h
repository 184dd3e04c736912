#pragma once

#include <QtGlobal>

/// What the file commands need from the main window besides the editor area: the tree rebuild of a
/// menu just made or read, keeping the menus and marks up to date, and where a menu's changes start.
class MenuFilesHost
{
public:
    virtual ~MenuFilesHost() = default;

    /// Rebuilds the tree of document `index` and brings the menus and the status bar up to date.
    virtual void regenerateTree(qint16 index) = 0;
    /// Whether documents are saved may have changed: Save and the unsaved marks follow.
    virtual void savedStateChanged() = 0;
    /// The editor window of document `index` is the active one now; 0 when none is.
    virtual void editorActivated(qint16 index) = 0;
    /// Document `index` has just been made, opened or recovered: what it holds now is where its
    /// changes start.
    virtual void documentShown(qint16 index) = 0;
};
