#pragma once

#include <QByteArray>
#include <QString>

class FileIdentity;
struct Command;
struct MenuDocument;

/// The document in the one fixed layout of a menu file: Windows-1252, CR LF, three middle-dot
/// markers per level (a top-level item with an empty caption gets a single marker, so that its line
/// is not empty), items in tree pre-order, item numbers of at least four digits, and each
/// copy-command link written as its target's commands.
QByteArray menuFileBytes(const MenuDocument& document);

/// The exact length of menuFileBytes(document), found without building the bytes, so that a menu
/// whose file would be too large to open again is refused before hundreds of megabytes are put
/// together. Unlike the writer it also measures a menu of more than 32,767 items (as the writer would
/// number them). Throws RunTimeError 9 for a link that names no item, as the writer does.
qint64 menuFileSize(const MenuDocument& document);

/// The parts of that length, for checks that walk the tree themselves: the fixed lines of every menu
/// file, the line of an item at `depth` with `caption`, and a command line of item number `number`,
/// each with its line end.
qint64 menuFileFixedSize();
qint64 menuFileItemLineSize(qint32 depth, const QString& caption);
qint64 menuFileCommandLineSize(qint32 number, const Command& command);

/// Writes menuFileBytes(document) to `path`, replacing the file (for a symbolic link, the file it
/// leads to). The bytes go to a new file beside it, which is flushed to the disk and then renamed over
/// the old one, so a failed write, a full disk or a failed flush leaves the previous file exactly as it
/// was, and no new file behind. The new file keeps the old one's permission bits and, as far as the
/// process may give them, its owner and group. A write-protected file is refused. Throws RunTimeError
/// (number, description, source "writeMenuFile") on failure; a folder that cannot be written is named
/// in it. When `identity` is given it receives the identity of the file written.
void writeMenuFile(const MenuDocument& document, const QString& path, FileIdentity* identity = nullptr);

/// The second half of writeMenuFile: writes `bytes`, which menuFileBytes built, to `path` the same
/// way. For a writer that lets go of the document as soon as its bytes are built.
void writeMenuFileBytes(const QByteArray& bytes, const QString& path, FileIdentity* identity = nullptr);
