#include "messageboxes.h"

#include "model/runtimeerror.h"

void MessageBoxes::showCritical(const QString& text, const QString& details)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.details = details;
    m_prompts.showMessage(request);
}

void MessageBoxes::showRunTimeError(const RunTimeError& error)
{
    showCritical(error.report());
}

void MessageBoxes::showRefusal(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Exclamation;
    m_prompts.showMessage(request);
}

void MessageBoxes::showPlain(const QString& text)
{
    MessageRequest request;
    request.text = text;
    m_prompts.showMessage(request);
}

UserPrompts::Answer MessageBoxes::askYesNoCancel(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNoCancel;
    return m_prompts.showMessage(request);
}

UserPrompts::Answer MessageBoxes::askYesNo(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Question;
    request.buttons = MessageRequest::Buttons::YesNo;
    return m_prompts.showMessage(request);
}
