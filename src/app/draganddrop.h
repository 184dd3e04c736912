#pragma once

#include <QObject>
#include <QString>

#include <functional>

class ApplicationState;
class QDrag;
class QMenu;
class QPoint;
class QWidget;

/// The drag of tree nodes between editor windows and the menus that pop up on the way: the drop
/// menu mnuNodes ("Insert as subitem of" / "Insert next to", each with Copy and Move), whose
/// entries only note the choice in the drag state, and the pop-up of any menu at the pointer.
/// Tests run drags and answer pop-up menus through setDragExecutor and setMenuPopup.
class DragAndDrop final : public QObject
{
    Q_OBJECT

public:
    DragAndDrop(ApplicationState& state, QWidget* menuParent);

    QMenu* dropMenu() const { return m_mnuNodes; }

    /// Runs the drag of a node until it is dropped or given up.
    void execDrag(QDrag* drag);
    void setDragExecutor(std::function<void(QDrag*)> executor) { m_dragExecutor = std::move(executor); }
    /// Shows the drop menu at `globalPos`: "Insert as subitem of" captioned `targetText`, "Insert next
    /// to" captioned `parentText` and shown only when `nextToo`. The captions stay until the next drop.
    void popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo, const QPoint& globalPos);
    /// Pops `menu` up at `globalPos` (or hands it to the test's popup) and returns once it is closed.
    void popupMenu(QMenu* menu, const QPoint& globalPos);
    void setMenuPopup(std::function<void(QMenu*, const QPoint&)> popup) { m_menuPopup = std::move(popup); }

private:
    ApplicationState& m_state;
    std::function<void(QDrag*)> m_dragExecutor;
    std::function<void(QMenu*, const QPoint&)> m_menuPopup;
    QMenu* m_mnuNodes = nullptr;
    QMenu* m_mnuNodesInsertSub = nullptr;
    QMenu* m_mnuNodesInsertNext = nullptr;
};
