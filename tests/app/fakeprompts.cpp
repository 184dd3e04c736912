#include "fakeprompts.h"

UserPrompts::Answer FakePrompts::showMessage(const MessageRequest& request)
{
    messages.append(request);
    if (whileShown) {
        whileShown(request);
    }
    if (request.buttons == MessageRequest::Buttons::Ok) {
        return Answer::Ok;
    }
    if (answers.isEmpty()) {
        ++unansweredQuestions;
        return request.buttons == MessageRequest::Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
    return answers.takeFirst();
}

QString FakePrompts::askOpenFileName(const QString& title, const QString& filter, const QString& startFolder)
{
    fileRequests.append({ FileRequest::Kind::Open, title, filter, startFolder });
    return fileNames.isEmpty() ? QString() : fileNames.takeFirst();
}

QString FakePrompts::askSaveFileName(const QString& title, const QString& filter, const QString& startFolder)
{
    fileRequests.append({ FileRequest::Kind::Save, title, filter, startFolder });
    return fileNames.isEmpty() ? QString() : fileNames.takeFirst();
}

QStringList FakePrompts::messageTexts() const
{
    QStringList texts;
    for (const MessageRequest& request : messages) {
        texts.append(request.text);
    }
    return texts;
}

void FakePrompts::clearLog()
{
    messages.clear();
    fileRequests.clear();
    unansweredQuestions = 0;
}
