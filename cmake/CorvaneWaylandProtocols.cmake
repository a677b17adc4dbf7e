# Client code for Wayland protocols, generated with wayland-scanner at build time
# (C sources: include this file from the top directory).
enable_language(C)
find_package(PkgConfig REQUIRED)
pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_check_modules(WAYLAND_TOOLS REQUIRED wayland-scanner wayland-protocols)
pkg_get_variable(CORVANE_WAYLAND_SCANNER wayland-scanner wayland_scanner)
pkg_get_variable(CORVANE_WAYLAND_PROTOCOLS_DIR wayland-protocols pkgdatadir)

# corvane_wayland_protocols(TARGET XML...): adds each protocol's client header and
# code to TARGET; the headers land in a folder the target includes publicly.
function(corvane_wayland_protocols target)
    set(directory ${CMAKE_CURRENT_BINARY_DIR}/wayland-protocols)
    file(MAKE_DIRECTORY ${directory})
    foreach(xml IN LISTS ARGN)
        get_filename_component(name ${xml} NAME_WE)
        set(header ${directory}/${name}-client-protocol.h)
        set(code ${directory}/${name}-protocol.c)
        add_custom_command(OUTPUT ${header}
            COMMAND ${CORVANE_WAYLAND_SCANNER} client-header ${xml} ${header}
            DEPENDS ${xml} VERBATIM)
        add_custom_command(OUTPUT ${code}
            COMMAND ${CORVANE_WAYLAND_SCANNER} private-code ${xml} ${code}
            DEPENDS ${xml} VERBATIM)
        target_sources(${target} PRIVATE ${header} ${code})
    endforeach()
    target_include_directories(${target} PUBLIC ${directory})
endfunction()
