#pragma once

#include "menufile/menureadresult.h"

#include <QByteArray>
#include <QString>

class FileIdentity;
struct MenuDocument;

/// Reads the menu file at `path` into `document` as the editor opens a menu: the file is read, and
/// with `detectCopies` (the "check copy commands" option) every item whose commands equal those of
/// an earlier item becomes a copy-command link to it. The result is the reader's; a failure of the
/// detection (which a readable file cannot cause) is a failed read. On success `identity`, when given,
/// receives the identity of the file read (FileIdentity), for a later Save to check.
MenuReadResult openMenuFile(const QString& path, bool detectCopies, MenuDocument& document,
                            FileIdentity* identity = nullptr);

/// The same on the bytes of a menu file already in memory.
MenuReadResult openMenuBytes(const QByteArray& bytes, bool detectCopies, MenuDocument& document);
