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
find_library(WAYLAND_CLIENT_LIBRARY wayland-client REQUIRED)
find_library(WAYLAND_EGL_LIBRARY wayland-egl REQUIRED)
find_library(WAYLAND_SERVER_LIBRARY wayland-server REQUIRED) # for the tests, which stand in for a compositor
find_library(XKBCOMMON_LIBRARY xkbcommon REQUIRED)
find_path(SYSTEMD_INCLUDE_DIR systemd/sd-bus.h REQUIRED) # a client of the message bus, loaded when it is needed
find_library(SYSTEMD_LIBRARY systemd REQUIRED) # for the tests, which serve on a bus of their own
find_path(KISSFFT_INCLUDE_DIR kissfft.hh PATH_SUFFIXES kissfft REQUIRED) # headers alone
find_package(Threads REQUIRED)
