#pragma once

#include "commands/colouredtext.h"
#include "commands/textformat.h"

#include <QList>
#include <QString>

#include <vector>

/// A step-by-step model of the command editor's rich text box and of its five colouring routines:
/// everything goes through the box's selection (start, length, colour, bold), one property at a
/// time, as the routines do on the real box, and the text is searched character by character.
/// Slow, but easy to check by eye; the tests hold ColouredText to exactly the formats, caret,
/// selection and typing format this model leaves.
namespace LiteralColouring {

/// The rich text box: its text, the colour and bold type of every character, the selection, and
/// the format that the next typed character takes.
struct TextBox
{
    QString text;
    std::vector<CharFormat> formats;
    int selStart = 0;
    int selLength = 0;
    CharFormat typing;

    /// Putting the caret somewhere empties the selection, as in the real box.
    void setSelStart(int start);
    /// Clipped to the end of the text.
    void setSelLength(int length);
    /// Applied to the selected characters; with nothing selected, to what is typed next.
    void setSelColour(TextColour colour);
    void setSelBold(bool bold);
};

/// One entry of the keyword table, built from its rule.
struct KeywordEntry
{
    QString text;
    TextColour colour;
};

/// The 36 entries: the runner's call with its trailing blank (green), "001=" to "030=" (navy), and
/// "del ", "rename ", "copy ", "regsvr32 ", "regsvr32.exe " (green).
QList<KeywordEntry> keywordTable();

/// The caret's line: from just after the last CR LF that lies wholly before the caret (or from the
/// first character) up to the next CR LF after that (or the end of the text).
int currentLineStart(const TextBox& box);
int currentLineEnd(const TextBox& box);

void colourRange(TextBox& box, int start, int length, TextColour colour);
/// `mode` 0 clears colour and bold, 1 bold only, 2 colour only.
void resetFormatting(TextBox& box, bool currentLine, int mode);
void colourVariables(TextBox& box, bool currentLine);
void colourKeywords(TextBox& box, bool currentLine);
void boldCurrentLine(TextBox& box);
/// Every "||" (taken from the left) becomes two line breaks; the caret and the selection stay on the
/// same characters, and a position between the two bars of a pair ends up after its line breaks.
void expandSeparators(TextBox& box);

/// The routines of `occasion`, in their order.
void recolour(TextBox& box, ColouredText::Occasion occasion);

/// A box holding the same text, formats, selection and typing format as `text`.
TextBox boxOf(const ColouredText& text);

} // namespace LiteralColouring
