#include "editmenu.h"

#include "app/editmenuhost.h"
#include "commands/commandediting.h"
#include "core/editingsession.h"
#include "editing/itemcreation.h"
#include "editing/itemdeletion.h"
#include "editing/itemmoving.h"
#include "editing/linkediting.h"
#include "editing/subtreecopy.h"
#include "editing/treedisplay.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QWidget>

EditMenu::EditMenu(QMenu* menu, EditMenuHost& host, EditingSession& session)
    : QObject(menu)
    , m_menu(menu)
    , m_host(host)
    , m_session(session)
{
    // Enabled by the history as the active document's stacks fill and empty.
    m_mnuUndo = addEntry(QStringLiteral("mnuUndo"), QStringLiteral("&Undo"));
    m_mnuUndo->setShortcut(QKeySequence::Undo);
    m_mnuUndo->setEnabled(false);
    connect(m_mnuUndo, &QAction::triggered, this, [this] { m_host.mnuUndo_Click(); });
    m_mnuRedo = addEntry(QStringLiteral("mnuRedo"), QStringLiteral("&Redo"));
    // Ctrl+Y redoes too, as in most editors, wherever the platform's Redo is another key.
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    if (!redoKeys.contains(QKeySequence(Qt::CTRL | Qt::Key_Y))) {
        redoKeys.append(QKeySequence(Qt::CTRL | Qt::Key_Y));
    }
    m_mnuRedo->setShortcuts(redoKeys);
    m_mnuRedo->setEnabled(false);
    connect(m_mnuRedo, &QAction::triggered, this, [this] { m_host.mnuRedo_Click(); });
    addSeparator(QStringLiteral("Tire04"));

    QAction* mnuNewItem
        = addOperation(QStringLiteral("mnuNewItem"), QStringLiteral("&New Item"), EditOperations::newItem);
    mnuNewItem->setShortcut(QKeySequence(Qt::Key_Insert));
    // A new item as the last child of the selected one (a top-level one under the root).
    m_mnuNewSubItem
        = addOperation(QStringLiteral("mnuNewSubItem"), QStringLiteral("New Su&b-item"), EditOperations::newSubItem);
    m_mnuNewSubItem->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    QAction* mnuRename = addOperation(QStringLiteral("mnuRename"), QStringLiteral("Rena&me"), EditOperations::rename);
    mnuRename->setShortcut(QKeySequence(Qt::Key_F2));
    m_itemEntries += { mnuNewItem, mnuRename };
    m_treeEntries += { mnuNewItem, m_mnuNewSubItem, mnuRename };

    QMenu* mnuSpecial = m_menu->addMenu(QStringLiteral("Special &items"));
    mnuSpecial->setObjectName(QStringLiteral("mnuSpecial"));
    mnuSpecial->menuAction()->setObjectName(QStringLiteral("mnuSpecial"));
    const QStringList specialCaptions
        = { QStringLiteral("$&audiostream$"), QStringLiteral("$&subtitlestream$"), QStringLiteral("$s&electedfile$") };
    const QStringList specialTexts
        = { QStringLiteral("$audiostream$"), QStringLiteral("$subtitlestream$"), QStringLiteral("$selectedfile$") };
    for (int index = 0; index < specialCaptions.size(); ++index) {
        QAction* special = mnuSpecial->addAction(specialCaptions.at(index));
        special->setObjectName(QStringLiteral("mnuSpecialItems") + QString::number(index));
        // The text a node takes from the entry: its caption without the access key.
        special->setData(specialTexts.at(index));
        connect(special, &QAction::triggered, this, [this, text = specialTexts.at(index)] {
            EditArguments arguments;
            arguments.text = text;
            m_session.run(EditOperations::specialItem, arguments);
        });
        m_itemEntries.append(special);
    }
    addSeparator(QStringLiteral("Tire08"));

    QAction* mnuCut = addOperation(QStringLiteral("mnuCut"), QStringLiteral("Cu&t"), EditOperations::cut);
    mnuCut->setShortcut(QKeySequence::Cut);
    QAction* mnuCopy = addOperation(QStringLiteral("mnuCopy"), QStringLiteral("&Copy"), EditOperations::copy);
    mnuCopy->setShortcut(QKeySequence::Copy);
    m_mnuPaste = addOperation(QStringLiteral("mnuPaste"), QStringLiteral("&Paste"), EditOperations::paste);
    m_mnuPaste->setShortcut(QKeySequence::Paste);
    QAction* mnuDuplicate
        = addOperation(QStringLiteral("mnuDuplicate"), QStringLiteral("Dup&licate"), EditOperations::duplicate);
    mnuDuplicate->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    m_itemEntries += { mnuCut, mnuCopy, mnuDuplicate };
    m_treeEntries += { mnuCut, mnuCopy, m_mnuPaste, mnuDuplicate };
    QAction* mnuDelete
        = addOperation(QStringLiteral("mnuDelete"), QStringLiteral("&Delete"), EditOperations::deleteItem);
    mnuDelete->setShortcut(QKeySequence::Delete);
    m_itemEntries.append(mnuDelete);
    m_treeEntries.append(mnuDelete);

    // The moves of the selected item with its branch, among its siblings and between the levels.
    QMenu* mnuMove = m_menu->addMenu(QStringLiteral("Mo&ve"));
    mnuMove->setObjectName(QStringLiteral("mnuMove"));
    mnuMove->menuAction()->setObjectName(QStringLiteral("mnuMove"));
    const auto addMove = [this, mnuMove](const QString& name, const QString& caption, const QKeySequence& keys,
                                         const EditOperation& operation) {
        QAction* entry = mnuMove->addAction(caption);
        entry->setObjectName(name);
        entry->setShortcut(keys);
        connect(entry, &QAction::triggered, this, [this, run = &operation] { m_session.run(*run); });
        m_treeEntries.append(entry);
        return entry;
    };
    m_itemEntries.append(addMove(QStringLiteral("mnuMoveUp"), QStringLiteral("Move &up"),
                                 QKeySequence(Qt::CTRL | Qt::Key_Up), EditOperations::moveUp));
    m_itemEntries.append(addMove(QStringLiteral("mnuMoveDown"), QStringLiteral("Move do&wn"),
                                 QKeySequence(Qt::CTRL | Qt::Key_Down), EditOperations::moveDown));
    m_nestingEntries.append(addMove(QStringLiteral("mnuMoveIntoItemAbove"), QStringLiteral("Move &into the item above"),
                                    QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Right),
                                    EditOperations::moveIntoItemAbove));
    m_nestingEntries.append(addMove(QStringLiteral("mnuMoveOutOfParent"), QStringLiteral("Move &out of the parent"),
                                    QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Left), EditOperations::moveOutOfParent));
    m_itemEntries.append(mnuMove->menuAction());
    QAction* mnuReplace = addEntry(QStringLiteral("mnuReplace"), QStringLiteral("R&eplace"));
    // Ctrl+H, and the platform's own Replace key where it has another one.
    QList<QKeySequence> replaceKeys { QKeySequence(Qt::CTRL | Qt::Key_H) };
    for (const QKeySequence& keys : QKeySequence::keyBindings(QKeySequence::Replace)) {
        if (!replaceKeys.contains(keys)) {
            replaceKeys.append(keys);
        }
    }
    mnuReplace->setShortcuts(replaceKeys);
    connect(mnuReplace, &QAction::triggered, this, [this] { m_host.showReplaceDialog(); });
    m_documentEntries.append(mnuReplace);
    QAction* mnuFind = addEntry(QStringLiteral("mnuFind"), QStringLiteral("&Find..."));
    mnuFind->setShortcut(QKeySequence::Find);
    connect(mnuFind, &QAction::triggered, this, [this] { m_host.openFindBar(); });
    m_documentEntries.append(mnuFind);
    addSeparator(QStringLiteral("Tire05"));

    m_mnuSelectCopy = addOperation(QStringLiteral("mnuSelectCopy"), QStringLiteral("Select an item to cop&y"),
                                   EditOperations::selectCopy);
    m_documentEntries.append(addOperation(QStringLiteral("mnuLFCopyCommand"), QStringLiteral("Loo&k for CopyCommand"),
                                          EditOperations::lookForCopyCommand));
    m_documentEntries.append(addOperation(QStringLiteral("mnuUncheckCopyCommand"),
                                          QStringLiteral("Uncheck &all CopyCommand"),
                                          EditOperations::uncheckAllCopyCommand));
    addSeparator(QStringLiteral("Tire10"));

    m_mnuCopyComDup = addEntry(QStringLiteral("mnuCopyComDup"), QStringLiteral("C&opyCommand at Duplication"));
    m_mnuCopyComDup->setCheckable(true);
    connect(m_mnuCopyComDup, &QAction::triggered, this, [this](bool checked) { m_host.toggleCopyCommandDup(checked); });
    QAction* mnuRefresh
        = addOperation(QStringLiteral("mnuRefresh"), QStringLiteral("Refre&sh List"), EditOperations::refreshList);
    mnuRefresh->setShortcut(QKeySequence(Qt::Key_F5));
    m_documentEntries.append(mnuRefresh);

    QMenu* mnuHide = m_menu->addMenu(QStringLiteral("&Hide items"));
    mnuHide->setObjectName(QStringLiteral("mnuHide"));
    mnuHide->menuAction()->setObjectName(QStringLiteral("mnuHide"));
    m_documentEntries.append(mnuHide->menuAction());
    const auto addHideEntry
        = [this, mnuHide](const QString& name, const QString& caption, const EditOperation& operation) {
              QAction* entry = mnuHide->addAction(caption);
              entry->setObjectName(name);
              entry->setCheckable(true);
              connect(entry, &QAction::triggered, this, [this, run = &operation] {
                  m_session.run(*run);
                  // The marks follow the document's hide mode, whatever the click made of them.
                  m_host.updateMenus();
              });
              m_documentEntries.append(entry);
              return entry;
          };
    m_mnuHideCopies
        = addHideEntry(QStringLiteral("mnuHideCopies"), QStringLiteral("... &copied"), EditOperations::hideCopies);
    m_mnuHideWCommand = addHideEntry(QStringLiteral("mnuHideWCommand"), QStringLiteral("... &without command"),
                                     EditOperations::hideWithoutCommand);
    m_mnuHideBoth = addHideEntry(QStringLiteral("mnuHideBoth"), QStringLiteral("... &both"), EditOperations::hideBoth);

    for (QAction* entry : std::as_const(m_treeEntries)) {
        entry->setShortcutContext(Qt::WidgetShortcut);
    }

    // The context menu of a tree node: the same entries, so the same keys and the same rule of
    // which can be used.
    m_treeMenu = new QMenu(m_menu->parentWidget());
    m_treeMenu->setObjectName(QStringLiteral("mnuTreeNode"));
    const QStringList groups[] = {
        { QStringLiteral("mnuNewItem"), QStringLiteral("mnuNewSubItem"), QStringLiteral("mnuRename"),
          QStringLiteral("mnuDelete") },
        { QStringLiteral("mnuCut"), QStringLiteral("mnuCopy"), QStringLiteral("mnuPaste"),
          QStringLiteral("mnuDuplicate") },
        { QStringLiteral("mnuMoveUp"), QStringLiteral("mnuMoveDown"), QStringLiteral("mnuMoveIntoItemAbove"),
          QStringLiteral("mnuMoveOutOfParent") },
        { QStringLiteral("mnuFind") },
    };
    for (const QStringList& group : groups) {
        if (!m_treeMenu->isEmpty()) {
            m_treeMenu->addSeparator();
        }
        for (const QString& name : group) {
            m_treeMenu->addAction(entry(name));
        }
    }
}

QAction* EditMenu::addEntry(const QString& name, const QString& caption)
{
    QAction* entry = m_menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

QAction* EditMenu::addOperation(const QString& name, const QString& caption, const EditOperation& operation)
{
    QAction* entry = addEntry(name, caption);
    connect(entry, &QAction::triggered, this, [this, run = &operation] { m_session.run(*run); });
    return entry;
}

void EditMenu::addSeparator(const QString& name)
{
    m_menu->addSeparator()->setObjectName(name);
}

QAction* EditMenu::entry(const QString& name) const
{
    return m_menu->findChild<QAction*>(name);
}

void EditMenu::attachTo(QWidget* tree)
{
    tree->addActions(m_treeEntries);
}

void EditMenu::apply(const EditMenuState& state)
{
    for (QAction* entry : std::as_const(m_itemEntries)) {
        entry->setEnabled(state.itemEntries);
    }
    for (QAction* entry : std::as_const(m_documentEntries)) {
        entry->setEnabled(state.documentEntries);
    }
    m_mnuSelectCopy->setEnabled(state.selectCopy);
    m_mnuNewSubItem->setEnabled(state.newSubItem);
    for (QAction* entry : std::as_const(m_nestingEntries)) {
        entry->setEnabled(state.nestingEntries);
    }
    m_mnuPaste->setEnabled(state.paste);
    m_mnuCopyComDup->setEnabled(state.menus);
    if (!state.menus) {
        m_mnuUndo->setEnabled(false);
        m_mnuRedo->setEnabled(false);
    }
}

void EditMenu::showHideMarks(const HideMode::Marks& marks)
{
    m_mnuHideCopies->setChecked(marks.copies);
    m_mnuHideWCommand->setChecked(marks.withoutCommand);
    m_mnuHideBoth->setChecked(marks.both);
}
