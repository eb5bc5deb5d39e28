set(app_trace_SOURCES)
