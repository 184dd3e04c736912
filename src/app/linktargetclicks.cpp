#include "linktargetclicks.h"

#include "app/itemtree.h"

#include <QMouseEvent>

LinkTargetClicks::LinkTargetClicks(ItemTree* tree, std::function<bool()> isChoosing,
                                   std::function<void(const QModelIndex&)> pick)
    : QObject(tree)
    , m_tree(tree)
    , m_isChoosing(std::move(isChoosing))
    , m_pick(std::move(pick))
{
    tree->viewport()->installEventFilter(this);
}

bool LinkTargetClicks::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_tree->viewport() || !m_isChoosing()) {
        return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton) {
            if (const QModelIndex node = m_tree->indexAt(mouse->position().toPoint()); node.isValid()) {
                m_pick(node);
            }
        }
        return true;
    }
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return true;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
