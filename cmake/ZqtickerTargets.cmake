# Compile settings shared by every target of this project, and the shape of a room.

add_library(zqticker_settings INTERFACE)
target_compile_features(zqticker_settings INTERFACE cxx_std_20)
target_compile_options(zqticker_settings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor
                                                   -Woverloaded-virtual)
target_compile_definitions(
  zqticker_settings INTERFACE QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
                              QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
target_include_directories(
  zqticker_settings INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                              "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>")
if(ZQTICKER_SANITIZE)
  target_compile_options(zqticker_settings INTERFACE -fsanitize=${ZQTICKER_SANITIZE}
                                                     -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(zqticker_settings INTERFACE -fsanitize=${ZQTICKER_SANITIZE})
endif()

set_property(GLOBAL PROPERTY ZQTICKER_PUBLIC_HEADERS "")

# Precompiles the headers that nearly every source reads, and `ARGN`.
function(zqticker_precompile_headers target)
  target_precompile_headers(
    ${target}
    PRIVATE
    <QtCore/QByteArray>
    <QtCore/QRectF>
    <QtCore/QString>
    <QtCore/QVariant>
    <memory>
    <optional>
    <vector>
    ${ARGN})
endfunction()

# zqticker_room(<name> SOURCES … PUBLIC_HEADERS … PRIVATE_HEADERS … LIBRARIES …)
#
# A room is an object library, so that tests reach hidden parts without exporting them. Public
# headers are installed under their path from the repository's root.
function(zqticker_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;PUBLIC_HEADERS;PRIVATE_HEADERS;LIBRARIES" ${ARGN})
  add_library(zqticker_${name} OBJECT ${ROOM_SOURCES} ${ROOM_PUBLIC_HEADERS} ${ROOM_PRIVATE_HEADERS})
  target_link_libraries(zqticker_${name} PUBLIC zqticker_settings ${ROOM_LIBRARIES})
  target_compile_definitions(zqticker_${name} PRIVATE zqticker_EXPORTS)
  zqticker_precompile_headers(zqticker_${name})
  set_target_properties(
    zqticker_${name}
    PROPERTIES AUTOMOC ON
               POSITION_INDEPENDENT_CODE ON
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON)
  foreach(header IN LISTS ROOM_PUBLIC_HEADERS)
    file(RELATIVE_PATH path "${PROJECT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}/${header}")
    set_property(GLOBAL APPEND PROPERTY ZQTICKER_PUBLIC_HEADERS "${path}")
  endforeach()
endfunction()
