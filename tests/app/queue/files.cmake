set(app_queue_SOURCES)
