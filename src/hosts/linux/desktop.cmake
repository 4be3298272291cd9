include(VellowayQt)
target_link_libraries(velloway_host_linux PUBLIC velloway_host_qt Qt6::Widgets Qt6::DBus Qt6::Network Qt6::Svg)
set_target_properties(velloway_host_linux PROPERTIES AUTOMOC ON)
target_sources(velloway_host_linux PRIVATE LinuxHost.cpp)
