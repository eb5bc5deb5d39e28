# Tests of what is out of sight, and the programs that show, cover and tell it on a window system.
set(app_sight_SOURCES
    FakeServices.h
    LoginSessionTest.cpp
    ScreenSaversTest.cpp
    SightProgramTest.cpp
    SightScreenTest.cpp)

add_executable(zqticker-sight-probe sight/SightProbe.cpp)
target_link_libraries(zqticker-sight-probe PRIVATE zqticker_app)
set_target_properties(zqticker-sight-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                      "${PROJECT_BINARY_DIR}/bin")
set_property(
  SOURCE sight/SightScreenTest.cpp
  APPEND
  PROPERTY COMPILE_DEFINITIONS "ZQTICKER_SIGHT_PROBE=\"$<TARGET_FILE:zqticker-sight-probe>\"")
# The tests' program comes after this list.
cmake_language(DEFER CALL add_dependencies zqticker-tests-app zqticker-sight-probe)
