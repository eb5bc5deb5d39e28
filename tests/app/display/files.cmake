# Tests of the display, the program that shows frames on a window system both ways, and the
# one that counts what a frame asks for.
set(app_display_SOURCES
    BadSignsTest.cpp
    BlankEstimateTest.cpp
    EdgeFadeTest.cpp
    ErasedSignsTest.cpp
    FakeBlanks.h
    FrameClockTest.cpp
    FrameCostTest.cpp
    LongTextsTest.cpp
    ScrollDirectionScreenTest.cpp
    ScrollDirectionTest.cpp
    StripPlayerTest.cpp
    StripRandomTest.cpp
    StripReversalTest.cpp
    StripSurfaceTest.cpp
    TickerDisplayReversalTest.cpp
    VanishingFontTest.cpp)

zqticker_probe(surface display/SurfaceProbe.cpp TESTS display/StripSurfaceTest.cpp
               LIBRARIES zqticker_app)
zqticker_probe(frame display/FrameProbe.cpp TESTS display/FrameCostTest.cpp LIBRARIES zqticker_app)
if(ZQTICKER_SANITIZE)
  set_property(
    SOURCE display/FrameCostTest.cpp
    APPEND
    PROPERTY COMPILE_DEFINITIONS ZQTICKER_SANITIZED)
endif()
