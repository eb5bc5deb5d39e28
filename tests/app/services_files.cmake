# Services as programs of their own.
set(app_services_SOURCES
    BusTickerLinkTest.cpp
    FakeTickerLink.h
    ServiceProgramTest.cpp
    ServiceScreenTest.cpp
    SignSenderChangesTest.cpp
    SignSenderTest.cpp
    SignsToATicker.h)
