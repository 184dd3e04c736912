#pragma once

#include "editoperation.h"

/// Refresh List: rebuilds the tree from the document, hide mode unchanged, and recolours it.
TreeUpdate refreshList(EditContext& context);

/// "... copied": hides copy-command links, or shows them again when they are hidden.
TreeUpdate hideCopies(EditContext& context);
/// "... without command": hides items without commands, or shows them again.
TreeUpdate hideWithoutCommand(EditContext& context);
/// "... both": hides both kinds, or shows every item again.
TreeUpdate hideBoth(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation refreshList { "refresh", EditOperation::Needs::Document,
                                             EditOperation::Recording::Nothing, nullptr, &::refreshList };
inline constexpr EditOperation hideCopies { "hide-copies", EditOperation::Needs::Document,
                                            EditOperation::Recording::Nothing, nullptr, &::hideCopies };
inline constexpr EditOperation hideWithoutCommand { "hide-without-command", EditOperation::Needs::Document,
                                                    EditOperation::Recording::Nothing, nullptr, &::hideWithoutCommand };
inline constexpr EditOperation hideBoth { "hide-both", EditOperation::Needs::Document,
                                          EditOperation::Recording::Nothing, nullptr, &::hideBoth };
} // namespace EditOperations
