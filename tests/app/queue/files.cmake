# Tests of the queue window.
set(app_queue_SOURCES
    DropContentsTest.cpp
    FakeQueue.h
    QueueModelTest.cpp
    QueueWindowTest.cpp
    SignFilesTest.cpp
    TickerQueueTest.cpp)
