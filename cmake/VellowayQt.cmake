# Qt, for every folder that uses it: imported targets are visible only in the folder that finds them and below.
set(qt_at_least 6.4)
if(APPLE)
    # Before this version Qt gives no keys to a view inside a window that is not Qt's.
    set(VELLOWAY_MAC_QT 6.8 CACHE STRING "The oldest Qt for macOS")
    mark_as_advanced(VELLOWAY_MAC_QT)
    set(qt_at_least ${VELLOWAY_MAC_QT})
endif()
find_package(Qt6 ${qt_at_least} REQUIRED COMPONENTS Core Gui Widgets Network Svg Qml Quick QuickControls2)
if(NOT APPLE)
    find_package(Qt6 ${qt_at_least} REQUIRED COMPONENTS DBus)
endif()
