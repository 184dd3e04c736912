#pragma once

#include "core/userprompts.h"

#include <QString>

class RunTimeError;

/// The message boxes of the main window, each of its one kind: errors with the critical icon, the
/// user's mistakes with the exclamation icon, plain messages with an OK button.
class MessageBoxes final
{
public:
    explicit MessageBoxes(UserPrompts& prompts)
        : m_prompts(prompts)
    {
    }

    UserPrompts& prompts() { return m_prompts; }

    /// A critical message; `details` (the precise reason) is offered by the box on request.
    void showCritical(const QString& text, const QString& details = QString());
    /// "Error " + number + " : " + description + " (" + source + ")", critical icon.
    void showRunTimeError(const RunTimeError& error);
    /// The exclamation message of a refused operation: nothing was changed.
    void showRefusal(const QString& text);
    /// A plain message with an OK button.
    void showPlain(const QString& text);
    /// A question with the question icon and Yes, No and Cancel.
    UserPrompts::Answer askYesNoCancel(const QString& text);
    /// A question with the question icon and Yes and No (No when the box is closed otherwise).
    UserPrompts::Answer askYesNo(const QString& text);

private:
    UserPrompts& m_prompts;
};
