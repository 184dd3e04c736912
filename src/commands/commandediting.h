#pragma once

#include "editing/editoperation.h"

/// The command editor's store (Add or Edit): the selected item's command at `arguments.slot` (0
/// appends a new one) becomes `arguments.extension` with the stored command text `arguments.text`,
/// both exactly as given. The undo snapshot is recorded after the command is written, as the command
/// editor has always done. The item is shown again.
TreeUpdate storeCommand(EditContext& context);

/// Remove: the selected item's own command at `arguments.slot` goes, the later ones moving up a slot
/// (no slot: nothing goes, yet the snapshot is recorded). An item left without commands is painted
/// navy when it has children, black otherwise.
TreeUpdate removeCommand(EditContext& context);

/// Clear: every own command of the selected item goes; its node is painted as after Remove.
TreeUpdate clearCommands(EditContext& context);

/// A slot that names no command of the item is refused.
QString commandSlotRefusal(const EditContext& context);

/// Special items: the selected node's text becomes `arguments.text` ("$audiostream$",
/// "$subtitlestream$" or "$selectedfile$"). Only the node's text changes: the item's caption stays
/// as it was until the label is edited, and nothing is recorded.
TreeUpdate markSpecialItem(EditContext& context);

namespace EditOperations {
inline constexpr EditOperation storeCommand { "store-command",
                                              EditOperation::Needs::ItemNode,
                                              EditOperation::Recording::SnapshotAfter,
                                              &commandSlotRefusal,
                                              &::storeCommand,
                                              nullptr,
                                              nullptr,
                                              false };
inline constexpr EditOperation removeCommand { "remove-command", EditOperation::Needs::ItemNode,
                                               EditOperation::Recording::SnapshotBefore, &commandSlotRefusal,
                                               &::removeCommand };
inline constexpr EditOperation clearCommands { "clear-commands", EditOperation::Needs::ItemNode,
                                               EditOperation::Recording::SnapshotBefore, nullptr, &::clearCommands };
inline constexpr EditOperation specialItem { "special-item", EditOperation::Needs::ItemNode,
                                             EditOperation::Recording::Nothing, nullptr, &markSpecialItem };
} // namespace EditOperations
