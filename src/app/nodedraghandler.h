#pragma once

#include <QModelIndex>
#include <QObject>
#include <QtGlobal>

#include <functional>

class EditorWindowHost;
class ItemTree;
class QPoint;

/// The drags of one editor window's tree: a node pressed and pulled far enough starts a drag (the
/// left button only with the drag-and-drop option on, the right one always), the node under the
/// pointer shows where a drag of this program would land, and a drop moves the branch (left button)
/// or asks with the drop menu (right button), then runs it through the editing session.
class NodeDragHandler final : public QObject
{
    Q_OBJECT

public:
    /// `isChoosing` tells whether the window is choosing a link target (no drag then); `click` shows
    /// a node as a click on it does.
    NodeDragHandler(EditorWindowHost& host, ItemTree* tree, qint16 documentIndex, std::function<bool()> isChoosing,
                    std::function<void(const QModelIndex&)> click, QObject* parent = nullptr);

    void startDrag(const QModelIndex& node, Qt::MouseButton button);
    void draggedOver(const QModelIndex& node);
    /// A node of this program dropped on `node` (invalid: no node under the pointer) at `globalPos`.
    void dropped(const QModelIndex& node, const QPoint& globalPos);

private:
    EditorWindowHost& m_host;
    ItemTree* m_tree;
    const qint16 m_documentIndex;
    std::function<bool()> m_isChoosing;
    std::function<void(const QModelIndex&)> m_click;
};
