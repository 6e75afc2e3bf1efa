# SPDX-License-Identifier: MIT
# tessarel_wayland_protocol(<target> <file.xml>): adds a client of a Wayland protocol to a target. The header
# is <name of the file>-client.h.
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)

function(tessarel_wayland_protocol target description)
    get_filename_component(name ${description} NAME_WE)
    set(header ${CMAKE_CURRENT_BINARY_DIR}/${name}-client.h)
    set(code ${CMAKE_CURRENT_BINARY_DIR}/${name}-client.cpp)
    add_custom_command(OUTPUT ${header} ${code}
        COMMAND ${WAYLAND_SCANNER} client-header ${description} ${header}
        COMMAND ${WAYLAND_SCANNER} private-code ${description} ${code}
        DEPENDS ${description} VERBATIM)
    # clang-tidy needs the headers, and nothing else of a build.
    if(NOT TARGET generated_headers)
        add_custom_target(generated_headers)
    endif()
    add_custom_target(${target}_${name}_header DEPENDS ${header})
    add_dependencies(generated_headers ${target}_${name}_header)
    # The code is C that is also C++, once the header has declared its constants.
    set_source_files_properties(${code} PROPERTIES
        COMPILE_OPTIONS "-include;${header};-w" OBJECT_DEPENDS ${header} SKIP_UNITY_BUILD_INCLUSION ON
        SKIP_PRECOMPILE_HEADERS ON)
    target_sources(${target} PRIVATE ${code} ${header})
    target_include_directories(${target} SYSTEM PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
endfunction()
