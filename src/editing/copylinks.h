#pragma once

struct MenuDocument;

/// True when items i and j both hold their own commands (no active link), the same number of
/// them, at least one, and every command equal in extension and text (exact, case-sensitive).
bool sameCommands(const MenuDocument& document, int i, int j);

/// Makes the copy-command links canonical: every link is first dissolved into an own copy of its
/// target's commands, then every item whose non-empty command list equals that of an earlier
/// item is linked to the earliest such item. Throws RunTimeError 9 for a link naming no item.
void normalizeCopyLinks(MenuDocument& document);
