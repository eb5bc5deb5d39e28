set(app_display_SOURCES)
