#pragma once

#include <functional>

class RunTimeError;
class UndoErrorReport;

/// Runs `operation` and turns a failure inside it into the run-time error the user is told of: a
/// RunTimeError as it is (a 16-bit overflow, an index naming no item, a failed autosave write),
/// running out of memory as error 7, any other standard exception under the program's name. The
/// failure ends the operation at once and goes to `onError`. Returns true when the operation ran to
/// its end.
bool runCatchingErrors(const std::function<void()>& operation, const std::function<void(const RunTimeError&)>& onError);

/// Runs one editing operation of an editor window (delete, duplicate, new item, paste, remove
/// command, label edit, drop, tree generation, undo, redo). A failure inside it goes to `report`,
/// which tells the user and undoes the active document to its last recorded state. Returns true when
/// the operation ran to its end.
bool runEditingOperation(UndoErrorReport& report, const std::function<void()>& operation);
