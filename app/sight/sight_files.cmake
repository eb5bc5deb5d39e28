# Whether anybody can see the screen.
set(sight_SOURCES
    sight/LoginSession.cpp
    sight/LoginSession.h
    sight/ScreenSavers.cpp
    sight/ScreenSavers.h
    sight/SessionSight.cpp
    sight/SessionSight.h)
