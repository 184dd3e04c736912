#pragma once

#include "commands/scriptcall.h"

#include <QDialog>

#include <functional>

class CommandTextBox;
class EditingSession;
class QComboBox;
class QLabel;
class QMenu;
class QPoint;
class QPushButton;
class QTextBrowser;
class QToolButton;
class RunTimeError;
class UserPrompts;
class VariableHelpPopup;
struct Command;

/// The command editor (frmAddCommand): one command of the selected item, its extension filter and
/// its lines, written in a colouring text box with the variables menu, the help of the variable the
/// pointer is on, and the loading of a script's call. It adds a command (an empty tag) or edits the
/// command whose slot its tag holds. Storing runs through the editing session, which records the
/// undo snapshot after the command is written; Cancel changes nothing.
class CommandEditorDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `programFolder` is what a script's path is written relative to ("$exepath$").
    CommandEditorDialog(EditingSession& session, UserPrompts& prompts, const QString& programFolder, QWidget* parent);
    ~CommandEditorDialog() override;

    /// Edit mode for slot `slot` (1-based) holding `command`: its extension and its text with every
    /// "||" shown as an empty line, coloured, and the store button captioned "Edit".
    void openForEditing(int slot, const Command& command);

    /// Empty in add mode, the slot number being edited in edit mode.
    QString tag() const { return m_tag; }
    CommandTextBox* commandBox() const { return m_txtCommand; }
    QMenu* variablesMenu() const { return m_mnuVariants; }

    /// Stores the command into the selected item of the active document and closes the dialog.
    void cmdAdd_Click();
    /// Pops the variables menu up at the lower right corner of its button.
    void cmdAddVariant_Click();
    /// Asks for a script and appends its call, asking a value for each of its parameters.
    void loadScript();
    /// Puts variable `entry` of the catalogue in place of the selection ("avi" taking the extension
    /// box's text) and colours the text again.
    void insertVariable(int entry);
    /// Shows the help of variable `entry`: plain text, or formatted for the one whose help is rich
    /// text.
    void showVariableHelp(int entry);

    /// Where the value of each script parameter is asked; by default the parameter prompt.
    void setValuePrompt(ScriptCall::AskValue prompt) { m_askValue = std::move(prompt); }
    /// Tests answer the variables menu with this: it runs instead of the menu's own loop.
    void setMenuPopup(std::function<void(QMenu*, const QPoint&)> popup) { m_menuPopup = std::move(popup); }

private:
    void buildVariablesMenu();
    /// The dialog's error routine: "Error n : description (source)" with the critical icon.
    void gestErrCommandForm(const RunTimeError& error);

    EditingSession& m_session;
    UserPrompts& m_prompts;
    QString m_programFolder;
    /// Empty: add mode; otherwise the slot being edited.
    QString m_tag;
    ScriptCall::AskValue m_askValue;
    std::function<void(QMenu*, const QPoint&)> m_menuPopup;

    QLabel* m_lblExtension = nullptr;
    QComboBox* m_cmbExtension = nullptr;
    QLabel* m_lblCommand = nullptr;
    CommandTextBox* m_txtCommand = nullptr;
    QTextBrowser* m_lblHelp = nullptr;
    QToolButton* m_cmdAddVariant = nullptr;
    QPushButton* m_cmdLoadScript = nullptr;
    QPushButton* m_cmdAdd = nullptr;
    QPushButton* m_cmdCancel = nullptr;
    QLabel* m_label1 = nullptr;
    QMenu* m_mnuVariants = nullptr;
    VariableHelpPopup* m_helpPopup = nullptr;
};
