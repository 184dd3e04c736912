#pragma once

#include "textformat.h"

#include <QString>

#include <vector>

/// A command text as the command editor's text box holds it: the text (a line break counts as two
/// characters, CR LF), the colour and bold type of every character, and the caret with the
/// selection. The colouring routines change the formats only, never the text, and leave the caret
/// and the selection where they were with typing going on in black, not bold; the whole-text pass
/// after a key release alone also turns a typed "||" into two line breaks.
class ColouredText
{
public:
    /// The routines' reach: the whole text, or the line that holds the caret.
    enum class Scope { WholeText, CurrentLine };
    /// What resetFormatting clears.
    enum class Reset { ColourAndBold = 0, BoldOnly = 1, ColourOnly = 2 };
    /// The moments the text is coloured, each with its own sequence of routines.
    enum class Occasion {
        /// A variable chosen from the variables menu.
        VariableChosen,
        /// The editor opened on an existing command.
        EditorOpened,
        /// A script's call appended.
        ScriptLoaded,
        MouseReleased,
        MousePressed,
        /// The release of a key the editor refused (before the row of any key's release).
        RefusedKeyReleased,
        /// The release of any key.
        KeyReleased,
    };

    ColouredText() = default;
    /// `text` in black, not bold, with the caret at its start.
    explicit ColouredText(QString text);
    ColouredText(QString text, std::vector<CharFormat> formats, int selectionStart, int selectionLength);

    const QString& text() const { return m_text; }
    const std::vector<CharFormat>& formats() const { return m_formats; }
    int selectionStart() const { return m_selectionStart; }
    int selectionLength() const { return m_selectionLength; }
    /// How the next typed character looks.
    CharFormat typingFormat() const { return m_typing; }
    void setSelection(int start, int length);

    /// The current line: from just after the last line break that ends at or before the caret (or
    /// the text's start) to the first line break at or after that (or the text's end), as
    /// [lineStart, lineEnd).
    int lineStart() const;
    int lineEnd() const;

    /// Colours characters [start, start + length) (clipped to the text).
    void colourRange(int start, int length, TextColour colour);
    /// Clears colour and bold, bold only, or colour only, over the scope.
    void resetFormatting(Scope scope, Reset reset);
    /// Colours every variable, from one "$" to the next "$" both included, in maroon; a lone "$"
    /// stays black. On the current line a pair must end within it.
    void colourVariables(Scope scope);
    /// Colours every match of every entry of the keyword table, in the table's order; matches may
    /// overlap (the search goes on from the character after a match's first one).
    void colourKeywords(Scope scope);
    /// Makes the current line bold.
    void boldCurrentLine();
    /// Turns every "||" into two line breaks; the caret and the selection stay on the same text.
    void expandSeparators();

    /// Runs the routines of `occasion` in their order.
    void recolour(Occasion occasion);

    friend bool operator==(const ColouredText& left, const ColouredText& right);
    friend bool operator!=(const ColouredText& left, const ColouredText& right) { return !(left == right); }

private:
    void scopeRange(Scope scope, int& start, int& end) const;
    void clipSelection();

    QString m_text;
    std::vector<CharFormat> m_formats;
    int m_selectionStart = 0;
    int m_selectionLength = 0;
    CharFormat m_typing;
};
