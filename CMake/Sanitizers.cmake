# Address and undefined-behaviour sanitizers for the whole build; a finding ends the program that has it.
option(ORVIK_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(ORVIK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(-g1) # a report only names lines; more would take half of the time to compile
    # g++ 12 wrongly takes the instrumented code of std::regex for uninitialised.
    add_compile_options(-Wno-maybe-uninitialized)
    add_link_options(-fsanitize=address,undefined)
endif()

# What a fuzzer needs: the same sanitizers, and counters of what ran. libFuzzer comes with clang.
option(ORVIK_FUZZ "Build for libFuzzer, with the address and undefined-behaviour sanitizers" OFF)
if(ORVIK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g1
        -fsanitize-ignorelist=${CMAKE_SOURCE_DIR}/CMake/FuzzIgnored.txt)
    add_link_options(-fsanitize=address,undefined)
endif()

# The thread sanitizer; it goes with no other.
option(ORVIK_TSAN "Build with the thread sanitizer" OFF)
if(ORVIK_TSAN)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -g1 -O1)
    add_compile_options(-Wno-tsan) # g++ knows no fences there; the C library's are its own
    add_compile_options(-Wno-maybe-uninitialized) # wrong about instrumented code, as above
    add_link_options(-fsanitize=thread)
endif()
