#pragma once

#include "core/editmenustate.h"
#include "treeview/hidemode.h"

#include <QList>
#include <QObject>

class EditMenuHost;
class EditingSession;
class QAction;
class QMenu;
class QWidget;
struct EditOperation;

/// The Edit menu of the main window (mnuEdit) with every entry of it. Each entry that changes a
/// menu maps to one run of the editing session; which entries can be used is decided by
/// EditMenuState and applied here in one place.
class EditMenu final : public QObject
{
    Q_OBJECT

public:
    /// Fills `menu` with the entries, in their order, with their names and captions.
    EditMenu(QMenu* menu, EditMenuHost& host, EditingSession& session);

    /// The entry named `name`; null when there is none.
    QAction* entry(const QString& name) const;
    QAction* undoEntry() const { return m_mnuUndo; }
    QAction* redoEntry() const { return m_mnuRedo; }
    QAction* copyCommandDupEntry() const { return m_mnuCopyComDup; }
    /// The context menu of a tree node (mnuTreeNode): New Item, New Sub-item, Rename, Delete, Cut,
    /// Copy, Paste, Duplicate, the four moves and Find, the very entries of this menu.
    QMenu* treeMenu() const { return m_treeMenu; }

    /// Lets the entries whose keys belong to the item tree (Delete, F2, Insert) work while `tree` has
    /// the focus, and only then, so that text fields keep those keys.
    void attachTo(QWidget* tree);

    /// Enables the entries as `state` says. Undo and Redo are left to the history, unless the menus
    /// are off altogether.
    void apply(const EditMenuState& state);
    /// Sets the check marks of the Hide entries.
    void showHideMarks(const HideMode::Marks& marks);

private:
    QAction* addEntry(const QString& name, const QString& caption);
    QAction* addOperation(const QString& name, const QString& caption, const EditOperation& operation);
    void addSeparator(const QString& name);

    QMenu* m_menu;
    EditMenuHost& m_host;
    EditingSession& m_session;
    QAction* m_mnuUndo = nullptr;
    QAction* m_mnuRedo = nullptr;
    QAction* m_mnuCopyComDup = nullptr;
    QAction* m_mnuPaste = nullptr;
    QAction* m_mnuHideCopies = nullptr;
    QAction* m_mnuHideWCommand = nullptr;
    QAction* m_mnuHideBoth = nullptr;
    /// Entries that need an item selected.
    QList<QAction*> m_itemEntries;
    /// Entries that need an open document.
    QList<QAction*> m_documentEntries;
    /// Entries whose shortcuts work only while an item tree has the focus.
    QList<QAction*> m_treeEntries;
    QAction* m_mnuSelectCopy = nullptr;
    QMenu* m_treeMenu = nullptr;
    QAction* m_mnuNewSubItem = nullptr;
    /// Move into the item above and Move out of the parent.
    QList<QAction*> m_nestingEntries;
};
