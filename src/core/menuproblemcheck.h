#pragma once

#include "menufile/menureadresult.h"
#include "menuproblem.h"
#include "model/menudocument.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// What checking a menu file gave: how reading it went, the menu read (without copy-command link
/// detection, so every item holds the commands the file stores for it) and its problems, each with
/// its line. When the file cannot be read, `problems` is empty and `read` says why.
struct MenuFileCheck
{
    MenuReadResult read;
    MenuDocument document;
    QList<MenuProblem> problems;
};

/// Finds what in a menu would trip the shell extension or looks like a slip, before the menu meets
/// the file manager. Changes nothing.
namespace MenuProblems {

/// The problems of a document, as it would be saved: items in the order of the file (numbered as
/// the [Commands] section numbers them), each with its item problems (empty caption, same caption as
/// an earlier sibling) and then the problems of the commands written for it. A copy-command link's
/// own hidden commands are not checked; the commands it writes are checked at the item they come
/// from. Items the file would not hold are left out. Problems carry no line.
QList<MenuProblem> checkDocument(const MenuDocument& document);

/// The problems of a menu file's bytes, in line order: those of checkDocument on the menu as read,
/// numbered by the file's own item lines, and those of the lines themselves that reading smooths
/// over (item lines two or more levels deeper than the one before, stray markers).
MenuFileCheck checkFileBytes(const QByteArray& bytes);

/// checkFileBytes on the file at `path`; a file that cannot be opened or read is told in `read`
/// exactly as readMenuFile tells it.
MenuFileCheck checkFile(const QString& path);

} // namespace MenuProblems
