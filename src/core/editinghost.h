#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <functional>

/// What the editing session needs from its surroundings: in the editor, the history and the message
/// boxes; in `kelvmenu edit`, a run that stops at the first refusal or failure.
class EditingHost
{
public:
    virtual ~EditingHost() = default;

    /// Records an undo snapshot of document `index` before a change (which also marks it unsaved).
    virtual void recordSnapshot(qint16 index) = 0;
    /// Runs `operation` inside the error handling of editing operations: a failure is reported and
    /// the active document undone to its last recorded state. Returns whether it ran to its end.
    virtual bool runGuarded(const std::function<void()>& operation) = 0;
    /// The same for an operation that records snapshots of several documents (a drop between two
    /// windows): a failure undoes every document in `recorded`, which the operation fills as it
    /// records them.
    virtual bool runGuardedUndoing(const std::function<void()>& operation, const QList<qint16>& recorded) = 0;
    /// Runs `operation`; a failure is only reported ("Error " + number + " : " + description + " (" +
    /// source + ")", critical icon), nothing is undone. Returns whether it ran to its end.
    virtual bool runReporting(const std::function<void()>& operation) = 0;
    /// Tells the user why an operation was refused (exclamation icon, OK button); nothing changed.
    virtual void showRefusal(const QString& text) = 0;
};
