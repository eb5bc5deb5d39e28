set(app_messages_SOURCES)
