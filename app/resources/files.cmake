# The looks of buttons that are shipped, made by the program from their descriptions; included by the
# program's list file.
set(run_zqticker "$<TARGET_FILE:zqticker-program>")
if(ZQTICKER_SANITIZE)
  # Leaks are what the tests look for.
  set(run_zqticker "${CMAKE_COMMAND}" -E env ASAN_OPTIONS=detect_leaks=0 "${run_zqticker}")
endif()
set(appearances "")
foreach(name ControlBarButton dark light)
  set(description "${CMAKE_CURRENT_SOURCE_DIR}/resources/${name}.json")
  set(appearance "${PROJECT_BINARY_DIR}/share/zqticker/${name}.button")
  add_custom_command(
    OUTPUT "${appearance}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/share/zqticker"
    COMMAND ${run_zqticker} appearance make "${description}" --output "${appearance}"
    DEPENDS zqticker-program "${description}"
    COMMENT "Making ${name}.button"
    VERBATIM)
  list(APPEND appearances "${appearance}")
endforeach()
add_custom_target(zqticker-appearances ALL DEPENDS ${appearances})
install(FILES ${appearances} DESTINATION "${CMAKE_INSTALL_DATADIR}/zqticker")
include(resources/desktop_files.cmake)
