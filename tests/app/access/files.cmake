set(app_access_SOURCES
    StripControlScreenTest.cpp
    StripControlTest.cpp)
