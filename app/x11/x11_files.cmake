# What the X server tells and does beside Qt.
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-present xcb-randr xcb-render xcb-screensaver)
set(x11_SOURCES
    x11/EdgeReservation.cpp
    x11/EdgeReservation.h
    x11/OtherReservations.cpp
    x11/OtherReservations.h
    x11/PixmapSurface.cpp
    x11/PixmapSurface.h
    x11/ScreenReservation.cpp
    x11/ScreenReservation.h
    x11/ServerScreenSaver.cpp
    x11/ServerScreenSaver.h
    x11/TruePosition.cpp
    x11/TruePosition.h
    x11/TrueScreens.cpp
    x11/TrueScreens.h
    x11/VerticalBlank.cpp
    x11/VerticalBlank.h
    x11/WindowVisibility.cpp
    x11/WindowVisibility.h
    x11/XConnection.cpp
    x11/XConnection.h
    x11/active_window.cpp
    x11/active_window.h
    x11/window_rect.cpp
    x11/window_rect.h
    x11/x_properties.cpp
    x11/x_properties.h
    x11/x_replies.h)
