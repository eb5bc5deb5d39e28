set(app_ticker_SOURCES StripPlaceTest.cpp TickerTest.cpp)
