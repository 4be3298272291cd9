add_executable(bench_json JsonBench.cpp)
target_link_libraries(bench_json PRIVATE velloway_core benchmark::benchmark)
