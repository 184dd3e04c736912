#pragma once

#include <QString>
#include <QtGlobal>

/// The numbers of the menu model (indices, counts, levels, orders) are signed 16-bit. Every value
/// that is stored into one goes through here, so an overflow becomes a run-time error (number 6,
/// "Overflow") of the operation that caused it instead of a silent wrap-around.
namespace Int16 {

/// The value as a 16-bit number; throws RunTimeError 6 naming `source` when it does not fit.
qint16 checked(qint64 value, const char* source);

/// value + 1, checked.
inline qint16 incremented(qint16 value, const char* source)
{
    return checked(qint64(value) + 1, source);
}

/// value - 1, checked.
inline qint16 decremented(qint16 value, const char* source)
{
    return checked(qint64(value) - 1, source);
}

} // namespace Int16
