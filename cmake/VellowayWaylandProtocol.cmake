# velloway_wayland_protocol(target name sources...)
#
# Makes the client side of the protocol in name.xml for the sources of `target` that include it: name-client.h and
# name-code.c, which one of them includes.
find_package(PkgConfig REQUIRED)
pkg_check_modules(WAYLAND_CLIENT REQUIRED IMPORTED_TARGET GLOBAL wayland-client)
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)

function(velloway_wayland_protocol target name)
    set(protocol ${CMAKE_CURRENT_SOURCE_DIR}/${name}.xml)
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/wayland)
    file(MAKE_DIRECTORY ${generated})
    foreach(kind client-header:${name}-client.h private-code:${name}-code.c)
        string(REPLACE ":" ";" kind ${kind})
        list(GET kind 0 what)
        list(GET kind 1 file)
        add_custom_command(OUTPUT ${generated}/${file}
            COMMAND ${WAYLAND_SCANNER} ${what} ${protocol} ${generated}/${file}
            DEPENDS ${protocol} VERBATIM)
        target_sources(${target} PRIVATE ${generated}/${file})
        set_source_files_properties(${generated}/${file} PROPERTIES HEADER_FILE_ONLY ON)
    endforeach()
    set_property(SOURCE ${ARGN} APPEND PROPERTY OBJECT_DEPENDS
        "${generated}/${name}-client.h;${generated}/${name}-code.c")
    target_include_directories(${target} SYSTEM PRIVATE ${generated})
    target_link_libraries(${target} PRIVATE PkgConfig::WAYLAND_CLIENT)
endfunction()
