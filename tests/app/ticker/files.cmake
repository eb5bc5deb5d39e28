set(app_ticker_SOURCES)
