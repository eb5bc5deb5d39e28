set(app_access_SOURCES)
