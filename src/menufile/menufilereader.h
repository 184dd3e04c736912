#pragma once

#include "menureadresult.h"

#include <QByteArray>
#include <QString>

struct MenuDocument;

/// The text the editor shows (critical icon, OK) when a file is not a menu file.
QString notMenuFileMessage(); // "This is not a valid KELV Menu file !"

/// Reads the menu file at `path` into `document` (the caller's newest document slot). Lenient:
/// section tags in any letter case, blank lines ignored, CR LF, LF or CR line ends. On success
/// every item i has key "E" + i and lastIndex is the upper bound of the items; a file holds no
/// copy-command links (opening a menu may derive them afterwards). On failure `document` is left
/// partly filled and must be discarded; no file stays open.
/// Only `items` and `lastIndex` of the document are touched.
MenuReadResult readMenuFile(const QString& path, MenuDocument& document);

/// The same as readMenuFile, on the bytes of a file already in memory.
MenuReadResult readMenuBytes(const QByteArray& bytes, MenuDocument& document);
