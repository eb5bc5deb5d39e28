# Services that send what they bring to a running ticker.
set(sender_SOURCES
    services/DisplayReceiver.cpp
    services/DisplayReceiver.h
    services/LineSigns.cpp
    services/LineSigns.h
    services/SignReceiver.cpp
    services/SignReceiver.h
    services/SignSender.cpp
    services/SignSender.h
    services/TickerLink.cpp
    services/TickerLink.h)
