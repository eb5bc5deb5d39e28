# Display messages.
set(message_SOURCES)
