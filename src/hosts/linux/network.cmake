find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)
target_link_libraries(velloway_host_linux PUBLIC Threads::Threads PRIVATE Boost::headers)
target_sources(velloway_host_linux PRIVATE AsioQueue.cpp LinuxConnection.cpp LinuxListener.cpp LinuxNetwork.cpp)
# Unmasking and checking the text of a message is the inner loop of receiving a file.
if(NOT VELLOWAY_SANITIZE)
    set_source_files_properties(LinuxConnection.cpp PROPERTIES COMPILE_OPTIONS -O3)
endif()
