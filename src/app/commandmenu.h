#pragma once

#include <QObject>

#include <functional>

class CommandEditorDialog;
class CommandMenuHost;
class QAction;
class QMenu;
class QTimer;
struct EditMenuState;

/// The command list's pop-up menu (mnuCommand) with Add, Edit, Remove and Clear. Add and Edit only
/// note the action in the timer tmrExec; the command editor opens 100 ms later, outside the menu's
/// own event. Remove and Clear run through the editing session like every edit.
class CommandMenu final : public QObject
{
    Q_OBJECT

public:
    CommandMenu(CommandMenuHost& host, QWidget* menuParent);

    QMenu* menu() const { return m_mnuCommand; }
    QTimer* timer() const { return m_tmrExec; }

    void mnuAddCommand_Click();
    void mnuEditCommand_Click();
    void mnuRemoveCommand_Click();
    void mnuClearCommands_Click();
    /// The timer's tick: opens the command editor for the action its tag holds.
    void tmrExec_Timer();

    /// Shows the command editor modally; tests drive the dialog through this instead.
    void setDialogRunner(std::function<void(CommandEditorDialog&)> runner) { m_dialogRunner = std::move(runner); }

    /// The entries that need an item follow the one rule of the Edit menu.
    void apply(const EditMenuState& state);

private:
    QAction* addEntry(const QString& name, const QString& caption);
    /// The 1-based slot of the active command list's selected line; 0 when none is selected.
    int selectedSlot() const;
    void openEditor(const QString& action);

    CommandMenuHost& m_host;
    QMenu* m_mnuCommand = nullptr;
    QTimer* m_tmrExec = nullptr;
    std::function<void(CommandEditorDialog&)> m_dialogRunner;
};
