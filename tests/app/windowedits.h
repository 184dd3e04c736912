#pragma once

#include "app/mainwindow.h"
#include "core/editingsession.h"
#include "editing/itemcreation.h"

#include <QString>

namespace WindowEdits {

/// Names item `key` (a top-level item) of document `index` as a label edit in its tree does: through
/// the window's editing session, one undo step. False when the session refused or failed it.
inline bool renameItem(MainWindow& window, qint16 index, const QString& key, const QString& text)
{
    const SelectedNode node = SelectedNode::of(key, SelectedNode::rootKey());
    EditArguments arguments;
    arguments.text = text;
    return window.session().runOn(index, node, EditOperations::beginLabelEdit)
        && window.session().runOn(index, node, EditOperations::storeLabelEdit, arguments);
}

} // namespace WindowEdits
