#pragma once

#include <QString>

/// One operation of a `kelvmenu edit` script: the JSON object of the OPS array, checked and read.
/// Which fields an operation carries is told by its name (see EditScriptParser).
struct ScriptOperation
{
    /// The operation's name, e.g. "new-item".
    QString op;
    /// The key of the item whose node is the selected node when the operation runs.
    QString key;
    /// The label typed after New Item (when hasCaption), or the new caption of Rename.
    QString caption;
    bool hasCaption = false;
    /// The item clicked as the link target, or the node a branch is dropped on ("Root" too).
    QString target;
    /// Where a dropped branch goes: "child" or "next".
    QString place;
    /// Whether a dropped branch is copied rather than moved.
    bool copy = false;
    /// What Replace looks for and what it puts in its place.
    QString find;
    QString replacement;
    /// A command's extension filter and its text in the stored form (lines joined by "||").
    QString extension;
    QString command;
    /// The command's slot among the item's commands, from 1.
    int slot = 0;
};
