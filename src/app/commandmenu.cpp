#include "commandmenu.h"

#include "app/commandeditordialog.h"
#include "app/commandmenuhost.h"
#include "commands/commandediting.h"
#include "core/editingsession.h"
#include "core/editmenustate.h"
#include "model/itemlookup.h"
#include "model/menudocument.h"

#include <QAction>
#include <QMenu>
#include <QTimer>

namespace {

const char* const pendingAction = "tag";

QString addCommandTag()
{
    return QStringLiteral("addcommand");
}

QString editCommandTag()
{
    return QStringLiteral("editcommand");
}

} // namespace

CommandMenu::CommandMenu(CommandMenuHost& host, QWidget* menuParent)
    : QObject(menuParent)
    , m_host(host)
{
    m_mnuCommand = new QMenu(menuParent);
    m_mnuCommand->setObjectName(QStringLiteral("mnuCommand"));
    connect(addEntry(QStringLiteral("mnuAddCommand"), QStringLiteral("&Add")), &QAction::triggered, this,
            &CommandMenu::mnuAddCommand_Click);
    connect(addEntry(QStringLiteral("mnuEditCommand"), QStringLiteral("&Edit")), &QAction::triggered, this,
            &CommandMenu::mnuEditCommand_Click);
    connect(addEntry(QStringLiteral("mnuRemoveCommand"), QStringLiteral("&Remove")), &QAction::triggered, this,
            &CommandMenu::mnuRemoveCommand_Click);
    connect(addEntry(QStringLiteral("mnuClearCommands"), QStringLiteral("&Clear")), &QAction::triggered, this,
            &CommandMenu::mnuClearCommands_Click);

    m_tmrExec = new QTimer(this);
    m_tmrExec->setObjectName(QStringLiteral("tmrExec"));
    connect(m_tmrExec, &QTimer::timeout, this, &CommandMenu::tmrExec_Timer);
    m_dialogRunner = [](CommandEditorDialog& dialog) { dialog.exec(); };
}

QAction* CommandMenu::addEntry(const QString& name, const QString& caption)
{
    QAction* entry = m_mnuCommand->addAction(caption);
    entry->setObjectName(name);
    entry->setEnabled(false);
    return entry;
}

void CommandMenu::apply(const EditMenuState& state)
{
    const QList<QAction*> entries = m_mnuCommand->actions();
    for (QAction* entry : entries) {
        entry->setEnabled(state.itemEntries);
    }
}

void CommandMenu::mnuAddCommand_Click()
{
    m_tmrExec->setProperty(pendingAction, addCommandTag());
    m_tmrExec->start(100);
}

void CommandMenu::mnuEditCommand_Click()
{
    m_tmrExec->setProperty(pendingAction, editCommandTag());
    m_tmrExec->start(100);
}

int CommandMenu::selectedSlot() const
{
    return m_host.activeCommandSlot();
}

void CommandMenu::mnuRemoveCommand_Click()
{
    EditArguments arguments;
    arguments.slot = selectedSlot();
    m_host.session().run(EditOperations::removeCommand, arguments);
}

void CommandMenu::mnuClearCommands_Click()
{
    m_host.session().run(EditOperations::clearCommands);
}

void CommandMenu::tmrExec_Timer()
{
    m_tmrExec->stop();
    const QString action = m_tmrExec->property(pendingAction).toString();
    if (action == addCommandTag() || action == editCommandTag()) {
        openEditor(action);
    }
}

void CommandMenu::openEditor(const QString& action)
{
    const MenuDocument* document = m_host.activeDocument();
    const SelectedNode selected = m_host.activeSelectedNode();
    if (document == nullptr || !selected.isItem()) {
        return;
    }
    CommandEditorDialog dialog(m_host.session(), m_host.prompts(), m_host.programFolder(), m_host.dialogParent());
    if (action == editCommandTag()) {
        const int slot = selectedSlot();
        const int itemIndex = findItemByKey(*document, selected.key);
        if (slot < 1 || itemIndex < 0 || slot > document->items.at(itemIndex).commandUpperBound()) {
            return;
        }
        dialog.openForEditing(slot, document->items.at(itemIndex).commands.at(slot));
    }
    m_dialogRunner(dialog);
}
