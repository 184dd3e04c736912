#include "runtimeerror.h"

#include "errortable.h"

RunTimeError::RunTimeError(int number, QString source, QString description)
    : m_number(number)
    , m_description(description.isNull() ? errorDescription(number) : std::move(description))
    , m_source(std::move(source))
    , m_what(report().toUtf8())
{
}

RunTimeError RunTimeError::noError()
{
    return RunTimeError(0, QString(), QStringLiteral(""));
}

QString RunTimeError::report() const
{
    return QStringLiteral("Error %1 : %2 (%3)").arg(m_number).arg(m_description, m_source);
}

const char* RunTimeError::what() const noexcept
{
    return m_what.constData();
}
