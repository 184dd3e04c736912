#include "undoerrorreport.h"

#include "app/aboutinfo.h"
#include "app/userprompts.h"
#include "model/runtimeerror.h"

#include <exception>
#include <utility>

namespace {

const QLatin1String lineBreak("\r\n");

} // namespace

UndoErrorReport::UndoErrorReport(UserPrompts& prompts, std::function<void()> undoAction)
    : m_prompts(prompts)
    , m_undoAction(std::move(undoAction))
{
}

void UndoErrorReport::show(const RunTimeError& error)
{
    if (m_undoErrorActive) {
        showCritical(undoFailedText());
    } else {
        m_undoErrorActive = true;
        showCritical(errorText(error));
        try {
            if (m_undoAction) {
                m_undoAction();
            }
        } catch (const std::exception&) {
            // The undo action reports its own errors through this report; one that still escapes
            // is a failed undo all the same, and nothing is tried after it.
            showCritical(undoFailedText());
        }
    }
    m_undoErrorActive = false;
}

QString UndoErrorReport::errorText(const RunTimeError& error)
{
    return error.report() + lineBreak + QStringLiteral("This error will undo your action");
}

QString UndoErrorReport::undoFailedText()
{
    return QStringLiteral("An error occured while undoing your last action !") + lineBreak
        + QStringLiteral("Contact the developer for further information :") + lineBreak + contactLines();
}

void UndoErrorReport::showCritical(const QString& text)
{
    MessageRequest request;
    request.text = text;
    request.icon = MessageRequest::Icon::Critical;
    request.buttons = MessageRequest::Buttons::Ok;
    m_prompts.showMessage(request);
}
