tessarel_test(file_preferences_test
    SOURCES
        ${CMAKE_CURRENT_LIST_DIR}/file_preferences_test.cpp
        ${CMAKE_CURRENT_LIST_DIR}/file_preferences_crash_test.cpp
        ${CMAKE_CURRENT_LIST_DIR}/system_call_tracer.cpp
    USES tessarel_file_preferences)
