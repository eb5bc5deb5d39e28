# The ticker for everyone: less motion, assistive technology, contrast.
set(access_SOURCES
    access/AccessibleStrip.cpp
    access/AccessibleStrip.h
    access/DesktopWishes.cpp
    access/DesktopWishes.h
    access/FocusRing.cpp
    access/FocusRing.h
    access/PageReading.cpp
    access/PageReading.h
    access/StripControlCommands.cpp
    access/StripControlCommands.h
    access/StripFocus.cpp
    access/StripFocus.h
    access/StripVoice.cpp
    access/StripVoice.h
    access/high_contrast.cpp
    access/high_contrast.h)
