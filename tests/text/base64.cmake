velloway_test(base64_test Base64Test.cpp)
