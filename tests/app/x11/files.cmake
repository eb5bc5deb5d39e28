set(app_x11_SOURCES
    Desk.h
    DockedStripTest.cpp
    EdgeReservationTest.cpp
    FloatingStripTest.cpp
    ServerBlanks.h)

add_executable(zqticker-window-probe x11/WindowProbe.cpp)
target_link_libraries(zqticker-window-probe PRIVATE Qt6::Widgets)
set_target_properties(zqticker-window-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                       "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE x11/DockedStripTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_WINDOW_PROBE=\"$<TARGET_FILE:zqticker-window-probe>\"")
cmake_language(DEFER CALL add_dependencies zqticker-tests-app zqticker-window-probe)
