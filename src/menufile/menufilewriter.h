#pragma once

#include <QByteArray>
#include <QString>

struct MenuDocument;

/// The document in the one fixed layout of a menu file: Windows-1252, CR LF, three middle-dot
/// markers per level (a top-level item with an empty caption gets a single marker, so that its line
/// is not empty), items in tree pre-order, item numbers of at least four digits, and each
/// copy-command link written as its target's commands.
QByteArray menuFileBytes(const MenuDocument& document);

/// Writes menuFileBytes(document) to `path`, replacing the file. The write goes to a temporary file
/// that replaces the old one only once complete, so a failed write leaves the previous file exactly
/// as it was. Throws RunTimeError (number, description, source "writeMenuFile") on failure.
void writeMenuFile(const MenuDocument& document, const QString& path);
