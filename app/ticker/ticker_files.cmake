# The running ticker: its strip, and what feeds it.
set(ticker_SOURCES
    ticker/SourceSet.cpp
    ticker/SourceSet.h
    ticker/Ticker.cpp
    ticker/Ticker.h
    ticker/window_place.cpp
    ticker/window_place.h)
