#pragma once

#include "core/editorview.h"
#include "editing/treeupdate.h"

#include <QList>
#include <QObject>
#include <QStringList>

/// An editor window as the editing session sees it, without a window: the test sets the selected
/// node and the node keys, and reads back every update the session handed over.
class FakeEditorView final : public QObject, public EditorView
{
public:
    QObject* viewObject() override { return this; }
    SelectedNode selectedNode() const override { return selected; }
    QString nodeKey(int nodeIndex) const override
    {
        return nodeIndex >= 1 && nodeIndex <= nodeKeys.size() ? nodeKeys.at(nodeIndex - 1) : QString();
    }
    void applyUpdate(const TreeUpdate& update) override
    {
        updates.append(update);
        if (onUpdate) {
            onUpdate(update);
        }
    }

    /// Selects the node `key` whose parent node is `parentKey`.
    void select(const QString& key, const QString& parentKey = SelectedNode::rootKey())
    {
        selected.key = key;
        selected.parentKey = key == SelectedNode::rootKey() ? QString() : parentKey;
    }

    SelectedNode selected;
    /// The keys of the tree's nodes in the order they were added; node 1 is the root.
    QStringList nodeKeys { SelectedNode::rootKey() };
    QList<TreeUpdate> updates;
    std::function<void(const TreeUpdate&)> onUpdate;
};
