#pragma once

#include <QtGlobal>

/// The colours of a command text: plain text, variables, script parameter numbers, and the script
/// runner's call with the shell keywords.
enum class TextColour : quint8 { Black, Maroon, Navy, Green };

/// How one character of a command text is shown.
struct CharFormat
{
    TextColour colour = TextColour::Black;
    bool bold = false;

    friend bool operator==(const CharFormat& left, const CharFormat& right)
    {
        return left.colour == right.colour && left.bold == right.bold;
    }
    friend bool operator!=(const CharFormat& left, const CharFormat& right) { return !(left == right); }
};
