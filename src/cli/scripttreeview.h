#pragma once

#include "core/editorview.h"

#include <QHash>
#include <QObject>
#include <QStringList>

/// The editor window of a `kelvmenu edit` run: a tree freshly built from the document before every
/// operation, with one node selected. It carries out no steps on a tree; it keeps what a user would
/// have been told (a refusal, a message) and the label edit an operation started.
class ScriptTreeView final : public QObject, public EditorView
{
public:
    QObject* viewObject() override { return this; }
    SelectedNode selectedNode() const override { return selected; }
    QString nodeKey(int nodeIndex) const override;
    void applyUpdate(const TreeUpdate& update) override;

    /// Forgets what the previous operation left.
    void clear();

    SelectedNode selected;
    /// The keys of the tree's nodes in the order the tree adds them; node 1 is the root.
    QStringList nodeKeys;
    /// The key of each node's parent node ("Root" under the root).
    QHash<QString, QString> nodeParents;
    /// The exclamation message of a refused operation; empty when nothing was refused.
    QString refusal;
    /// The plain messages shown, in order.
    QStringList messages;
    /// The node whose label an operation started to edit; empty when none.
    QString labelEditKey;
};
