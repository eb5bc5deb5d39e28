# Tests of the display, the program that shows frames on a window system both ways, and the
# one that counts what a frame asks for.
set(app_display_SOURCES
    BadSignsTest.cpp
    BlankEstimateTest.cpp
    EdgeFadeTest.cpp
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

add_executable(zqticker-surface-probe display/SurfaceProbe.cpp)
target_link_libraries(zqticker-surface-probe PRIVATE zqticker_app)
set_target_properties(zqticker-surface-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                        "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE display/StripSurfaceTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_SURFACE_PROBE=\"$<TARGET_FILE:zqticker-surface-probe>\"")

add_executable(zqticker-frame-probe display/FrameProbe.cpp)
target_link_libraries(zqticker-frame-probe PRIVATE zqticker_app)
set_target_properties(zqticker-frame-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                      "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE display/FrameCostTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_FRAME_PROBE=\"$<TARGET_FILE:zqticker-frame-probe>\"")
if(ZQTICKER_SANITIZE)
  set_property(
    SOURCE display/FrameCostTest.cpp
    APPEND
    PROPERTY COMPILE_DEFINITIONS ZQTICKER_SANITIZED)
endif()
# The tests' program comes after this list.
cmake_language(DEFER CALL add_dependencies zqticker-tests-app zqticker-surface-probe
                    zqticker-frame-probe)
