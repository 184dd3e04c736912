#pragma once

#include <QString>
#include <QStringList>

/// What the editor's command line asks for before any window opens: the usage or the version
/// printed on the terminal, or the editor started. Only a command line that is nothing but one of
/// the options asks for them, so every menu-file argument keeps its meaning (a menu file's name
/// ends in "ini" and never is an option).
class EditorCommandLine final
{
public:
    enum class Request { StartEditor, ShowUsage, ShowVersion };

    /// `arguments` is the command line without the program's name.
    static Request requestOf(const QStringList& arguments);

    /// The text of --help, ending in a line break.
    static QString usageText();
};
