# Tests of the options, recent list, configuration and help.
kelv_add_test(test_ansitextfile SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_ansitextfile.cpp)
kelv_add_test(test_programfolder SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_programfolder.cpp)
kelv_add_test(test_optionsstore SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_optionsstore.cpp)
kelv_add_test(test_recentfilelist SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_recentfilelist.cpp)
kelv_add_test(test_languageconfig SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_languageconfig.cpp)
# Where Config.ini and languages/ are kept in the sources, to check the files that are shipped.
target_compile_definitions(test_languageconfig PRIVATE KELV_RUNTIME_FILES_DIR="${PROJECT_SOURCE_DIR}")

kelv_add_test(test_aboutinfo SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_aboutinfo.cpp)
# The expected texts come from the same build settings as the program's own.
target_compile_definitions(test_aboutinfo PRIVATE
    KELV_EXPECTED_VERSION="${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}"
    KELV_EXPECTED_AUTHOR="${KELV_AUTHOR}"
    KELV_EXPECTED_CONTACT_EMAIL="${KELV_CONTACT_EMAIL}"
    KELV_EXPECTED_FORUM_URL="${KELV_FORUM_URL}"
    KELV_EXPECTED_WEB_URL="${KELV_WEB_URL}")

# The options dialog and the help launcher belong to the widget library; their tests build them
# directly so that they do not wait for the rest of the windows.
kelv_add_test(test_optionsdialog
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_optionsdialog.cpp
            ${PROJECT_SOURCE_DIR}/src/app/optionsdialog.cpp ${PROJECT_SOURCE_DIR}/src/app/optionsdialog.h
    LIBRARIES Qt6::Widgets)
kelv_add_test(test_helplauncher
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_helplauncher.cpp ${CMAKE_CURRENT_LIST_DIR}/recordedprompts.h
            ${PROJECT_SOURCE_DIR}/src/app/helplauncher.cpp ${PROJECT_SOURCE_DIR}/src/app/helplauncher.h)
