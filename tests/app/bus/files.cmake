set(app_bus_SOURCES
    FakeReceiver.h
    PrivateBus.cpp
    PrivateBus.h
    TickerServiceTest.cpp)
