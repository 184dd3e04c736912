#pragma once

#include <QString>
#include <QStringList>

/// What a message box looks like to the user: the exact text, title, icon and buttons.
struct MessageRequest
{
    enum class Icon { None, Critical, Question, Exclamation, Information };
    enum class Buttons { Ok, YesNoCancel, YesNo };

    QString text;
    /// Empty means the application's own title ("KELV Menu Editor").
    QString title;
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    /// The precise reason behind the message (file, line, what), offered by the box on request;
    /// empty for a box without one.
    QString details;

    friend bool operator==(const MessageRequest& left, const MessageRequest& right)
    {
        return left.text == right.text && left.title == right.title && left.icon == right.icon
            && left.buttons == right.buttons && left.details == right.details;
    }
};

/// Every message box and file dialog of the program goes through this interface, so that tests can
/// answer them in advance and see exactly what a user would have seen.
class UserPrompts
{
public:
    enum class Answer { Ok, Yes, No, Cancel };

    virtual ~UserPrompts() = default;

    virtual Answer showMessage(const MessageRequest& request) = 0;
    /// The chosen file, or an empty text when the dialog was left without one. The dialog starts in
    /// `startFolder` (empty: wherever the platform starts it).
    virtual QString askOpenFileName(const QString& title, const QString& filter, const QString& startFolder) = 0;
    virtual QString askSaveFileName(const QString& title, const QString& filter, const QString& startFolder) = 0;
};
