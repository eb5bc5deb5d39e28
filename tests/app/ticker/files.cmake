set(app_ticker_SOURCES TickerTest.cpp)
