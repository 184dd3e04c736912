#include "editmenustate.h"

EditMenuState EditMenuState::decide(const Input& input)
{
    EditMenuState state;
    state.menus = !input.choosingLinkTarget;
    const bool open = state.menus;
    state.itemEntries = open && input.editorActive && input.itemSelected;
    state.newSubItem = open && input.editorActive && (input.itemSelected || input.rootSelected);
    state.nestingEntries = state.itemEntries;
    state.paste = open && input.clipboardFilled;
    state.documentEntries = open && input.editorActive;
    state.selectCopy = state.itemEntries;
    state.windowEntries = open && input.editorActive;
    // The active window is one of the open ones, even before the list of open windows knows it.
    state.arrangeEntries = open && (input.editorOpen || input.editorActive);
    return state;
}
