#include "editmenustate.h"

EditMenuState EditMenuState::decide(const Input& input)
{
    EditMenuState state;
    state.menus = !input.choosingLinkTarget;
    const bool open = state.menus;
    state.itemEntries = open && input.editorActive && input.itemSelected;
    state.paste = open && input.clipboardFilled;
    state.documentEntries = open && input.editorActive;
    state.selectCopy = state.itemEntries;
    return state;
}
