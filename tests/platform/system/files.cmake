set(system_TESTS
    HTTPCacheEntryTest.cpp
    HTTPCacheStoreTest.cpp
    http_cache_controlTest.cpp
    http_datesTest.cpp
    http_freshnessTest.cpp
    URLRequestTest.cpp
    URLResponseTest.cpp)
