add_executable(bench_files FilesBench.cpp)
target_link_libraries(bench_files PRIVATE velloway_core velloway_posix benchmark::benchmark)
target_include_directories(bench_files PRIVATE ${CMAKE_SOURCE_DIR}/tests)
