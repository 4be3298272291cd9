# What `cmake --install` puts where on a Linux desktop, and the Debian package of the same (cpack -G DEB).
#
# Nothing that is installed knows its place: the entries call the program by its name and ask for the icon by its
# own, so the prefix may be chosen at the last moment.
include(GNUInstallDirs)
# Installing is for the program; the tests need not be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(entries ${CMAKE_SOURCE_DIR}/packaging/linux)
install(TARGETS velloway velloway-phone RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${entries}/org.velloway.Velloway.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_SOURCE_DIR}/src/ui/icon/velloway.svg RENAME org.velloway.Velloway.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

install(FILES ${entries}/org.velloway.Velloway-symbolic.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps)
install(FILES ${entries}/org.velloway.Velloway.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${entries}/dbus/org.velloway.Velloway.service DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services)
install(FILES ${entries}/systemd/velloway.service DESTINATION lib/systemd/user)
install(FILES ${CMAKE_SOURCE_DIR}/docs/phone-does-not-connect.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velloway)

# Packed as packages have it, without a date so that every build packs the same bytes.
find_program(GZIP gzip REQUIRED)
function(velloway_install_packed source name destination)
    set(packed ${CMAKE_CURRENT_BINARY_DIR}/packed/${name}.gz)
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packed)
    execute_process(COMMAND ${GZIP} --best --no-name --stdout ${source} OUTPUT_FILE ${packed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    install(FILES ${packed} DESTINATION ${destination})
endfunction()
foreach(page velloway velloway-phone)
    velloway_install_packed(${entries}/man/${page}.1 ${page}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
velloway_install_packed(${entries}/debian/changelog changelog ${CMAKE_INSTALL_DATADIR}/doc/velloway)

# What opens the port, once the user asks for it. ufw reads /etc alone; the Debian package puts the file there as well.
install(FILES ${entries}/firewall/firewalld.xml RENAME velloway.xml DESTINATION lib/firewalld/services)
install(FILES ${entries}/firewall/ufw RENAME velloway DESTINATION ${CMAKE_INSTALL_DATADIR}/velloway/ufw)

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
            string(STRIP "${line}" line)
            list(APPEND found "${line}")
        endif()
    endforeach()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

set(CPACK_PACKAGE_NAME velloway)
set(CPACK_PACKAGE_CONTACT "The Velloway project <velloway@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Bridge between this computer and an Android phone")
set(CPACK_PACKAGE_DESCRIPTION
    "Velloway stays in the tray and waits for the phone on the local network,
without an account or a cloud. Notifications of the phone appear on the
desktop and can be answered there; text messages are read and written,
calls dialled and answered, and files and clipboard texts exchanged. The
link has neither pairing nor encryption: use it on a network whose members
you trust.")
set(CPACK_GENERATOR DEB)
set(CPACK_PRE_BUILD_SCRIPTS ${entries}/debian/prepare.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${entries}/debian/finish.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
# Libraries are found by looking into the program; what it loads by name while it runs is not.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
velloway_packages(run needed)
velloway_packages(recommended recommended)
set(fonts ${needed})
list(FILTER needed EXCLUDE REGEX "^fonts-")
list(FILTER fonts INCLUDE REGEX "^fonts-")
list(PREPEND recommended ${fonts})
list(JOIN needed ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
list(JOIN recommended ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)
# Outside the prefix.
configure_file(${entries}/firewall/ufw ${CMAKE_CURRENT_BINARY_DIR}/etc/ufw/applications.d/velloway COPYONLY)
set(CPACK_INSTALLED_DIRECTORIES ${CMAKE_CURRENT_BINARY_DIR}/etc /etc)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/debian/conffiles "/etc/ufw/applications.d/velloway\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/debian/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
