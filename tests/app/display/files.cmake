set(app_display_SOURCES BlankEstimateTest.cpp FakeBlanks.h FrameClockTest.cpp StripPlayerTest.cpp)
