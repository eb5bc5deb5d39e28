# The controls on the strip; included by the program's list file.
set(control_SOURCES
    controls/ControlBar.cpp
    controls/ControlBar.h
    controls/ControlBarButton.cpp
    controls/ControlBarButton.h
    controls/RestingPointer.cpp
    controls/RestingPointer.h
    controls/control_glyphs.cpp
    controls/control_glyphs.h)
