# What programs and the compositor say to each other, as functions of C: made from descriptions by Wayland's scanner.
enable_language(C)
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
find_path(WAYLAND_PROTOCOLS stable/viewporter/viewporter.xml REQUIRED PATH_SUFFIXES share/wayland-protocols)
set(fetched_protocols ${CMAKE_SOURCE_DIR}/build/wayland-protocols) # by Scripts/setup-linux.sh

set(protocol_descriptions
    ${WAYLAND_PROTOCOLS}/stable/viewporter/viewporter.xml
    ${WAYLAND_PROTOCOLS}/stable/xdg-shell/xdg-shell.xml
    ${WAYLAND_PROTOCOLS}/staging/fractional-scale/fractional-scale-v1.xml
    ${WAYLAND_PROTOCOLS}/unstable/keyboard-shortcuts-inhibit/keyboard-shortcuts-inhibit-unstable-v1.xml
    ${WAYLAND_PROTOCOLS}/unstable/linux-dmabuf/linux-dmabuf-unstable-v1.xml
    ${WAYLAND_PROTOCOLS}/unstable/pointer-constraints/pointer-constraints-unstable-v1.xml
    ${WAYLAND_PROTOCOLS}/unstable/relative-pointer/relative-pointer-unstable-v1.xml
    ${WAYLAND_PROTOCOLS}/unstable/xdg-output/xdg-output-unstable-v1.xml
    ${fetched_protocols}/ext-foreign-toplevel-list-v1.xml
    ${fetched_protocols}/ext-image-capture-source-v1.xml
    ${fetched_protocols}/ext-image-copy-capture-v1.xml
    ${fetched_protocols}/wlr-layer-shell-unstable-v1.xml
    ${fetched_protocols}/wlr-screencopy-unstable-v1.xml)

# Adds a library of the descriptions that follow; a unit includes `<NAME-client-protocol.h>`.
function(orvik_add_protocols target)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
    set(sources)
    foreach(description IN LISTS ARGN)
        get_filename_component(name ${description} NAME_WE)
        set(header ${folder}/${name}-client-protocol.h)
        set(source ${folder}/${name}-protocol.c)
        add_custom_command(OUTPUT ${header} ${source}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
            COMMAND ${WAYLAND_SCANNER} client-header ${description} ${header}
            # An argument has a name that C++ can't have.
            COMMAND sed -i "s/\\bnamespace\\b/name_space/g" ${header}
            COMMAND ${WAYLAND_SCANNER} private-code ${description} ${source}
            DEPENDS ${description} VERBATIM)
        list(APPEND sources ${source} ${header})
    endforeach()
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} SYSTEM PUBLIC ${folder})
    orvik_harden(${target})
endfunction()

orvik_add_protocols(OrvikWaylandProtocols ${protocol_descriptions})
# Adds a library of headers for the other side, that of the compositor: `<NAME-server-protocol.h>`. What both sides share
# is in the library above.
function(orvik_add_server_protocols target)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
    set(headers)
    foreach(description IN LISTS ARGN)
        get_filename_component(name ${description} NAME_WE)
        set(header ${folder}/${name}-server-protocol.h)
        add_custom_command(OUTPUT ${header}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
            COMMAND ${WAYLAND_SCANNER} server-header ${description} ${header}
            DEPENDS ${description} VERBATIM)
        list(APPEND headers ${header})
    endforeach()
    add_custom_target(${target}Headers DEPENDS ${headers})
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${folder})
    add_dependencies(${target} ${target}Headers)
endfunction()

# What tests work a compositor with, and what they stand in for one with.
orvik_add_protocols(OrvikWaylandTestProtocols
    ${fetched_protocols}/virtual-keyboard-unstable-v1.xml
    ${fetched_protocols}/wlr-virtual-pointer-unstable-v1.xml)
orvik_add_server_protocols(OrvikWaylandServerProtocols
    ${fetched_protocols}/ext-image-capture-source-v1.xml
    ${fetched_protocols}/ext-image-copy-capture-v1.xml)
