set(net_SOURCES HttpServerTest.cpp)
