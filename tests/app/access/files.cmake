set(app_access_SOURCES
    PageReadingTest.cpp
    StripControlScreenTest.cpp
    StripControlTest.cpp
    StripPagesTest.cpp)
