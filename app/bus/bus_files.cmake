# The program on the session bus.
set(bus_SOURCES)
