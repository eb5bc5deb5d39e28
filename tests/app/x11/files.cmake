set(app_x11_SOURCES
    ServerBlanks.h
    ServerBlanks.h)
