# One list of warnings for every target of ours, and every warning is an error.
function(orvik_set_warnings target)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang") # builds for the fuzzer alone: g++ has warned about the same files
        return()
    endif()
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic
        -Wconversion        # sizes and coordinates change their width often here; each change is written out
        -Wshadow            # a hidden field reads like the field
        -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
        -Werror)
    # Files that are compiled together are included, and g++ takes what they include for headers.
    get_target_property(is_unity ${target} UNITY_BUILD)
    if(is_unity)
        target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
endfunction()
