set(app_messages_SOURCES DisplayMessageTest.cpp MessageIntakeTest.cpp Samples.h
                         SenderLimitsTest.cpp)
