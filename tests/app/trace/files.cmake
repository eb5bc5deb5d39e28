set(app_trace_SOURCES
    TraceProgramTest.cpp
    TraceReaderTest.cpp
    TraceReportTest.cpp
    TraceScreenTest.cpp)
