#include "int16.h"

#include "errortable.h"
#include "runtimeerror.h"

#include <limits>

qint16 Int16::checked(qint64 value, const char* source)
{
    if (value < std::numeric_limits<qint16>::min() || value > std::numeric_limits<qint16>::max()) {
        throw RunTimeError(ErrorNumber::Overflow, QString::fromLatin1(source));
    }
    return static_cast<qint16>(value);
}
