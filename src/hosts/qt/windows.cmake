# The windows of desktops whose own toolkit is Qt. Their views are a library apart, which tests link and the program
# loads.
if(NOT APPLE)
    target_sources(velloway_host_qt PRIVATE ${CMAKE_CURRENT_LIST_DIR}/QtWindows.cpp)
    add_library(velloway_quick_windows STATIC ${CMAKE_CURRENT_LIST_DIR}/QuickWindows.cpp)
    set_target_properties(velloway_quick_windows PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_link_libraries(velloway_quick_windows
        PUBLIC velloway_ui
        PRIVATE $<IF:$<BOOL:$<TARGET_PROPERTY:VELLOWAY_IS_LOADED>>,,velloway_host_qt> Qt6::QuickControls2)
endif()
