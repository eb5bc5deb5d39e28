// The window that has the keyboard, as window managers tell it.
#pragma once

#include <QtGui/qwindowdefs.h>

namespace zq::app {

// All of it goes over the toolkit's own connection: the window manager then learns what the toolkit
// has said of a window before it is asked to activate that.

// Whether this program shows its windows on an X server.
bool isOnXServer();

// The active window by _NET_ACTIVE_WINDOW; 0 for none.
WId activeWindow();

// Asks the window manager to activate a window, in the user's name: it does so whatever has
// happened since the user's last event here. Without a window manager that knows of this the window
// gets the keyboard at once. False where the window cannot be seen, or is none.
bool activateWindow(WId window);

// Lets the window manager choose who has the keyboard.
void leaveKeyboard();

} // namespace zq::app
