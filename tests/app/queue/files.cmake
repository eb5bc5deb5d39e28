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

add_executable(zqticker-queue-probe queue/QueueProbe.cpp)
target_link_libraries(zqticker-queue-probe PRIVATE zqticker_app)
set_target_properties(zqticker-queue-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                      "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE queue/QueueScreenTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_QUEUE_PROBE=\"$<TARGET_FILE:zqticker-queue-probe>\"")
# The tests' program comes after this list.
cmake_language(DEFER CALL add_dependencies zqticker-tests-app zqticker-queue-probe)
