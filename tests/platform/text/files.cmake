set(text_TESTS TextLineTest.cpp)
