# Tests of what is out of sight, and the programs that show, cover and tell it on a window system.
set(app_sight_SOURCES
    FakeServices.h
    LoginSessionTest.cpp
    ScreenSaversTest.cpp
    SightProgramTest.cpp
    SightScreenTest.cpp)

zqticker_probe(sight sight/SightProbe.cpp TESTS sight/SightScreenTest.cpp x11/LostConnectionTest.cpp
               LIBRARIES zqticker_app)
