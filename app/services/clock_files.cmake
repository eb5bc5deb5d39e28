# The clock.
set(clock_SOURCES
    services/ClockService.cpp
    services/ClockService.h
    services/ClockText.cpp
    services/ClockText.h
    services/WallClockTimer.cpp
    services/WallClockTimer.h)
