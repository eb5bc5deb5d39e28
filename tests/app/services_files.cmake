# Services as programs of their own.
set(app_services_SOURCES
    FakeTickerLink.h
    ServiceProgramTest.cpp
    SignSenderTest.cpp)
