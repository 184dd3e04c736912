#pragma once

#include "editoperation.h"

/// The copy-command check box of the selected item (`arguments.checked`): switches its link on or
/// off and shows the item again. Switching on needs a target chosen before ("Select an item to copy
/// command before !"); switching off keeps the target, so switching on again needs no new choice.
/// Records no undo state.
TreeUpdate switchLink(EditContext& context);

/// The refusal of a link-target choice: the target must not be a link itself, nor the item whose
/// link is being set.
QString linkTargetRefusal(const EditContext& context);

/// A click on `arguments.targetKey` while the link target of `arguments.sourceKey` is being chosen:
/// the source links to the target, the choice ends and the source is shown with the target's
/// commands.
TreeUpdate chooseLinkTarget(EditContext& context);

/// Following the selected item's link (a double click on the target's index): selects and shows the
/// target. Nothing happens for an item whose link is off.
TreeUpdate followLink(EditContext& context);

/// Starts or ends choosing a link target (the Edit menu's "Select an item to copy").
TreeUpdate toggleLinkTargetChoice(EditContext& context);

/// Look for CopyCommand: every group of items with identical commands becomes links to its first
/// member. Records no undo state.
TreeUpdate lookForCopyCommand(EditContext& context);

/// Uncheck all CopyCommand: switches every link off; each item keeps its target for later. Records no
/// undo state.
TreeUpdate uncheckAllCopyCommand(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation switchLink { "link-switch", EditOperation::Needs::ItemNode,
                                            EditOperation::Recording::Nothing, nullptr, &::switchLink };
inline constexpr EditOperation chooseLinkTarget { "link", EditOperation::Needs::Document,
                                                  EditOperation::Recording::SnapshotBefore, &linkTargetRefusal,
                                                  &::chooseLinkTarget };
inline constexpr EditOperation followLink { "follow-link", EditOperation::Needs::ItemNode,
                                            EditOperation::Recording::Nothing, nullptr, &::followLink };
inline constexpr EditOperation selectCopy { "select-copy", EditOperation::Needs::Document,
                                            EditOperation::Recording::Nothing, nullptr, &toggleLinkTargetChoice };
inline constexpr EditOperation lookForCopyCommand { "look-for-links", EditOperation::Needs::Document,
                                                    EditOperation::Recording::Nothing, nullptr, &::lookForCopyCommand };
inline constexpr EditOperation uncheckAllCopyCommand { "uncheck-links", EditOperation::Needs::Document,
                                                       EditOperation::Recording::Nothing, nullptr,
                                                       &::uncheckAllCopyCommand };
} // namespace EditOperations
