#pragma once

#include <QModelIndex>
#include <QObject>

#include <functional>

class ItemTree;

/// While an editor window chooses a link target, a click on its tree picks the node under the
/// pointer and nothing else happens there: the selection stays on the item whose link is being set,
/// nothing is dragged, nothing expands.
class LinkTargetClicks final : public QObject
{
    Q_OBJECT

public:
    /// `isChoosing` tells whether a target is being chosen; `pick` takes the node clicked.
    LinkTargetClicks(ItemTree* tree, std::function<bool()> isChoosing, std::function<void(const QModelIndex&)> pick);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ItemTree* m_tree;
    std::function<bool()> m_isChoosing;
    std::function<void(const QModelIndex&)> m_pick;
};
