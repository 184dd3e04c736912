#pragma once

#include <QtGlobal>

struct MenuDocument;

/// The check every operation that adds items runs before it changes anything: `added` new items
/// must fit both into the item count and into the key counter of `document`. A menu file numbers its
/// items with 16-bit numbers, so a menu of more than MenuDocument::maximumItemCount items could be
/// saved no more and opened no more; each new item also takes the next key number, which is 16-bit
/// too. When either would overflow, throws RunTimeError 6 (Overflow) with `source`, the operation's
/// name, so that the operation takes the error path of editing operations with the document as it was.
void ensureRoomForNewItems(const MenuDocument& document, qint64 added, const char* source);
