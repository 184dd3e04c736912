# The application frame's dialogs for options and help; added to the widget library (kelvgui).
target_sources(kelvgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/optionsdialog.h
    ${CMAKE_CURRENT_LIST_DIR}/optionsdialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/helplauncher.h
    ${CMAKE_CURRENT_LIST_DIR}/helplauncher.cpp
)
