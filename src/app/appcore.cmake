target_sources(kelvcore PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/userprompts.h
)
