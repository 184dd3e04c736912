#pragma once

#include <QString>

#include <functional>

class RunTimeError;

/// The error report of editing operations: tells the user what failed and undoes the action. An
/// error that arises while that undo runs only gets a plea to contact the developer, so a broken
/// undo can never loop.
class UndoErrorReport final
{
public:
    /// Shows `text` to the user in a message box with the critical icon, an OK button and the
    /// application's title.
    using CriticalMessage = std::function<void(const QString& text)>;

    /// `contactLines` are the maker's contact lines that end the message of a failed undo;
    /// `undoAction` is the main window's Undo (mnuUndo_Click).
    UndoErrorReport(CriticalMessage showCritical, QString contactLines, std::function<void()> undoAction);

    UndoErrorReport(const UndoErrorReport&) = delete;
    UndoErrorReport& operator=(const UndoErrorReport&) = delete;

    /// Reports `error` ("Error " + number + " : " + description + " (" + source + ")" and "This error
    /// will undo your action") and then undoes the active document. While that undo runs, a second
    /// report shows only "An error occured while undoing your last action !" and undoes nothing.
    void show(const RunTimeError& error);
    /// The same, with `undo` in place of the main window's Undo (a drop between two windows undoes
    /// both documents).
    void show(const RunTimeError& error, const std::function<void()>& undo);

    /// True while the undo of a report runs (UndoErrorActive).
    bool isActive() const { return m_undoErrorActive; }

    /// The text of the first message for `error`.
    static QString errorText(const RunTimeError& error);
    /// The text of the message shown when the undo of a report fails.
    static QString undoFailedText(const QString& contactLines);

private:
    CriticalMessage m_showCritical;
    QString m_contactLines;
    std::function<void()> m_undoAction;
    bool m_undoErrorActive = false;
};
