#pragma once

#include "menufile/menureadresult.h"

#include <QString>
#include <QtGlobal>

struct MenuDocument;
struct Options;

/// Opens the menu file at `path` as document `index`: reads it (with the copy-command detection when
/// the options ask for it), then the document knows its index and its file, counts as saved and
/// starts with the hide mode the options ask for. On failure the document is left partly filled and
/// must be discarded.
MenuReadResult openMenuDocument(const QString& path, const Options& options, qint16 index, MenuDocument& document);

/// Writes `document` to `path`; it then belongs to that file and counts as saved. Throws RunTimeError
/// when the file cannot be written, leaving the document and any earlier file as they were.
void saveMenuDocument(MenuDocument& document, const QString& path);
