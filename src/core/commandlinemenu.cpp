#include "commandlinemenu.h"

QString menuPathFromCommandLine(const QString& commandLine, const QString& programFolder)
{
    if (commandLine.isEmpty()) {
        return QString();
    }
    QString path = commandLine;
    path.replace(QLatin1String("$exepath$"), programFolder, Qt::CaseInsensitive);
    if (!path.endsWith(QLatin1String("ini"), Qt::CaseInsensitive)) {
        return QString();
    }
    return path;
}
