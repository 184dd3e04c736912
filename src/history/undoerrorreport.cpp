#include "undoerrorreport.h"

#include "model/runtimeerror.h"

#include <exception>
#include <utility>

namespace {

const QLatin1String lineBreak("\r\n");

} // namespace

UndoErrorReport::UndoErrorReport(CriticalMessage showCritical, QString contactLines, std::function<void()> undoAction)
    : m_showCritical(std::move(showCritical))
    , m_contactLines(std::move(contactLines))
    , m_undoAction(std::move(undoAction))
{
}

void UndoErrorReport::show(const RunTimeError& error)
{
    show(error, m_undoAction);
}

void UndoErrorReport::show(const RunTimeError& error, const std::function<void()>& undo)
{
    if (m_undoErrorActive) {
        m_showCritical(undoFailedText(m_contactLines));
    } else {
        m_undoErrorActive = true;
        m_showCritical(errorText(error));
        try {
            if (undo) {
                undo();
            }
        } catch (const std::exception&) {
            // The undo action reports its own errors through this report; one that still escapes
            // is a failed undo all the same, and nothing is tried after it.
            m_showCritical(undoFailedText(m_contactLines));
        }
    }
    m_undoErrorActive = false;
}

QString UndoErrorReport::errorText(const RunTimeError& error)
{
    return error.report() + lineBreak + QStringLiteral("This error will undo your action");
}

QString UndoErrorReport::undoFailedText(const QString& contactLines)
{
    return QStringLiteral("An error occured while undoing your last action !") + lineBreak
        + QStringLiteral("Contact the developer for further information :") + lineBreak + contactLines;
}
