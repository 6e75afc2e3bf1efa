# SPDX-License-Identifier: MIT
# Qt for macOS, as far as needed to compile and link against it: the headers of this machine's Qt, which are
# the same on every system, and a stub of each library.
get_filename_component(sdk ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
set(_qt_uses_Core "")
set(_qt_uses_Gui Qt6::Core)
set(_qt_uses_Network Qt6::Core)
set(_qt_uses_Widgets Qt6::Gui Qt6::Core)
foreach(component Core Gui ${Qt6_FIND_COMPONENTS})
    if(NOT TARGET Qt6::${component} AND EXISTS ${sdk}/lib/libQt6${component}.tbd)
        string(TOUPPER ${component} macro)
        add_library(Qt6::${component} INTERFACE IMPORTED)
        target_include_directories(Qt6::${component} SYSTEM INTERFACE ${sdk}/include/qt6 ${sdk}/include/qt6/Qt${component})
        target_compile_definitions(Qt6::${component} INTERFACE QT_${macro}_LIB)
        target_link_libraries(Qt6::${component} INTERFACE ${sdk}/lib/libQt6${component}.tbd ${_qt_uses_${component}})
    endif()
endforeach()
set(Qt6_FOUND TRUE)
