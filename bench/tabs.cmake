find_package(benchmark REQUIRED)

add_executable(bench_conversations ConversationsBench.cpp)
target_include_directories(bench_conversations PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(bench_conversations PRIVATE velloway_core benchmark::benchmark_main)
