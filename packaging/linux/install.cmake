# What `cmake --install` puts where on a Linux desktop, and the Debian package of the same (cpack -G DEB).
#
# Nothing that is installed knows its place: the entries call the program by its name and ask for the icon by its
# own, so the prefix may be chosen at the last moment.
include(GNUInstallDirs)
# Installing is for the program; the tests need not be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(entries ${CMAKE_SOURCE_DIR}/packaging/linux)
install(TARGETS velloway RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${entries}/org.velloway.Velloway.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/src/ui/icon/velloway.svg RENAME org.velloway.Velloway.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

# The send menus of the file managers. In a home folder Dolphin trusts only what may be executed.
install(PROGRAMS ${entries}/send/dolphin.desktop RENAME velloway-send.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/kio/servicemenus)
install(FILES ${entries}/send/thunar.desktop RENAME velloway-send.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/Thunar/sendto)
install(FILES ${entries}/send/pcmanfm.desktop RENAME velloway-send.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/file-manager/actions)
install(FILES ${entries}/send/nemo.nemo_action RENAME velloway-send.nemo_action
    DESTINATION ${CMAKE_INSTALL_DATADIR}/nemo/actions)
install(PROGRAMS ${entries}/send/script RENAME "Send to Android"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/velloway/scripts)

# Sets `result` to the packages of one group of packages.txt.
function(velloway_packages group result)
    file(STRINGS ${entries}/packages.txt lines)
    set(found)
    foreach(line IN LISTS lines)
        if(line MATCHES "^\\[(.*)\\]$")
            set(current ${CMAKE_MATCH_1})
        elseif(current STREQUAL group AND line MATCHES "^[a-z0-9]")
            list(APPEND found ${line})
        endif()
    endforeach()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

set(CPACK_PACKAGE_NAME velloway)
set(CPACK_PACKAGE_CONTACT "The Velloway project")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Bridge between this computer and an Android phone")
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
# Libraries are found by looking into the program; what it loads by name while it runs is not.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
velloway_packages(run needed)
set(fonts ${needed})
list(FILTER needed EXCLUDE REGEX "^fonts-")
list(FILTER fonts INCLUDE REGEX "^fonts-")
list(JOIN needed ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
list(JOIN fonts ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
include(CPack)
