# The application frame's core part (program folder, options store, recent list, language
# configuration, about texts): part of kelvcore, Qt Core only.
target_sources(kelvcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/userprompts.h
    ${CMAKE_CURRENT_LIST_DIR}/ansitextfile.h
    ${CMAKE_CURRENT_LIST_DIR}/ansitextfile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/programfolder.h
    ${CMAKE_CURRENT_LIST_DIR}/programfolder.cpp
    ${CMAKE_CURRENT_LIST_DIR}/options.h
    ${CMAKE_CURRENT_LIST_DIR}/options.cpp
    ${CMAKE_CURRENT_LIST_DIR}/optionsstore.h
    ${CMAKE_CURRENT_LIST_DIR}/optionsstore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/recentfilelist.h
    ${CMAKE_CURRENT_LIST_DIR}/recentfilelist.cpp
    ${CMAKE_CURRENT_LIST_DIR}/languageconfig.h
    ${CMAKE_CURRENT_LIST_DIR}/languageconfig.cpp
    ${CMAKE_CURRENT_LIST_DIR}/aboutinfo.h
    ${CMAKE_CURRENT_LIST_DIR}/aboutinfo.cpp
)

# The maker's details shown in the About box and at the end of messages that ask the user to get in
# touch. Set them here (or with -D on the cmake command line) and every message follows.
set(KELV_AUTHOR "KELV Menu Editor developers" CACHE STRING "Author line of the About box")
set(KELV_CONTACT_EMAIL "contact@kelv-editor.org" CACHE STRING "Contact e-mail shown in error messages")
set(KELV_FORUM_URL "https://forum.kelv-editor.org" CACHE STRING "Forum address shown in error messages")
set(KELV_WEB_URL "https://kelv-editor.org" CACHE STRING "Web address of the About box")

# Only the about texts need these, so changing them rebuilds one file.
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/aboutinfo.cpp
    TARGET_DIRECTORY kelvcore
    PROPERTIES COMPILE_DEFINITIONS
    "KELV_VERSION_MAJOR=${PROJECT_VERSION_MAJOR};KELV_VERSION_MINOR=${PROJECT_VERSION_MINOR};KELV_VERSION_PATCH=${PROJECT_VERSION_PATCH};KELV_AUTHOR=\"${KELV_AUTHOR}\";KELV_CONTACT_EMAIL=\"${KELV_CONTACT_EMAIL}\";KELV_FORUM_URL=\"${KELV_FORUM_URL}\";KELV_WEB_URL=\"${KELV_WEB_URL}\""
)
