add_executable(fuzz_base64 Base64Fuzz.cpp)
target_link_libraries(fuzz_base64 PRIVATE velloway_core)
target_link_options(fuzz_base64 PRIVATE -fsanitize=fuzzer)
