# Manual pages and the completion of shells, made by the program from its tables of options; included
# behind resources/files.cmake by the program's list file.
set(documents "${PROJECT_BINARY_DIR}/share/documents")
add_custom_command(
  OUTPUT "${documents}.made"
  # Of commands that are gone nothing stays.
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${documents}"
  COMMAND ${run_zqticker} help --documents "${documents}"
  COMMAND "${CMAKE_COMMAND}" -E touch "${documents}.made"
  DEPENDS zqticker-program
  COMMENT "Making manual pages and completion scripts"
  VERBATIM)
add_custom_target(zqticker-documents ALL DEPENDS "${documents}.made")
install(DIRECTORY "${documents}/man/" DESTINATION "${CMAKE_INSTALL_MANDIR}")
foreach(folder bash-completion fish zsh)
  install(DIRECTORY "${documents}/${folder}" DESTINATION "${CMAKE_INSTALL_DATADIR}")
endforeach()
