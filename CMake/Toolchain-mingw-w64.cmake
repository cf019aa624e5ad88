# The cross compiler for Windows, and where its libraries are found: in its own folder, and in the one that
# Scripts/setup-windows.sh fills. Nothing of the building system is used.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The variant whose standard library has threads, mutexes and file systems.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(ORVIK_WINDOWS_DEPENDENCIES ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies)
set(CMAKE_FIND_ROOT_PATH ${ORVIK_WINDOWS_DEPENDENCIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The program is a single file: it links dynamically only what every Windows has.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(ZLIB_LIBRARY /usr/x86_64-w64-mingw32/lib/libz.a CACHE FILEPATH "The static one of two")

# Runs what the build has built.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../Scripts/wine.sh --display)
