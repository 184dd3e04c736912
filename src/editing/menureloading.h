#pragma once

#include "editoperation.h"

/// Reload: the menu of the editor window becomes the menu its file holds now (given in
/// `fileDocument`, read just before), and counts as saved; the window keeps its hide mode and never
/// gives out a key again that it gave out before. The tree is rebuilt. One undo step: Undo brings
/// back the menu as it was, unsaved.
TreeUpdate reloadMenu(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation reloadMenu { "reload", EditOperation::Needs::Document,
                                            EditOperation::Recording::SnapshotBeforeUnsaved, nullptr, &::reloadMenu };
} // namespace EditOperations
