velloway_test(test_base64 Base64Test.cpp)
