# The strip under pointer, finger and keyboard.
set(interaction_SOURCES
    interaction/SignMark.cpp
    interaction/SignMark.h
    interaction/SignOpener.cpp
    interaction/SignOpener.h
    interaction/StripDrag.cpp
    interaction/StripDrag.h
    interaction/StripInteraction.cpp
    interaction/StripInteraction.h
    interaction/StripPointer.cpp
    interaction/StripPointer.h
    interaction/sign_locations.cpp
    interaction/sign_locations.h
    interaction/sign_spots.cpp
    interaction/sign_spots.h)
