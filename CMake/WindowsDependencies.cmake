# The libraries of the Windows build, as Scripts/setup-windows.sh installs them. All are static or only headers.
find_package(PNG REQUIRED)
find_package(ZLIB REQUIRED)
include(Deflate)
find_package(Freetype REQUIRED)
find_package(Threads REQUIRED)
set(KISSFFT_INCLUDE_DIR ${ORVIK_WINDOWS_DEPENDENCIES}/include/kissfft)
set_property(TARGET Freetype::Freetype APPEND PROPERTY INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)

add_library(fmt::fmt INTERFACE IMPORTED)
target_include_directories(fmt::fmt INTERFACE ${ORVIK_WINDOWS_DEPENDENCIES}/include)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
set(RapidJSON_INCLUDE_DIRS ${ORVIK_WINDOWS_DEPENDENCIES}/include)

# The definitions for every unit: Windows 8.1 is the first version with a DPI awareness of processes. Paths and file
# names are in UTF-16; the standard input and output functions have the formats of the C++ library.
add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
    WINVER=0x0603 _WIN32_WINNT=0x0603 __USE_MINGW_ANSI_STDIO=1)
