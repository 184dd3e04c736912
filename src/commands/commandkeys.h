#pragma once

#include <QString>

/// What the Enter and Backspace keys do in the command editor's text box, decided on the text as the
/// box counts it (a line break is CR LF, two characters) and the caret.
namespace CommandKeys {

/// The box never lets Enter through itself: on an empty text, and between two line breaks (which
/// would make two empty lines between commands), Enter does nothing at all; anywhere else the editor
/// inserts one line break at the caret, unless the two characters after the caret already are one.
bool enterInsertsLineBreak(const QString& text, int caret);

/// Backspace right after a line break removes the empty line that separates two commands: the four
/// characters before the caret (fewer at the text's start) at once. 0 when Backspace works as usual
/// (not after a line break, or a text of one character or none).
int backspaceGroupLength(const QString& text, int caret);

} // namespace CommandKeys
