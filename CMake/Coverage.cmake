# Counts which lines run. `./test coverage` builds with it and prints the count.
option(ORVIK_COVERAGE "Count the lines that run" OFF)
if(ORVIK_COVERAGE)
    add_compile_options(--coverage -O0 -fprofile-update=atomic)
    add_link_options(--coverage)
    # The counters are written when a process ends by itself. Much of what is tested ends in other ways.
    add_library(OrvikCoverage STATIC ${CMAKE_SOURCE_DIR}/Tests/Support/Coverage/WriteCounters_Linux.cpp)
    target_link_options(OrvikCoverage INTERFACE
        LINKER:--wrap=abort LINKER:--wrap=raise LINKER:--wrap=_exit LINKER:--wrap=_Exit
        LINKER:--wrap=__assert_fail)
    link_libraries(OrvikCoverage)
endif()
