#pragma once

#include "editoperation.h"

#include <QString>
#include <QtGlobal>

struct MenuDocument;

/// Replaces, in `text`, every occurrence of `find` by `replacement`, left to right without overlaps,
/// and returns the number of occurrences counted with overlaps ("aaa" holds "aa" twice, although
/// only one is replaced): that is how the count has always been told. Case-sensitive. Throws
/// RunTimeError 6 when the count does not fit a 16-bit number.
qint16 replaceInText(QString& text, const QString& find, const QString& replacement);

/// Replace on all items: every caption, and the command texts (never the extensions) of every item
/// that holds its own commands; the commands of linked items are left alone. Returns the count.
qint16 replaceInAll(MenuDocument& document, const QString& find, const QString& replacement);

/// Replace in the branch of item `index`: the item itself once, and every item below it twice over,
/// as replacing in a branch has always done (a replacement that contains the text it replaces grows
/// twice below the item, and the second pass counts too). Returns the count. Throws RunTimeError 28
/// for a branch that contains itself.
qint16 replaceInBranch(MenuDocument& document, int index, const QString& find, const QString& replacement);

/// Replace All of the Replace dialog: `arguments.text` by `arguments.replacement`, on every item when
/// `arguments.checked`, else in the selected branch (with the root selected, the whole menu). Tells
/// the count, then rebuilds and recolours the tree.
TreeUpdate replaceText(EditContext& context);
/// Replace needs something to look for.
QString replaceRefusal(const EditContext& context);

namespace EditOperations {
inline constexpr EditOperation replace { "replace", EditOperation::Needs::Document,
                                         EditOperation::Recording::SnapshotBefore, &replaceRefusal, &replaceText };
} // namespace EditOperations
