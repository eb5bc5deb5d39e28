# Display messages: how they come in, and the command that sends one.

# What reads them, which a fuzzer is linked with.
set(message_reading_SOURCES
    intake/DisplayMessage.cpp
    intake/DisplayMessage.h
    intake/MessageValues.cpp
    intake/MessageValues.h
    intake/WorkGate.h
    intake/message_pictures.cpp
    intake/message_pictures.h
    intake/sign_archives.cpp
    intake/sign_archives.h)
set(message_SOURCES
    commands/PostCommand.cpp
    commands/PostCommand.h
    intake/ArrivingSign.h
    intake/FloodLog.cpp
    intake/FloodLog.h
    intake/HeldSigns.cpp
    intake/HeldSigns.h
    intake/MessageIntake.cpp
    intake/MessageIntake.h
    intake/SenderLimits.cpp
    intake/SenderLimits.h
    ${message_reading_SOURCES})
