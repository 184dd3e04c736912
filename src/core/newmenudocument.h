#pragma once

#include <QtGlobal>

struct MenuDocument;

/// The document of a new, never saved menu with index `documentIndex`: one top-level item
/// "New Item 1" with key "E0" and no commands, nothing hidden, no file, not saved.
MenuDocument newMenuDocument(qint16 documentIndex);
