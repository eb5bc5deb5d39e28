set(text_TESTS TextLineTest.cpp number_parsingTest.cpp)
