#pragma once

#include "menureadresult.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class FileIdentity;
struct MenuDocument;

/// The text the editor shows (critical icon, OK) when a file is not a menu file.
QString notMenuFileMessage(); // "This is not a valid KELV Menu file !"

/// Where and why reading the file at `path` failed, as `FILE:LINE: reason` or `FILE: reason`
/// ("menu.ini:14: command line has no \"=\"", "menu.ini: does not exist").
QString readFailureText(const QString& path, const MenuReadResult& result);

/// The largest file the reader takes for a menu file: 256 MiB. The largest menu holds 32,767 items;
/// this leaves every one of them 8 KiB, room for a long caption and a few commands of 2,000
/// characters each, while the largest menus the benchmarks build (32,767 items with several commands
/// each) take 7 to 17 MB. A file beyond it is refused before it is read, so that a wrong file cannot
/// fill the memory.
constexpr qint64 maximumMenuFileSize = qint64(256) * 1024 * 1024;

/// Reads the menu file at `path` into `document` (the caller's newest document slot). Lenient:
/// section tags in any letter case, blank lines ignored, CR LF, LF or CR line ends. On success
/// every item i has key "E" + i and lastIndex is the upper bound of the items; a file holds no
/// copy-command links (opening a menu may derive them afterwards). On failure `document` is left
/// partly filled and must be discarded; no file stays open.
/// Only `items` and `lastIndex` of the document are touched. When `identity` is given and the file was
/// read, it receives the identity of the file taken from the very bytes read. The file is read a piece
/// at a time as its lines are taken, never all at once, and always to its end; it is refused as
/// readMenuFileBytes refuses it.
MenuReadResult readMenuFile(const QString& path, MenuDocument& document, FileIdentity* identity = nullptr);

/// The same as readMenuFile, on the bytes of a file already in memory.
MenuReadResult readMenuBytes(const QByteArray& bytes, MenuDocument& document);

/// The whole file at `path` into `bytes`. Refuses a path with no
/// file, a folder, anything that is not a regular file (a pipe would wait for a writer for ever, a
/// device such as /dev/zero never ends) and a file larger than maximumMenuFileSize, without reading
/// from it; the result then says why (the reader's result codes). No file stays open. When `identity`
/// is given and the bytes were read, it receives the identity of the file they came from (its length,
/// time and inode as the open file had them, and the hash of these bytes): the file is read once.
MenuReadResult readMenuFileBytes(const QString& path, QByteArray& bytes, FileIdentity* identity = nullptr);
