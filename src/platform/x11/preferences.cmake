# Needs no X: a target of its own.
tessarel_library(tessarel_file_preferences
    SOURCES
        ${CMAKE_CURRENT_LIST_DIR}/document_file.cpp
        ${CMAKE_CURRENT_LIST_DIR}/file_preferences.cpp
    SEES tessarel_model)
