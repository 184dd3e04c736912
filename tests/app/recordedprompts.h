#pragma once

#include "core/userprompts.h"

#include <QList>

/// Answers every message box with Ok and keeps what the user would have seen.
class RecordedPrompts final : public UserPrompts
{
public:
    Answer showMessage(const MessageRequest& request) override
    {
        messages.append(request);
        return Answer::Ok;
    }
    QString askOpenFileName(const QString&, const QString&, const QString&) override { return {}; }
    QString askSaveFileName(const QString&, const QString&, const QString&) override { return {}; }

    QList<MessageRequest> messages;
};
