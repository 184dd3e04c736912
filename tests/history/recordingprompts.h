#pragma once

#include "app/userprompts.h"

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
    QString askOpenFileName(const QString&, const QString&) override { return QString(); }
    QString askSaveFileName(const QString&, const QString&) override { return QString(); }

    QList<MessageRequest> messages;
    std::function<void(const MessageRequest&)> onMessage;
};
