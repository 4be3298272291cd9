include(VellowayDesktopTest)
find_package(PkgConfig REQUIRED)
pkg_check_modules(VELLOWAY_TEST_XCB REQUIRED IMPORTED_TARGET xcb xcb-xkb xcb-xtest xcb-xinput xkbcommon)

# Types a text and then waits to be killed.
add_executable(typist Typist.cpp)
target_link_libraries(typist PRIVATE velloway_host_linux PkgConfig::VELLOWAY_TEST_XCB)

velloway_desktop_test(test_x11_input X11TypingTest.cpp X11KeysTest.cpp X11PointerTest.cpp XServer.cpp)
target_link_libraries(test_x11_input PRIVATE PkgConfig::VELLOWAY_TEST_XCB)
target_compile_definitions(test_x11_input PRIVATE
    TYPIST="$<TARGET_FILE:typist>"
    GTK_ENTRY="${CMAKE_CURRENT_SOURCE_DIR}/gtk-entry"
)
add_dependencies(test_x11_input typist)

velloway_desktop_test(test_portal_input PortalInputTest.cpp FakePortal.cpp)
velloway_desktop_test(test_linux_scripts LinuxScriptsTest.cpp)
velloway_desktop_test(test_linux_session InputSessionTest.cpp)
