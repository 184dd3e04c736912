#pragma once

#include "editing/editcontext.h"

#include <QString>

class EditingSession;
class QWidget;
class UserPrompts;
struct MenuDocument;

/// What the command list's menu needs from the main window: the editing session, the active editor
/// window's selection, and what the command editor opens with.
class CommandMenuHost
{
public:
    virtual ~CommandMenuHost() = default;

    virtual EditingSession& session() = 0;
    virtual UserPrompts& prompts() = 0;
    virtual QString programFolder() const = 0;
    /// The window the command editor belongs to.
    virtual QWidget* dialogParent() = 0;
    /// The active editor window's document; null when no editor window is active.
    virtual const MenuDocument* activeDocument() const = 0;
    /// The selected node of the active editor window's tree; none when no editor window is active.
    virtual SelectedNode activeSelectedNode() const = 0;
    /// The 1-based slot of the active command list's selected line; 0 when none is selected.
    virtual int activeCommandSlot() const = 0;
};
