#include "nodedraghandler.h"

#include "app/editorwindowhost.h"
#include "app/itemtree.h"
#include "core/applicationstate.h"
#include "core/editingsession.h"
#include "editing/itemmoving.h"

#include <QDrag>
#include <QMimeData>

NodeDragHandler::NodeDragHandler(EditorWindowHost& host, ItemTree* tree, qint16 documentIndex,
                                 std::function<bool()> isChoosing, std::function<void(const QModelIndex&)> click,
                                 QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_tree(tree)
    , m_documentIndex(documentIndex)
    , m_isChoosing(std::move(isChoosing))
    , m_click(std::move(click))
{
}

void NodeDragHandler::startDrag(const QModelIndex& node, Qt::MouseButton button)
{
    const QString key = m_tree->keyOf(node);
    if (key.isEmpty() || key == SelectedNode::rootKey() || m_isChoosing()) {
        return; // the root belongs to no item and cannot be dragged
    }
    DragState::Button dragButton = DragState::Button::None;
    if (button == Qt::LeftButton) {
        // A left-button drag is the drag-and-drop option's; a right-button drag is always there.
        if (m_host.state().options().dragNDrop == 0) {
            return;
        }
        dragButton = DragState::Button::Left;
    } else if (button == Qt::RightButton) {
        dragButton = DragState::Button::Right;
    } else {
        return;
    }
    // The node under the pointer becomes the selected node, and the one being dragged.
    if (m_tree->currentIndex() != node) {
        m_click(node);
    }
    DragState& drag = m_host.state().editing().drag;
    drag.nodeKey = key;
    drag.document = m_documentIndex;
    drag.button = dragButton;
    drag.active = true;

    auto* dragData = new QMimeData;
    dragData->setData(ItemTree::dragFormat(), (QString::number(m_documentIndex) + QLatin1Char(' ') + key).toUtf8());
    auto* nodeDrag = new QDrag(m_tree);
    nodeDrag->setMimeData(dragData);
    m_host.execDrag(nodeDrag);
}

void NodeDragHandler::draggedOver(const QModelIndex& node)
{
    // Only a drag this program started shows where it would land.
    m_tree->setDropHighlight(m_host.state().editing().drag.active ? node : QModelIndex());
}

void NodeDragHandler::dropped(const QModelIndex& node, const QPoint& globalPos)
{
    m_tree->setDropHighlight(QModelIndex());
    ApplicationState& state = m_host.state();
    DragState& drag = state.editing().drag;
    const QString targetKey = m_tree->keyOf(node);
    if (isDropIgnored(drag, state.options().dragNDrop != 0, m_documentIndex, targetKey)) {
        return;
    }
    const QString parentKey = m_tree->keyOf(node.parent());
    if (drag.button == DragState::Button::Right) {
        drag.dropAsSibling = false;
        drag.dropAsChild = false;
        drag.dropCancelled = true;
        // Nothing can be placed beside the root.
        m_host.popupDropMenu(m_tree->textOf(node), m_tree->textOf(node.parent()), targetKey != SelectedNode::rootKey(),
                             globalPos);
    } else {
        drag.dropAsChild = true;
        drag.dropAsSibling = false;
        drag.dropCopy = false;
        drag.dropCancelled = false;
    }
    if (drag.dropCancelled) {
        drag.active = false;
        drag.nodeKey.clear();
        return; // the menu was closed without a choice
    }
    const DropRequest request = dropRequestOf(drag, targetKey, parentKey, state.editing().copyCommandDup);
    m_host.session().runDrop(drag.document, m_documentIndex, request);
}
