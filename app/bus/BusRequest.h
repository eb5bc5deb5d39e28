// What a program asks of the ticker.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace zq::app {

// A call to the ticker's object, or the notification, with plain values. What a kind does not use
// is empty.
struct BusRequest {
  enum class Kind {
    DisplayMessage,
    DisplayNotification,
    DisplaySign,
    RemoveSign,
    ArrangeSigns,
    Run,
    ShowQueue,
    ShowSettings,
    Pause,
    Resume,
    Hide,
    Show,
    Focus,
    Quit,
  };

  Kind kind = Kind::DisplayMessage;
  QString sender; // its unique name on the bus
  qsizetype bytes = 0;
  QVariantMap dictionary; // the message, or a sign's origin
  QByteArray archive;
  QString text;        // an identifier, or a folder
  QStringList strings; // identifiers, or arguments
  QDBusUnixFileDescriptor descriptor;
};

} // namespace zq::app
