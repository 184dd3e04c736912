#pragma once

#include "core/userprompts.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/// Answers message boxes and file dialogs from queues filled in advance and logs every request
/// exactly as the user would have seen it.
class FakePrompts final : public UserPrompts
{
public:
    /// One file dialog that was shown.
    struct FileRequest
    {
        enum class Kind { Open, Save };
        Kind kind = Kind::Open;
        QString title;
        QString filter;
        QString startFolder;
    };

    Answer showMessage(const MessageRequest& request) override;
    QString askOpenFileName(const QString& title, const QString& filter, const QString& startFolder) override;
    QString askSaveFileName(const QString& title, const QString& filter, const QString& startFolder) override;

    /// Answers for the coming Yes/No/Cancel and Yes/No boxes, in order. A box with only OK needs none.
    QList<Answer> answers;
    /// Names the coming file dialogs return, in order; a dialog with none left returns no name.
    QStringList fileNames;

    /// Runs while each message box is shown, before it is answered: what the user sees behind it.
    std::function<void(const MessageRequest&)> whileShown;

    QList<MessageRequest> messages;
    QList<FileRequest> fileRequests;
    /// Questions that found no answer queued (they got Cancel, or No where there is no Cancel).
    int unansweredQuestions = 0;

    /// The texts of the logged messages, in order.
    QStringList messageTexts() const;
    void clearLog();
};
