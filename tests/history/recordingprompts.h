#pragma once

#include "core/userprompts.h"
#include "history/undoerrorreport.h"

#include <QList>

#include <functional>

/// Answers every message box with OK and keeps what the user would have seen, in order. A hook runs
/// at each message, so a test can see the state at the moment the message was up.
class RecordingPrompts final : public UserPrompts
{
public:
    Answer showMessage(const MessageRequest& request) override
    {
        messages.append(request);
        if (onMessage) {
            onMessage(request);
        }
        return Answer::Ok;
    }
    QString askOpenFileName(const QString&, const QString&, const QString&) override { return QString(); }
    QString askSaveFileName(const QString&, const QString&, const QString&) override { return QString(); }

    /// The error report's way of showing a message: a critical box with an OK button, as the main
    /// window shows it.
    UndoErrorReport::CriticalMessage criticalMessages()
    {
        return [this](const QString& text) {
            MessageRequest request;
            request.text = text;
            request.icon = MessageRequest::Icon::Critical;
            request.buttons = MessageRequest::Buttons::Ok;
            showMessage(request);
        };
    }

    QList<MessageRequest> messages;
    std::function<void(const MessageRequest&)> onMessage;
};
