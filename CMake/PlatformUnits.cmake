# Which units a build compiles is told by their names: "Window.cpp" is shared, "Window_X11.cpp" is the X11 half of it.
# A half is an object library of its own; an executable names exactly one half of each kind, so that a missing half is
# an undefined symbol and a second one a duplicate.
#
#   _Linux, _Windows   follow the operating system
#   _X11, _Windows     follow the desktop
#   _Null              accepts every call and needs no screen
set(ORVIK_HALVES Linux X11 Null Windows)

# Sets `result` to the sources below `folder` that belong to no half.
function(orvik_shared_units result folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/Source/${folder}/*.cpp)
    foreach(half IN LISTS ORVIK_HALVES)
        list(FILTER sources EXCLUDE REGEX "_${half}\\.cpp$")
    endforeach()
    list(FILTER sources EXCLUDE REGEX "/EntryPoint_")
    list(FILTER sources EXCLUDE REGEX "/DescribedTypes\\.cpp$") # linked as an object
    set(${result} ${sources} PARENT_SCOPE)
endfunction()

# Adds the object library `target` from the units of one half below `folders`.
function(orvik_add_half target folders half)
    set(sources)
    foreach(folder IN LISTS folders)
        file(GLOB_RECURSE units CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/Source/${folder}/*_${half}.cpp)
        list(APPEND sources ${units})
    endforeach()
    list(FILTER sources EXCLUDE REGEX "/EntryPoint_")
    if(NOT sources)
        message(FATAL_ERROR "No unit of the half '${half}' below ${folders}.")
    endif()
    add_library(${target} OBJECT ${sources})
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/Source)
    target_link_libraries(${target} PUBLIC OrvikUsage)
    orvik_set_warnings(${target})
endfunction()
