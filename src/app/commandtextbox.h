#pragma once

#include "commands/colouredtext.h"
#include "core/commandtextcheck.h"

#include <QPlainTextEdit>

#include <optional>
#include <vector>

class QTimer;

/// The command editor's text box (txtCommand): the command's lines in a fixed-pitch font, coloured
/// as ColouredText decides. The box shows a text with Qt's paragraphs; ColouredText counts a line
/// break as CR LF, two characters, so positions are mapped both ways. A colouring run reads the
/// box's text, caret and formats, lets the model run the occasion's routines and writes back only
/// the characters whose look changed, with painting held off until the run is over. The text
/// cursor itself is never moved by a run, so a selection keeps its direction.
///
/// Enter and Backspace follow CommandKeys: Enter is never let through (the box inserts the line
/// break itself where one belongs), Backspace after a line break removes the empty line between two
/// commands. A refused key is noted and its release brings the bold type up to date.
class CommandTextBox final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit CommandTextBox(QWidget* parent = nullptr);

    /// The text with CR LF line breaks, as a command is written in the editor.
    QString commandText() const;
    /// Replaces the whole text; the caret goes to its start and every character is black.
    void setCommandText(const QString& text);

    /// The caret (selection start) and the selection length, counted with CR LF line breaks.
    int selectionStart() const;
    int selectionLength() const;
    /// Selects [start, start + length), counted with CR LF line breaks.
    void setSelection(int start, int length);

    /// The box as the colouring model sees it: text, the look of every character (line breaks are
    /// never shown, and read as black, not bold), caret and selection.
    ColouredText colouredText() const;
    /// Runs the routines of `occasion` over the box.
    void recolour(ColouredText::Occasion occasion);
    /// Replaces the selection by `text` and puts the caret at `caret`, both with CR LF line breaks.
    void replaceSelection(const QString& text, int caret);
    /// Appends `text` (CR LF line breaks) in black at the end.
    void appendText(const QString& text);

    /// Whether the key being pressed was refused (cleared when it is released).
    bool keyRefused() const { return m_keyRefused; }

    /// The variables of the text the catalogue does not know, as they are marked (box positions); the
    /// marks follow a change as soon as the events queued by it are handled.
    const QList<CommandTextCheck::UnknownVariable>& unknownVariables() const { return m_unknownVariables; }
    /// What the mark under `viewportPos` says (the Problems panel's text); empty off the marks.
    QString unknownVariableAt(const QPoint& viewportPos) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    bool viewportEvent(QEvent* event) override;

private:
    /// The Qt position of `position` counted with CR LF line breaks; the second character of a line
    /// break maps to the break itself.
    int toBoxPosition(int position) const;
    /// The position counted with CR LF line breaks of Qt position `boxPosition`.
    int toTextPosition(int boxPosition) const;
    /// Writes the looks of `coloured` that differ from `shown` into the box.
    void applyFormats(const ColouredText& shown, const ColouredText& coloured);
    /// Every "||" of the text becomes two line breaks. In the box both take two positions, so the
    /// caret and the selection stay where they are.
    void expandSeparators();
    void setTypingFormat();
    void insertLineBreakAtCaret();
    /// Underlines the unknown variables of the text with a wavy line, beside the colours.
    void markUnknownVariables();

    bool m_keyRefused = false;
    /// The text and looks as the last colouring run left them, so that a run after a click need not
    /// read the whole box again; dropped whenever the text changes.
    std::optional<ColouredText> m_shown;
    /// True while a run writes its looks into the box.
    bool m_applying = false;
    QList<CommandTextCheck::UnknownVariable> m_unknownVariables;
    QTimer* m_marking = nullptr;
};
