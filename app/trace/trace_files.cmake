# How a strip has moved, frame by frame.
set(trace_SOURCES)
