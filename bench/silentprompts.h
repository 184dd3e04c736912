#pragma once

#include "core/userprompts.h"

#include <QString>

/// Answers every message with OK and every question with No; a benchmark has no one to ask.
class SilentPrompts final : public UserPrompts
{
public:
    Answer showMessage(const MessageRequest& request) override
    {
        ++messages;
        lastText = request.text;
        return request.buttons == MessageRequest::Buttons::Ok ? Answer::Ok : Answer::No;
    }
    QString askOpenFileName(const QString&, const QString&, const QString&) override { return QString(); }
    QString askSaveFileName(const QString&, const QString&, const QString&) override { return QString(); }

    int messages = 0;
    QString lastText;
};
