#pragma once

#include "model/menuitem.h"

#include <QString>

#include <memory>
#include <optional>

struct MenuDocument;

/// The node of the item tree that an operation acts on: the selected node of the editor window's
/// tree (or, in a script, the node with the given key in a tree freshly built from the document).
struct SelectedNode
{
    /// The node's key; "Root" for the root node, empty when no node is selected.
    QString key;
    /// The key of its parent node; "Root" for a node directly under the root, empty for the root.
    QString parentKey;
    /// The keys of the sibling nodes just before and after it; empty at either end.
    QString previousSiblingKey;
    QString nextSiblingKey;

    static QString rootKey() { return QStringLiteral("Root"); }

    /// The node `key` under the node `parentKey`, without neighbours.
    static SelectedNode of(const QString& key, const QString& parentKey = QString())
    {
        SelectedNode node;
        node.key = key;
        node.parentKey = parentKey;
        return node;
    }

    bool isNone() const { return key.isEmpty(); }
    bool isRoot() const { return key == rootKey(); }
    /// A node that stands for an item: neither no node nor the root.
    bool isItem() const { return !isNone() && !isRoot(); }
};

/// What an operation is given besides the selected node: the text of a confirmed label edit, the
/// clicked node of a link-target choice, the state of the copy-command check box.
struct EditArguments
{
    /// The text of a confirmed label edit, or the text Replace looks for.
    QString text;
    /// What Replace puts in its place.
    QString replacement;
    /// The extension filter of a command being stored.
    QString extension;
    /// The command slot (1-based) an operation works on; 0 for a new command, or for no line
    /// selected in the command list.
    int slot = 0;
    /// The item whose link is being set (the node last chosen by a plain click).
    QString sourceKey;
    /// The node clicked as the link target.
    QString targetKey;
    /// The copy-command check box; Replace's "Replace on all items".
    bool checked = false;
    /// The menu as its file holds it now, read just before (Reload).
    std::shared_ptr<const MenuDocument> fileDocument;
};

/// A node being dragged from one editor window's tree to a tree, and the choices of the drop menu.
struct DragState
{
    enum class Button { None, Left, Right };

    /// The key of the node being dragged.
    QString nodeKey;
    /// The document index of the window where the drag started.
    qint16 document = 0;
    Button button = Button::None;
    /// True from the start of a node drag until its drop has been handled.
    bool active = false;
    /// The drop inserts the branch as a child of the target node ("Insert as subitem of").
    bool dropAsChild = false;
    /// The drop inserts the branch beside the target node ("Insert next to").
    bool dropAsSibling = false;
    /// Copy the branch rather than move it.
    bool dropCopy = false;
    /// True while the drop menu is open; any choice clears it.
    bool dropCancelled = false;
};

/// The editing state that lives for the whole run and is shared by every editor window.
struct EditingState
{
    /// Whether the label edit that starts next records an undo snapshot when it ends. Creating an
    /// item clears it, so that naming the new item is part of the same undo step.
    bool snapshotNextLabelEdit = true;
    /// The "CopyCommand at Duplication" check mark.
    bool copyCommandDup = false;
    /// The item record last copied or cut, with its own copy of the commands; shared by every
    /// window (the system clipboard is not used). Empty until the first Copy or Cut.
    std::optional<MenuItem> clipboardItem;
    DragState drag;
};

/// The editing state of one editor window.
struct WindowEditingState
{
    /// Set by every plain node click and never cleared. While it is false, switching the
    /// copy-command check box recolours the whole tree.
    bool nodeClicked = false;
    /// The tree's tag: carries snapshotNextLabelEdit from the start of a label edit to its end.
    bool labelEditTag = false;
    /// On while the window's link-target button is pressed: a click on a node chooses the target.
    bool linkTargetChoice = false;
};

/// Everything an editing operation works on.
struct EditContext
{
    MenuDocument& document;
    SelectedNode selected;
    EditArguments arguments;
    EditingState& editing;
    WindowEditingState& window;
};
