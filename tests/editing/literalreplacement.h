#pragma once

#include <QString>
#include <QtGlobal>

struct MenuDocument;

/// Plain, step-by-step versions of Replace All: the occurrences are counted by trying every position
/// in turn, the replacement is built character by character, and every level of a branch scans the
/// whole item array for the children of its item. Slow on large menus but easy to check by eye; the
/// tests hold the editor's replacement to exactly the texts and counts these produce.
namespace LiteralReplacement {

qint16 replaceInText(QString& text, const QString& find, const QString& replacement);
qint16 replaceInAll(MenuDocument& document, const QString& find, const QString& replacement);
qint16 replaceInBranch(MenuDocument& document, int index, const QString& find, const QString& replacement);

} // namespace LiteralReplacement
