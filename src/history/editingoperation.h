#pragma once

#include <functional>

class UndoErrorReport;

/// Runs one editing operation of an editor window (delete, duplicate, new item, paste, remove
/// command, label edit, drop, tree generation, undo, redo). A failure inside it (a RunTimeError such
/// as a 16-bit overflow, an index naming no item or a failed autosave write; running out of memory;
/// any other standard exception) ends the operation at once and goes to `report`, which tells the
/// user and undoes the active document to its last recorded state. Returns true when the operation
/// ran to its end.
bool runEditingOperation(UndoErrorReport& report, const std::function<void()>& operation);
