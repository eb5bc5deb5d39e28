set(app_interaction_SOURCES
    SignOpenerTest.cpp
    StripMoveTest.cpp
    StripPointerScreenTest.cpp
    StripPointerTest.cpp
    sign_locationsTest.cpp
    sign_spotsTest.cpp)
