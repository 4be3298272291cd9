add_executable(bench_base64 Base64Bench.cpp)
target_link_libraries(bench_base64 PRIVATE velloway_core benchmark::benchmark)
