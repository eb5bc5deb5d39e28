set(system_TESTS URLRequestTest.cpp URLResponseTest.cpp)
