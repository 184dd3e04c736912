#pragma once

#include "editing/editcontext.h"

class QObject;
class TreeUpdate;

/// An editor window as the editing session sees it: the selected node of its tree, its nodes by
/// number, and the carrying out of what an operation says the view must do. The editor window
/// implements it, and so do test fakes and the script runner of `kelvmenu edit`.
class EditorView
{
public:
    virtual ~EditorView() = default;

    /// The object whose lifetime is the view's: once it is destroyed the view counts as closed.
    virtual QObject* viewObject() = 0;
    /// The selected node of the tree (an empty key when none is selected).
    virtual SelectedNode selectedNode() const = 0;
    /// The key of node `nodeIndex` (1-based, in the order the nodes were added); empty when there is
    /// no such node.
    virtual QString nodeKey(int nodeIndex) const = 0;
    /// Carries out the steps of `update`, in order. Throws RunTimeError on failure.
    virtual void applyUpdate(const TreeUpdate& update) = 0;
};
