set(net_SOURCES HttpServerTest.cpp URLCacheTest.cpp ZQURLLoaderTest.cpp)
