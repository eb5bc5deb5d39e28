# The running ticker: its strip, and what feeds it.
set(ticker_SOURCES
    ticker/FloatingMove.cpp
    ticker/FloatingMove.h
    ticker/SourceSet.cpp
    ticker/SourceSet.h
    ticker/StripPlace.cpp
    ticker/StripPlace.h
    ticker/Ticker.cpp
    ticker/Ticker.h
    ticker/window_place.cpp
    ticker/window_place.h)
