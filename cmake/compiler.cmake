# SPDX-License-Identifier: MIT
# Compile options of every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Without the variable, ccache caches nothing that uses precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor
                    -Wold-style-cast -Woverloaded-virtual)
if(TESSAREL_WARNINGS_ARE_ERRORS AND NOT APPLE) # versions that were not tested may add warnings
    add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-Wshadow -Wnull-dereference) # gcc reports false positives in inlined library code
else()
    add_compile_options(-Wshadow=local) # -Wshadow would reject constructor parameters named like fields
    add_compile_options(-Wno-restrict)  # gcc 12 reports false positives in inlined library code
endif()
if(TESSAREL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(_GLIBCXX_ASSERTIONS) # aborts on an empty optional, an index out of range
endif()

if(TESSAREL_HARDEN AND NOT APPLE)
    include(CheckCXXCompilerFlag)
    # Some systems' compilers define _FORTIFY_SOURCE themselves, and warn of another definition.
    add_compile_options(-fstack-protector-strong "SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2"
                        -Werror=format-security)
    foreach(flag fstack-clash-protection fcf-protection) # the second one for x86 only
        check_cxx_compiler_flag(-${flag} TESSAREL_HAS_${flag})
        if(TESSAREL_HAS_${flag})
            add_compile_options(-${flag})
        endif()
    endforeach()
    add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()

if(TESSAREL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# tessarel_batch(<variable> <source...>): in unity builds sets <variable> to one source that includes those of a
# folder, else to the sources. CMake batches Objective-C++ by itself only from version 3.29 on.
function(tessarel_batch variable)
    set(sources "")
    set(includes "")
    foreach(source ${ARGN})
        get_filename_component(source ${source} ABSOLUTE)
        list(APPEND sources ${source})
        string(APPEND includes "#include \"${source}\"\n")
    endforeach()
    if(CMAKE_UNITY_BUILD)
        list(GET sources 0 first)
        get_filename_component(folder ${first} DIRECTORY)
        get_filename_component(folder ${folder} NAME)
        set(sources ${CMAKE_CURRENT_BINARY_DIR}/${folder}_batch.mm)
        file(CONFIGURE OUTPUT ${sources} CONTENT "${includes}" @ONLY)
    endif()
    set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# tessarel_seen_qt(<variable> <target...>): sets <variable> to the libraries of Qt whose headers the sources of the
# targets may include.
function(tessarel_seen_qt variable)
    set(seen "")
    foreach(target ${ARGN})
        if(target MATCHES "^Qt6::")
            list(APPEND seen ${target})
        elseif(TARGET ${target})
            get_target_property(targets ${target} INTERFACE_LINK_LIBRARIES)
            tessarel_seen_qt(more ${targets})
            list(APPEND seen ${more})
        endif()
    endforeach()
    set(${variable} ${seen} PARENT_SCOPE)
endfunction()

# tessarel_share_headers(<name>): gives a target those of the build's precompiled headers that suit its options. gcc
# rejects headers that were compiled with other options, such as Qt's; src/CMakeLists.txt defines these headers.
function(tessarel_share_headers name)
    set(shared "")
    get_target_property(libraries ${name} LINK_LIBRARIES)
    tessarel_seen_qt(qt ${libraries})
    if(TARGET tessarel_library_headers)
        set(shared tessarel_library_headers)
    elseif(NOT qt)
        set(shared tessarel_plain_headers)
    elseif(Qt6::Widgets IN_LIST qt)
        set(shared tessarel_widget_headers)
    endif()
    if(TARGET "${shared}")
        target_precompile_headers(${name} REUSE_FROM ${shared})
    endif()
endfunction()

# Adds the library of one folder of src/, linked only to the targets that its sources may include:
#   tessarel_library(<name> SOURCES <files...> [SEES <targets...>] [USES <targets...>])
# SEES lists public dependencies (included by its headers), USES private ones (included by its sources only).
# Without SOURCES the library is header-only.
function(tessarel_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;SEES;USES" ${ARGN})
    if(ARG_SOURCES)
        add_library(${name} STATIC ${ARG_SOURCES})
        target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
        target_link_libraries(${name} PUBLIC ${ARG_SEES} PRIVATE ${ARG_USES})
        tessarel_share_headers(${name})
    else()
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
        target_link_libraries(${name} INTERFACE ${ARG_SEES})
    endif()
endfunction()
