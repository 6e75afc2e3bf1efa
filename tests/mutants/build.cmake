# SPDX-License-Identifier: MIT
# Included in the project by script/mutants. Compiles the tests as unity builds, because they never change,
# and the product's sources one by one, because each fault changes one of them.
function(compile_in_batches folder)
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
        get_target_property(is_chosen ${target} UNITY_BUILD)
        if(is_chosen STREQUAL "is_chosen-NOTFOUND")
            set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
        endif()
    endforeach()
    get_property(folders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    foreach(child ${folders})
        compile_in_batches(${child})
    endforeach()
endfunction()
cmake_language(DEFER CALL compile_in_batches "${CMAKE_SOURCE_DIR}/tests")
