# Services that send what they bring to a running ticker.
set(sender_SOURCES
    commands/ServiceCommand.cpp
    commands/ServiceCommand.h
    commands/service_tables.cpp
    commands/service_tables.h
    services/BusTickerLink.cpp
    services/BusTickerLink.h
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
