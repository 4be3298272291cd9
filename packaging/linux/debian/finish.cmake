# The finished Debian package without the scripts that cpack adds for libraries in the linker's path: the views' library
# is loaded by its full path, and nothing has to be told of it.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(tree ${package}.tree)
    file(REMOVE_RECURSE ${tree})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package} COMMAND_ERROR_IS_FATAL ANY
        OUTPUT_QUIET)
    file(REMOVE_RECURSE ${tree})
endforeach()
