set(app_settings_SOURCES)
