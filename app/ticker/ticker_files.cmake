# The running ticker: its strip, and what feeds it.
set(ticker_SOURCES)
