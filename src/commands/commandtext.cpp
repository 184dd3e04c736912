#include "commandtext.h"

namespace CommandText {

QString toDisplayed(const QString& stored)
{
    QString displayed = stored;
    displayed.replace(QStringLiteral("||"), QStringLiteral("\r\n\r\n"));
    return displayed;
}

QString toStored(const QString& displayed)
{
    QString stored = displayed;
    stored.replace(QStringLiteral("\r\n\r\n"), QStringLiteral("||"));
    stored.replace(QStringLiteral("\r\n"), QStringLiteral("||"));
    return stored;
}

} // namespace CommandText
