set(calendar_PUBLIC_HEADERS Calendar.h CalendarDate.h Date.h DateComponents.h DateFormatter.h
                            Locale.h TimeZone.h)
set(calendar_PRIVATE_HEADERS LocaleRecord_p.h PosixZoneRule_p.h ZoneRules_p.h gregorian_days_p.h
                             icu_making_p.h other_calendars_p.h zone_database_p.h)
set(calendar_SOURCES
    Calendar.cpp
    CalendarDate.cpp
    Date.cpp
    DateFormatter.cpp
    Locale.cpp
    PosixZoneRule.cpp
    TimeZone.cpp
    ZoneRules.cpp
    other_calendars.cpp
    zone_database.cpp)
