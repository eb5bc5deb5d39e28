# Tests of the queue window, and the program that they drag from and to on a window system.
set(app_queue_SOURCES
    DropContentsTest.cpp
    FakeQueue.h
    QueueModelTest.cpp
    QueueScreenTest.cpp
    QueueWindowKeys.h
    QueueWindowTest.cpp
    QueueWindowViewTest.cpp
    SignFilesTest.cpp
    ThumbnailsTest.cpp
    TickerQueueTest.cpp)

zqticker_probe(queue queue/QueueProbe.cpp TESTS queue/QueueScreenTest.cpp LIBRARIES zqticker_app)
