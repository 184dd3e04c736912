#include "menuproblem.h"

QString MenuProblem::pathOmission()
{
    return QStringLiteral("\u2026");
}

QString MenuProblem::placeText() const
{
    if (itemPath.isEmpty() && itemNumber == 0) {
        return QString();
    }
    QString place = QStringLiteral("item");
    if (itemNumber > 0) {
        place += QLatin1Char(' ') + QString::number(itemNumber);
    }
    if (!itemPath.isEmpty()) {
        place += QStringLiteral(" \"") + itemPath.join(QStringLiteral(" > ")) + QLatin1Char('"');
    }
    if (commandNumber > 0) {
        place += QStringLiteral(", command ") + QString::number(commandNumber);
    }
    return place;
}

QString MenuProblem::text() const
{
    const QString place = placeText();
    return place.isEmpty() ? message : place + QStringLiteral(": ") + message;
}

bool operator==(const MenuProblem& left, const MenuProblem& right)
{
    return left.kind == right.kind && left.itemPath == right.itemPath && left.itemNumber == right.itemNumber
        && left.itemKey == right.itemKey && left.commandNumber == right.commandNumber && left.line == right.line
        && left.message == right.message;
}
