#include "counttext.h"

QString countText(qsizetype count, const QString& singular, const QString& plural)
{
    return QString::number(count) + QLatin1Char(' ') + (count == 1 ? singular : plural);
}
