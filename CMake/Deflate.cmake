# libdeflate, as the target libdeflate::libdeflate. Not every version of it comes with a configuration for CMake.
find_path(LIBDEFLATE_INCLUDE_DIR libdeflate.h REQUIRED)
find_library(LIBDEFLATE_LIBRARY NAMES deflate deflatestatic REQUIRED)
add_library(libdeflate::libdeflate UNKNOWN IMPORTED)
set_target_properties(libdeflate::libdeflate PROPERTIES
    IMPORTED_LOCATION ${LIBDEFLATE_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${LIBDEFLATE_INCLUDE_DIR})
