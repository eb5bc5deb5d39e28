set(app_x11_SOURCES
    Desk.h
    DockedStripTest.cpp
    EdgeReservationTest.cpp
    FloatingStripTest.cpp
    LostConnectionTest.cpp
    ScreenChangesTest.cpp
    ServerBlanks.h
    StripOnDesk.h)

zqticker_probe(
  window x11/WindowProbe.cpp
  TESTS settings/SeveralScreensTest.cpp x11/DockedStripTest.cpp x11/FloatingStripTest.cpp
        x11/LostConnectionTest.cpp x11/ScreenChangesTest.cpp
  LIBRARIES Qt6::Widgets)
zqticker_probe(ticker x11/TickerProbe.cpp TESTS x11/LostConnectionTest.cpp LIBRARIES zqticker_app)
