#pragma once

/// Which entries of the Edit menu, and of the File and Window menus, can be used, decided in one
/// place from what the active editor window shows and from which editor windows are open.
struct EditMenuState
{
    /// What the rule is decided from.
    struct Input
    {
        /// An editor window is active.
        bool editorActive = false;
        /// At least one editor window is open (the active one or another).
        bool editorOpen = false;
        /// Its tree's selected node stands for an item (not the root, not none).
        bool itemSelected = false;
        /// Its tree's selected node is the root node.
        bool rootSelected = false;
        /// Copy or Cut has filled the clipboard at least once.
        bool clipboardFilled = false;
        /// An editor window is choosing a link target: only clicks on nodes and the button that ends
        /// the choice are open then, so the File, Edit, Window and Help menus are off.
        bool choosingLinkTarget = false;
    };

    /// The File, Edit, Window and Help menus with their entries and shortcuts.
    bool menus = true;
    /// New Item, Rename, Delete, Cut, Copy, Duplicate, Special items: an item must be selected.
    bool itemEntries = false;
    /// New Sub-item: a node must be selected, the root too (the new item is then a top-level one).
    bool newSubItem = false;
    /// Move into the item above, Move out of the parent: an item must be selected, as for Move up and
    /// Move down; where there is no item above or no parent they do nothing.
    bool nestingEntries = false;
    /// Paste: off until the first Copy or Cut, then never off again (but with the menus).
    bool paste = false;
    /// Replace, Look for CopyCommand, Uncheck all CopyCommand, Refresh List, Hide items: a document.
    bool documentEntries = false;
    /// Select an item to copy: an item must be selected.
    bool selectCopy = false;
    /// Save as ... and Close of the File menu: they act on the active editor window.
    bool windowEntries = false;
    /// Cascade, Tile Hozizontal and Tile Vertical: there must be editor windows to arrange.
    bool arrangeEntries = false;

    static EditMenuState decide(const Input& input);

    friend bool operator==(const EditMenuState& left, const EditMenuState& right)
    {
        return left.menus == right.menus && left.itemEntries == right.itemEntries && left.newSubItem == right.newSubItem
            && left.nestingEntries == right.nestingEntries && left.paste == right.paste
            && left.documentEntries == right.documentEntries && left.selectCopy == right.selectCopy
            && left.windowEntries == right.windowEntries && left.arrangeEntries == right.arrangeEntries;
    }
};
