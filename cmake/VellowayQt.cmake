# Qt, for every folder that uses it: imported targets are visible only in the folder that finds them and below.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network Svg Qml Quick QuickControls2)
if(NOT APPLE)
    find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
endif()
