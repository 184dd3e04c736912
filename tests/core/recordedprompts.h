#pragma once

#include "core/userprompts.h"

#include <QList>
#include <QStringList>

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

    QStringList messageTexts() const
    {
        QStringList texts;
        for (const MessageRequest& message : messages) {
            texts.append(message.text);
        }
        return texts;
    }

    QList<MessageRequest> messages;
};
