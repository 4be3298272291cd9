include(VellowayQt)
find_package(PkgConfig REQUIRED)
pkg_check_modules(VELLOWAY_XCB REQUIRED IMPORTED_TARGET xcb xcb-xkb xcb-xtest xcb-xinput xkbcommon)
target_link_libraries(velloway_host_linux PUBLIC Qt6::Core Qt6::DBus PRIVATE PkgConfig::VELLOWAY_XCB)
set_target_properties(velloway_host_linux PROPERTIES AUTOMOC ON)
target_sources(velloway_host_linux PRIVATE
    ChildProcess.cpp
    InputBackend.cpp
    LinuxInputEvents.cpp
    LinuxScripts.cpp
    PortalInput.cpp
    TextKeysyms.cpp
    VolumeControl.cpp
    X11Connection.cpp
    X11Input.cpp
    X11Keyboard.cpp
    X11Keymap.cpp
    X11Ping.cpp
    X11Pointer.cpp
)
