set(app_messages_SOURCES
    DisplayMessageTest.cpp
    MessageIntakeTest.cpp
    PostCommandTest.cpp
    Samples.h
    SenderLimitsTest.cpp
    SignArchiveTest.cpp)
