# Qt, for every folder that uses it: imported targets are seen only where they were looked for and below.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network Svg Qml Quick QuickControls2)
if(NOT APPLE)
    find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
endif()
