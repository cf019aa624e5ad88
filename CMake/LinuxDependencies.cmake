# The libraries of the Linux build, from the system.
find_package(fmt REQUIRED)
find_package(RapidJSON REQUIRED)
find_package(PNG REQUIRED)
find_package(ZLIB REQUIRED)
include(Deflate)
find_package(Freetype REQUIRED)
find_package(X11 REQUIRED COMPONENTS Xext Xtst Xrandr Xfixes Xi X11_xcb xcb)
find_library(XCB_SHM_LIBRARY xcb-shm REQUIRED) # CMake's module doesn't know it
find_package(OpenGL REQUIRED COMPONENTS OpenGL EGL)
find_package(Threads REQUIRED)
