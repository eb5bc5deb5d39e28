set(app_messages_SOURCES DisplayMessageTest.cpp Samples.h)
