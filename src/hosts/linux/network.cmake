find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)
target_link_libraries(velloway_host_linux PUBLIC Threads::Threads PRIVATE Boost::headers)
target_sources(velloway_host_linux PRIVATE AsioQueue.cpp LinuxConnection.cpp LinuxListener.cpp LinuxNetwork.cpp)
# Unmasking and checking the text of a message is the inner loop of receiving a file.
if(NOT VELLOWAY_SANITIZE)
    set_source_files_properties(LinuxConnection.cpp PROPERTIES COMPILE_OPTIONS -O3)
endif()
# The thread sanitizer does not understand Asio's fences; the locks around them order the same things.
if(VELLOWAY_SANITIZE STREQUAL "thread")
    target_compile_definitions(velloway_host_linux PRIVATE BOOST_ASIO_DISABLE_FENCED_BLOCK)
endif()
