set(app_ticker_SOURCES StripPlaceTest.cpp TickerMenuTest.cpp TickerTest.cpp)
