# Display messages.
set(message_SOURCES
    intake/DisplayMessage.cpp
    intake/DisplayMessage.h
    intake/FloodLog.cpp
    intake/FloodLog.h
    intake/HeldSigns.cpp
    intake/HeldSigns.h
    intake/MessageIntake.cpp
    intake/MessageIntake.h
    intake/MessageValues.cpp
    intake/MessageValues.h
    intake/SenderLimits.cpp
    intake/SenderLimits.h
    intake/message_pictures.cpp
    intake/message_pictures.h
    intake/sign_archives.cpp
    intake/sign_archives.h)
