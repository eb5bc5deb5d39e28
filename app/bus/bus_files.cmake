# The program on the session bus.
set(bus_SOURCES
    bus/BusFailure.cpp
    bus/BusFailure.h
    bus/BusInbox.cpp
    bus/BusInbox.h
    bus/BusListener.cpp
    bus/BusListener.h
    bus/BusObject.cpp
    bus/BusObject.h
    bus/BusRequest.h
    bus/QuitCommand.cpp
    bus/QuitCommand.h
    bus/RefusalLog.cpp
    bus/RefusalLog.h
    bus/SessionBus.cpp
    bus/SessionBus.h
    bus/TickerClient.cpp
    bus/TickerClient.h
    bus/TickerOnBus.cpp
    bus/TickerOnBus.h
    bus/TickerReceiver.h
    bus/TickerService.cpp
    bus/TickerService.h
    bus/bus_address.cpp
    bus/bus_address.h
    bus/bus_names.h
    bus/bus_values.cpp
    bus/bus_values.h
    bus/hand_over.cpp
    bus/hand_over.h
    bus/intake_failures.h
    bus/receive_limits.cpp
    bus/receive_limits.h
    bus/request_reading.cpp
    bus/request_reading.h
    bus/ticker_interface.cpp
    bus/ticker_interface.h
    bus/ticker_request.cpp
    bus/ticker_request.h)

# The object answers with the interface's description as it is shipped.
set(interface_file "${CMAKE_CURRENT_LIST_DIR}/org.zqticker.Ticker1.xml")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${interface_file}")
file(READ "${interface_file}" ZQTICKER_INTERFACE)
configure_file("${CMAKE_CURRENT_LIST_DIR}/ticker_interface.inc.in"
               "${CMAKE_CURRENT_BINARY_DIR}/bus/ticker_interface.inc" @ONLY)
set_source_files_properties(bus/ticker_interface.cpp PROPERTIES INCLUDE_DIRECTORIES
                                                                "${CMAKE_CURRENT_BINARY_DIR}/bus")
install(FILES "${interface_file}" DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces")

# The service file lets the bus start the program. It names the program by its whole path, which is
# known when it is installed; the one in the build tree names the program there.
set(service_file org.zqticker.Ticker.service)
set(service_template "${CMAKE_CURRENT_LIST_DIR}/${service_file}.in")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${service_template}")
file(READ "${service_template}" service_text)
string(REPLACE "@ZQTICKER_PROGRAM@" "$<TARGET_FILE:zqticker-program>" service_text "${service_text}")
file(
  GENERATE
  OUTPUT "${PROJECT_BINARY_DIR}/share/dbus-1/services/${service_file}"
  CONTENT "${service_text}")
set(installed_service "${CMAKE_CURRENT_BINARY_DIR}/bus/${service_file}")
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_BINDIR BASE_DIRECTORY "\${CMAKE_INSTALL_PREFIX}"
           OUTPUT_VARIABLE service_folder)
install(
  CODE "
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX NORMALIZE)
    set(ZQTICKER_PROGRAM \"${service_folder}/zqticker\")
    configure_file(\"${service_template}\" \"${installed_service}\" @ONLY)")
install(FILES "${installed_service}" DESTINATION "${CMAKE_INSTALL_DATADIR}/dbus-1/services")
