#pragma once

#include "core/menuproblem.h"

#include <QList>
#include <QStringList>

/// A short name of each kind of problem, so that a failing comparison reads well.
inline QString kindName(MenuProblem::Kind kind)
{
    switch (kind) {
    case MenuProblem::Kind::LevelJump:
        return QStringLiteral("level jump");
    case MenuProblem::Kind::StrayMarkers:
        return QStringLiteral("stray markers");
    case MenuProblem::Kind::EmptyCaption:
        return QStringLiteral("empty caption");
    case MenuProblem::Kind::DuplicateCaption:
        return QStringLiteral("duplicate caption");
    case MenuProblem::Kind::UnknownVariable:
        return QStringLiteral("unknown variable");
    case MenuProblem::Kind::OddDollarCount:
        return QStringLiteral("odd dollar count");
    case MenuProblem::Kind::ParameterNumberOutOfRange:
        return QStringLiteral("parameter out of range");
    case MenuProblem::Kind::RepeatedParameterNumber:
        return QStringLiteral("repeated parameter");
    case MenuProblem::Kind::EmptyCommand:
        return QStringLiteral("empty command");
    case MenuProblem::Kind::NoScriptFile:
        return QStringLiteral("no script file");
    case MenuProblem::Kind::UnsavableValue:
        return QStringLiteral("unsavable value");
    }
    return QString();
}

/// Each problem as "kind | message".
inline QStringList kindsAndMessages(const QList<MenuProblem>& problems)
{
    QStringList texts;
    for (const MenuProblem& problem : problems) {
        texts.append(kindName(problem.kind) + QStringLiteral(" | ") + problem.message);
    }
    return texts;
}

/// Each problem as "line | item number | key | command number | kind | text".
inline QStringList placedProblems(const QList<MenuProblem>& problems)
{
    QStringList texts;
    for (const MenuProblem& problem : problems) {
        texts.append(QStringLiteral("%1 | %2 | %3 | %4 | %5 | %6")
                         .arg(QString::number(problem.line), QString::number(problem.itemNumber), problem.itemKey,
                              QString::number(problem.commandNumber), kindName(problem.kind), problem.text()));
    }
    return texts;
}
