# Address and undefined-behaviour sanitizers for the whole build; a finding ends the program that has it.
option(ORVIK_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(ORVIK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(-g1) # lines are what a report names; all else takes half of the time to compile
    # The instrumented code of std::regex looks uninitialised to g++ 12, and isn't.
    add_compile_options(-Wno-maybe-uninitialized)
    add_link_options(-fsanitize=address,undefined)
endif()
