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

} // namespace CommandTextCheck
