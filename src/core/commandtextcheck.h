#pragma once

#include "menuproblem.h"

#include <QList>
#include <QString>

/// The problems of one command text as a menu stores it (lines joined by "||"), found without
/// running anything: an empty text, variables between "$" signs that the catalogue does not know, an
/// odd number of "$", and calls of the script runner that name no script or number their parameters
/// wrongly.
namespace CommandTextCheck {

/// The problems of `command`, each with its kind and message only (no item, no line). An empty
/// command has that one problem. Each unknown variable is told once per command, even when it is
/// used several times.
QList<MenuProblem> check(const QString& command);

/// check(command), appended to `problems`: a whole menu is checked without a list per command.
void appendProblems(const QString& command, QList<MenuProblem>& problems);

/// One variable of a text that the catalogue does not know, where it stands.
struct UnknownVariable
{
    qsizetype start = 0;
    /// From its first "$" to its last, both included.
    qsizetype length = 0;
    /// What the problem check says of it ("unknown variable "$fz-001$"").
    QString message;
};

/// Every unknown variable of `text`, in order, paired from one "$" to the next as the command
/// editor colours them, whatever separates the lines of the text.
QList<UnknownVariable> unknownVariables(const QString& text);

} // namespace CommandTextCheck
