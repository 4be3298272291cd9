# The views as a library that the program loads with its first window: the toolkit under them stays out of memory
# until then. What they show, the core, is in the program alone, which therefore holds all of it and exports it.
add_library(velloway_views MODULE ${CMAKE_SOURCE_DIR}/src/hosts/linux/windows/ViewsModule.cpp)
set_target_properties(velloway_views PROPERTIES
    OUTPUT_NAME velloway-views
    # So that the libraries that it is made of leave out those of the program.
    VELLOWAY_IS_LOADED ON)
# What the program does not have is to be found out when it loads the library, not in the middle of a window.
target_link_options(velloway_views PRIVATE LINKER:-z,now)
target_link_libraries(velloway_views PRIVATE velloway_quick_windows)

add_dependencies(velloway velloway_views)
set_target_properties(velloway PROPERTIES
    ENABLE_EXPORTS ON
    LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,velloway_core")

install(TARGETS velloway_views LIBRARY DESTINATION lib/velloway)
