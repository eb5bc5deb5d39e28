# The window that shows what is queued.
set(queue_SOURCES)
