include(VellowayDesktopTest)

# The desktop side of the host as a program of its own, for tests that need more than one process.
add_executable(desktop_probe DesktopProbe.cpp)
target_link_libraries(desktop_probe PRIVATE velloway_host_linux)

velloway_desktop_test(test_linux_desktop LinuxDesktopTest.cpp)
add_dependencies(test_linux_desktop desktop_probe)
target_compile_definitions(test_linux_desktop PRIVATE
    DESKTOP_PROBE="$<TARGET_FILE:desktop_probe>"
    TRAY_HOST="${CMAKE_SOURCE_DIR}/tests/desktop/tray-host")

velloway_desktop_test(test_desktop_colors DesktopColorsTest.cpp)
velloway_desktop_test(test_linux_application LinuxApplicationTest.cpp)
velloway_desktop_test(test_linux_workspace LinuxWorkspaceTest.cpp)
velloway_desktop_test(test_linux_host LinuxHostTest.cpp FileUrisTest.cpp)
velloway_desktop_test(test_standard_output_log StandardOutputLogTest.cpp)

find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
velloway_desktop_test(test_x11_tray X11TrayTest.cpp)
target_link_libraries(test_x11_tray PRIVATE PkgConfig::XCB)

# What macOS shows in its own windows needs nothing of that platform.
velloway_desktop_test(test_qt_surface QtSurfaceTest.cpp ${CMAKE_SOURCE_DIR}/src/hosts/mac/QtSurface.cpp)
target_link_libraries(test_qt_surface PRIVATE velloway_program velloway_quick_windows Qt6::Test Qt6::QuickControls2)
set(toolkit_leaks "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/desktop/leaks.supp:print_suppressions=0")
set_tests_properties(test_linux_desktop PROPERTIES ENVIRONMENT "${toolkit_leaks}")
set_tests_properties(test_qt_surface PROPERTIES LABELS mac ENVIRONMENT "QT_QUICK_BACKEND=software;${toolkit_leaks}")
