// The addresses that signs lead to.
#pragma once

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace zq::app {

// What a sign's text for an address turns out to be.
struct SignLocation {
  QUrl url;        // to be opened; invalid where it is refused
  QString refusal; // why, without a full stop; empty where it is not

  bool isOpenable() const { return refusal.isEmpty(); }
};

// Bytes of an address as it is handed to another program, which takes no more than so many.
inline constexpr qsizetype LongestLocation = 65'536;

// The address in `text`, as far as signs may lead there: http and https with a host, and files of
// this machine by their whole paths. White space around it does not count, and characters that an
// address has to escape are escaped. Everything else is refused: other schemes, relative addresses,
// control characters, and desktop entries, since opening them starts a program.
SignLocation locationOf(const QString& text);

// The address for people, shortened in its middle, without a user's name and password: those are
// used to let an address look like another one.
QString shortenedLocation(const QUrl& url);

} // namespace zq::app
