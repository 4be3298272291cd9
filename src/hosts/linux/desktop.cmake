include(VellowayQt)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
target_link_libraries(velloway_host_linux
    PUBLIC velloway_host_qt Qt6::Widgets Qt6::DBus Qt6::Svg
    PRIVATE PkgConfig::XCB)
set_target_properties(velloway_host_linux PROPERTIES AUTOMOC ON)
target_sources(velloway_host_linux PRIVATE
    DesktopColors.cpp
    FileUris.cpp
    HandoverSocket.cpp
    LinuxApplication.cpp
    LinuxDesktop.cpp
    LinuxHost.cpp
    LinuxLoginItem.cpp
    LinuxPasteboard.cpp
    LinuxStatusItem.cpp
    LinuxUserDefaults.cpp
    LinuxWorkspace.cpp
    SingleInstance.cpp
    StatusIcons.cpp
    TerminationSignals.cpp
    TrayWatcher.cpp
    TraylessWindow.cpp)

# The two images of the status item, from among the symbols of the views.
set(symbols ${CMAKE_SOURCE_DIR}/src/ui/symbols)
set(status_images ${symbols}/StatusIcon.svg)
if(EXISTS ${symbols}/antenna_radiowaves_left_and_right.svg)
    list(APPEND status_images ${symbols}/antenna_radiowaves_left_and_right.svg)
endif()
qt_add_resources(velloway_host_linux status_images PREFIX /velloway/status BASE ${symbols} FILES ${status_images})
set(icon ${CMAKE_SOURCE_DIR}/src/ui/icon)
qt_add_resources(velloway_host_linux icon PREFIX /icon BASE ${icon} FILES ${icon}/velloway.svg)

# The host as one whole.
target_sources(velloway_host_linux PRIVATE LinuxHostRuntime.cpp ViewsLibrary.cpp)
