#pragma once

#include <QHashFunctions>
#include <QString>

/// One command line of a menu item: the file-extension filter it applies to and the command text
/// ("||" joins the lines of a multi-line command).
struct Command
{
    QString extension;
    QString command;

    friend bool operator==(const Command& left, const Command& right)
    {
        return left.extension == right.extension && left.command == right.command;
    }
    friend bool operator!=(const Command& left, const Command& right) { return !(left == right); }
};

size_t qHash(const Command& command, size_t seed = 0) noexcept;
