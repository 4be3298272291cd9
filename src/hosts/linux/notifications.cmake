include(VellowayQt)
target_sources(velloway_host_linux PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/LinuxUserNotificationCenter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NotificationPoster.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NotificationService.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NotificationText.cpp)
set_target_properties(velloway_host_linux PROPERTIES AUTOMOC ON)
target_link_libraries(velloway_host_linux PUBLIC velloway_host_qt Qt6::DBus)
