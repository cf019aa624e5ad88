# What makes a flaw harder to use, in the build that users get. The checks of the stack and of the C library are for the
# programs and what they are made of: tests aren't optimised, and the C library's need that.
# Tests/Scripts/hardening-test.py reads all of it off the built programs.
function(orvik_harden target)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
        return()
    endif()
    target_compile_options(${target} PRIVATE -fstack-protector-strong -fcf-protection)
    if(NOT WIN32)
        target_compile_options(${target} PRIVATE -fstack-clash-protection -D_FORTIFY_SOURCE=2)
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wformat=2>) # no text of others is a format
    endif()
endfunction()

if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
    return()
endif()
# Addresses differ in each run, no data is run, and the tables of functions are closed before `main`. The compiler for
# Windows has no control flow guard, and takes the stack's protector from a library of its own.
if(WIN32)
    add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va -fstack-protector-strong)
else()
    add_compile_options(-fPIE)
    add_link_options(-pie -Wl,-z,relro,-z,now,-z,noexecstack)
endif()
