target_sources(velloway_host_qt PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/ElidedLabel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FloatingPanel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NotificationBanner.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NotificationPanels.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ReplyPanel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ReplyRow.cpp)
if(APPLE)
    target_sources(velloway_host_qt PRIVATE
        ${CMAKE_CURRENT_LIST_DIR}/CompositingAlways.cpp ${CMAKE_CURRENT_LIST_DIR}/WindowSpacesElsewhere.cpp)
else()
    find_package(X11 REQUIRED COMPONENTS xcb)
    target_sources(velloway_host_qt PRIVATE
        ${CMAKE_CURRENT_LIST_DIR}/CompositingX11.cpp ${CMAKE_CURRENT_LIST_DIR}/WindowSpacesX11.cpp)
    target_link_libraries(velloway_host_qt PRIVATE ${X11_xcb_LIB})
endif()
