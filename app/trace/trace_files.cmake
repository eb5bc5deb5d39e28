# How a strip has moved, frame by frame.
set(trace_SOURCES
    trace/StripTrace.cpp
    trace/StripTrace.h
    trace/TraceCommand.cpp
    trace/TraceCommand.h
    trace/TraceReader.cpp
    trace/TraceReader.h
    trace/TraceReport.cpp
    trace/TraceReport.h
    trace/TraceRow.cpp
    trace/TraceRow.h)
