# Tests of the display, and the program that shows frames on a window system both ways.
set(app_display_SOURCES BlankEstimateTest.cpp FakeBlanks.h FrameClockTest.cpp
    ScrollDirectionTest.cpp StripPlayerTest.cpp StripSurfaceTest.cpp)

add_executable(zqticker-surface-probe display/SurfaceProbe.cpp)
target_link_libraries(zqticker-surface-probe PRIVATE zqticker_app)
set_target_properties(zqticker-surface-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                        "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE display/StripSurfaceTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_SURFACE_PROBE=\"$<TARGET_FILE:zqticker-surface-probe>\"")
# The tests' program comes after this list.
cmake_language(DEFER CALL add_dependencies zqticker-tests-app zqticker-surface-probe)
