#include "app/x11/x_properties.h"

#include "app/x11/x_replies.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>

namespace zq::app {

namespace {
// In units of four bytes: more windows or values than there ever are.
constexpr std::uint32_t MostValues = 65'536;
} // namespace

// Atoms belong to the server and are the same on every connection to it.
xcb_atom_t atomOf(xcb_connection_t* connection, const char* name) {
  static QHash<QByteArray, xcb_atom_t> atoms;
  const QByteArray key(name);
  if (const auto found = atoms.constFind(key); found != atoms.constEnd())
    return *found;
  const auto reply = owned(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, false, static_cast<std::uint16_t>(key.size()), key.constData()),
      nullptr));
  if (!reply)
    return XCB_ATOM_NONE;
  atoms.insert(key, reply->atom);
  return reply->atom;
}

xcb_get_property_cookie_t askForValues(xcb_connection_t* connection, xcb_window_t window,
                                       xcb_atom_t property, xcb_atom_t type) {
  return xcb_get_property(connection, false, window, property, type, 0, MostValues);
}

std::vector<std::uint32_t> valuesOf(xcb_connection_t* connection, xcb_get_property_cookie_t asked) {
  const auto reply = owned(xcb_get_property_reply(connection, asked, nullptr));
  if (!reply || reply->format != 32)
    return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

std::vector<std::uint32_t> readValues(xcb_connection_t* connection, xcb_window_t window,
                                      xcb_atom_t property, xcb_atom_t type) {
  return valuesOf(connection, askForValues(connection, window, property, type));
}

void writeValues(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                 xcb_atom_t type, const std::vector<std::uint32_t>& values) {
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                      static_cast<std::uint32_t>(values.size()), values.data());
}

} // namespace zq::app
