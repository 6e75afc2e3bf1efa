# SPDX-License-Identifier: MIT
# Toolchain file that cross-compiles for macOS on Linux, to check that everything compiles and links. It is
# used by tests/macos/cross.sh, which creates build/apple/sdk. The results cannot be run.
set(sdk ${CMAKE_CURRENT_LIST_DIR}/../build/apple/sdk)
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22)
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
foreach(language C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER ${sdk}/bin/c++)
endforeach()
set(CMAKE_AR ${sdk}/bin/ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${sdk}/bin/ranlib CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL true CACHE FILEPATH "")
set(CMAKE_CROSSCOMPILING_EMULATOR true)

# Keeps CMake from finding the host's own libraries.
set(CMAKE_PREFIX_PATH ${sdk}/packages)
set(CMAKE_FIND_USE_CMAKE_SYSTEM_PATH OFF)
