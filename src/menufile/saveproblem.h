#pragma once

#include <QString>

/// A value of a menu that a menu file cannot hold: written as it is, the file would read back
/// differently from what the user sees. Saving refuses while there is any.
struct SaveProblem
{
    /// Where the item sits: the captions from the top level down to the item, each in quotes,
    /// joined by " > ", e.g. `"Archive" > "Pack"`.
    QString itemPath;
    /// What is wrong, e.g. `command 2 holds a line break`.
    QString description;
    /// The item's key, to find it in the menu; two problems compare by what they tell the user.
    QString itemKey = QString();

    /// The path, ": " and the description; the description alone for a problem of the whole menu.
    QString text() const { return itemPath.isEmpty() ? description : itemPath + QStringLiteral(": ") + description; }

    friend bool operator==(const SaveProblem& left, const SaveProblem& right)
    {
        return left.itemPath == right.itemPath && left.description == right.description;
    }
    friend bool operator!=(const SaveProblem& left, const SaveProblem& right) { return !(left == right); }
};
