set(app_x11_SOURCES)
