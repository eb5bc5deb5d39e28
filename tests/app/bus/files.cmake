set(app_bus_SOURCES)
