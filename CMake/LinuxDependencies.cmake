# The libraries of the Linux build, as the system has them.
find_package(fmt REQUIRED)
find_package(RapidJSON REQUIRED)
find_package(PNG REQUIRED)
find_package(Freetype REQUIRED)
find_package(X11 REQUIRED COMPONENTS Xext Xtst Xrandr Xfixes Xi)
find_package(OpenGL REQUIRED COMPONENTS OpenGL EGL)
find_package(Threads REQUIRED)
