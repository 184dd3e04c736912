#pragma once

#include "menufilereader.h"
#include "saveproblem.h"

#include <QList>

struct MenuDocument;

/// Every value that the menu file of `document` could not hold. First what concerns the whole menu:
/// more items than a menu file holds (MenuDocument::maximumItemCount), and a file larger than
/// `sizeLimit` bytes (by default the most the reader takes, maximumMenuFileSize), which could not be
/// opened again; the size is counted, not built. Then, in the order the file would list the items: a
/// caption that begins with the marker character (its markers would be read as
/// levels), a top-level caption "[/Menu]" in any letter case (it would end the list of items), a
/// line break in a caption, an extension or a command text, an "=" in an extension (the file ends
/// the extension at the first "="), and characters that Windows-1252 cannot encode (they would come
/// back as "?"). Only what would be written counts: items the tree walk does not reach are left out,
/// and a copy-command link is checked with its target's commands, which are written in its place.
/// Empty when the file reads back exactly as the document stands.
QList<SaveProblem> findSaveProblems(const MenuDocument& document, qint64 sizeLimit = maximumMenuFileSize);
