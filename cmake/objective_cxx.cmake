# SPDX-License-Identifier: MIT
# Compiles the Objective-C++ sources of the macOS back end on Linux, for the tests. They are compiled by
# clang, with the GNU Objective-C runtime and GNUstep's Foundation, even where another compiler builds
# everything else.
find_program(TESSAREL_CLANGXX NAMES clang++)
find_program(GNUSTEP_CONFIG gnustep-config)
find_program(LLVM_CONFIG llvm-config)
find_program(LLVM_NM llvm-nm)
find_library(BLOCKS_RUNTIME BlocksRuntime)
find_library(GNUSTEP_BASE gnustep-base)
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE GCC_INCLUDE OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
execute_process(COMMAND gcc -print-file-name=libobjc.so OUTPUT_VARIABLE GNU_OBJC OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
set(OBJECTIVE_CXX_MISSING "")
foreach(part TESSAREL_CLANGXX GNUSTEP_CONFIG LLVM_CONFIG LLVM_NM BLOCKS_RUNTIME GNUSTEP_BASE)
    if(NOT ${part})
        list(APPEND OBJECTIVE_CXX_MISSING ${part})
    endif()
endforeach()
if(NOT EXISTS "${GCC_INCLUDE}/objc/objc.h" OR NOT EXISTS "${GNU_OBJC}")
    list(APPEND OBJECTIVE_CXX_MISSING libobjc)
endif()
if(OBJECTIVE_CXX_MISSING)
    message(FATAL_ERROR "The tests of the macOS back end cannot be built. Missing: "
        "${OBJECTIVE_CXX_MISSING}. Install all of it with: script/bootstrap test")
endif()
execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=GNUSTEP_SYSTEM_HEADERS OUTPUT_VARIABLE GNUSTEP_INCLUDE OUTPUT_STRIP_TRAILING_WHITESPACE)

# Links to the headers of the Objective-C runtime. They are in a folder with gcc's own headers, which clang
# cannot use. GNUstep also includes <objc/blocks_runtime.h> under clang, which gcc's runtime does not have.
set(OBJC_INCLUDE ${CMAKE_BINARY_DIR}/objc)
file(GLOB OBJC_HEADERS ${GCC_INCLUDE}/objc/*.h)
file(MAKE_DIRECTORY ${OBJC_INCLUDE}/objc)
foreach(header ${OBJC_HEADERS})
    get_filename_component(header_name ${header} NAME)
    file(CREATE_LINK ${header} ${OBJC_INCLUDE}/objc/${header_name} SYMBOLIC)
endforeach()
file(CONFIGURE OUTPUT ${OBJC_INCLUDE}/objc/blocks_runtime.h CONTENT "#pragma once\n#include <Block.h>\n")

set(OBJECTIVE_CXX_FLAGS
    -x objective-c++ -std=c++20 -g1 -fblocks -fobjc-runtime=gcc -fno-objc-exceptions
    -fconstant-string-class=NSConstantString -DGNUSTEP -DGNUSTEP_BASE_LIBRARY=1
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    -isystem ${OBJC_INCLUDE} -isystem ${GNUSTEP_INCLUDE})
if(TESSAREL_WARNINGS_ARE_ERRORS)
    list(APPEND OBJECTIVE_CXX_FLAGS -Werror)
endif()
separate_arguments(GIVEN_FLAGS UNIX_COMMAND "${CMAKE_CXX_FLAGS}")
list(APPEND OBJECTIVE_CXX_FLAGS ${GIVEN_FLAGS})
if(TESSAREL_SANITIZE)
    list(APPEND OBJECTIVE_CXX_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined
         -fno-omit-frame-pointer)
endif()

# objective_cxx_objects(<variable> <source...>): compiles the sources of one folder and appends the object files
# to <variable>.
function(objective_cxx_objects variable)
    set(objects ${${variable}})
    tessarel_batch(sources ${ARGN})
    foreach(source ${sources})
        get_filename_component(name ${source} NAME)
        set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.o)
        add_custom_command(OUTPUT ${object}
            COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${TESSAREL_CLANGXX} ${OBJECTIVE_CXX_FLAGS}
                    -I${PROJECT_SOURCE_DIR}/src -I${PROJECT_SOURCE_DIR}/tests
                    -isystem ${PROJECT_SOURCE_DIR}/tests/macos/sdk
                    -MD -MF ${object}.d -MT ${object} -c ${source} -o ${object}
            DEPENDS ${source} DEPFILE ${object}.d
            COMMENT "Building Objective-C++ object ${name}.o"
            COMMAND_EXPAND_LISTS VERBATIM)
        list(APPEND objects ${object})
    endforeach()
    set(${variable} ${objects} PARENT_SCOPE)
endfunction()
