#include "draganddrop.h"

#include "core/accesskeys.h"
#include "core/applicationstate.h"

#include <QAction>
#include <QDrag>
#include <QMenu>

DragAndDrop::DragAndDrop(ApplicationState& state, QWidget* menuParent)
    : QObject(menuParent)
    , m_state(state)
{
    const auto namedMenu = [](QMenu* menu, const QString& name) {
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        return menu;
    };
    m_mnuNodes = namedMenu(new QMenu(menuParent), QStringLiteral("mnuNodes"));
    m_mnuNodesInsertSub
        = namedMenu(m_mnuNodes->addMenu(QStringLiteral("Insert as &subitem of")), QStringLiteral("mnuNodesInsertSub"));
    m_mnuNodesInsertNext
        = namedMenu(m_mnuNodes->addMenu(QStringLiteral("Insert &next to")), QStringLiteral("mnuNodesInsertNext"));
    // The entries only note the choice; the drop goes on once the menu has closed.
    const auto addDropChoice = [this](QMenu* menu, const QString& name, bool asChild, bool copy) {
        QAction* entry = menu->addAction(copy ? QStringLiteral("&Copy") : QStringLiteral("&Move"));
        entry->setObjectName(name);
        connect(entry, &QAction::triggered, this, [this, asChild, copy] {
            DragState& drag = m_state.editing().drag;
            drag.dropAsChild = asChild;
            drag.dropAsSibling = !asChild;
            drag.dropCopy = copy;
            drag.dropCancelled = false;
        });
    };
    addDropChoice(m_mnuNodesInsertSub, QStringLiteral("mnuItemCopy"), true, true);
    addDropChoice(m_mnuNodesInsertSub, QStringLiteral("mnuItemMove"), true, false);
    addDropChoice(m_mnuNodesInsertNext, QStringLiteral("mnuNextItemCopy"), false, true);
    addDropChoice(m_mnuNodesInsertNext, QStringLiteral("mnuNextItemMove"), false, false);
}

void DragAndDrop::execDrag(QDrag* drag)
{
    if (m_dragExecutor) {
        m_dragExecutor(drag);
    } else {
        drag->exec(Qt::CopyAction | Qt::MoveAction);
    }
    drag->deleteLater();
}

void DragAndDrop::popupDropMenu(const QString& targetText, const QString& parentText, bool nextToo,
                                const QPoint& globalPos)
{
    // The captions are the nodes' texts, shown as written, each with an access key of its own.
    QString taken;
    m_mnuNodesInsertSub->setTitle(AccessKeys::onFreeLetter(targetText, taken));
    if (nextToo) {
        m_mnuNodesInsertNext->setTitle(AccessKeys::onFreeLetter(parentText, taken));
    }
    m_mnuNodesInsertNext->menuAction()->setVisible(nextToo);
    popupMenu(m_mnuNodes, globalPos);
}

void DragAndDrop::popupMenu(QMenu* menu, const QPoint& globalPos)
{
    if (m_menuPopup) {
        m_menuPopup(menu, globalPos);
    } else {
        menu->exec(globalPos);
    }
}
