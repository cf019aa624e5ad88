# Address and undefined-behaviour sanitizers for the whole build; a finding ends the program that has it.
option(ORVIK_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(ORVIK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(-g1) # a report only names lines; more would take half of the time to compile
    # g++ 12 wrongly takes the instrumented code of std::regex for uninitialised.
    add_compile_options(-Wno-maybe-uninitialized)
    add_link_options(-fsanitize=address,undefined)
endif()
