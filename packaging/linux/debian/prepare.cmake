# The tree that becomes the Debian package, before it is packed: an entry for a file manager in a system folder is trusted
# as it is and must not be executable there.
file(GLOB entries ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/kio/servicemenus/*.desktop)
foreach(entry IN LISTS entries)
    file(CHMOD ${entry} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
