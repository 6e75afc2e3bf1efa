# SPDX-License-Identifier: MIT
get_filename_component(sdk ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
if(NOT TARGET nlohmann_json::nlohmann_json)
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
    target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${sdk}/include/json)
endif()
set(nlohmann_json_FOUND TRUE)
