set(net_SOURCES HttpServerTest.cpp ZQURLLoaderTest.cpp)
