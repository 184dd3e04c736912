#pragma once

#include <QString>

#include <array>

/// The 34 variables of the command language that the command editor offers, each with the help text
/// that says what it stands for, in which menu mode it works and how it may be varied. The shell
/// extension fills them in when it runs a command; the editor never expands one.
class VariableCatalogue final
{
public:
    static constexpr int Count = 34;
    /// The entry whose help is a rich-text document rather than plain text.
    static constexpr int RichHelpEntry = 32;

    /// The variable of entry `index` as it is inserted ("$fs-001$"); empty outside 0..33.
    static QString name(int index);
    /// Its help text: three lines joined by CR LF (menu mode, description, comments), or for entry 32
    /// an RTF document. Empty outside 0..33.
    static QString help(int index);
    /// Whether the help of entry `index` is an RTF document.
    static bool hasRichHelp(int index) { return index == RichHelpEntry; }
};
