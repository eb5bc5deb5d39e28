set(app_display_SOURCES BlankEstimateTest.cpp FakeBlanks.h FrameClockTest.cpp ScrollDirectionTest.cpp StripPlayerTest.cpp)
