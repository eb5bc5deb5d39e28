// Properties of X windows.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace zq::app {

// The property by which strips know each other.
inline constexpr const char* StripMark = "_ZQTICKER_STRIP";

// The atom of a name, made where the server has none yet; asked for once. Thread: main.
xcb_atom_t atomOf(xcb_connection_t* connection, const char* name);

// A request for the 32-bit values of a property, and its answer: empty where there is no such
// property or window, or it holds something else. Several are asked for before the first answer is
// waited for.
xcb_get_property_cookie_t askForValues(xcb_connection_t* connection, xcb_window_t window,
                                       xcb_atom_t property, xcb_atom_t type);
std::vector<std::uint32_t> valuesOf(xcb_connection_t* connection, xcb_get_property_cookie_t asked);

// Both in one.
std::vector<std::uint32_t> readValues(xcb_connection_t* connection, xcb_window_t window,
                                      xcb_atom_t property, xcb_atom_t type);

// Replaces a property by 32-bit values.
void writeValues(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                 xcb_atom_t type, const std::vector<std::uint32_t>& values);

} // namespace zq::app
