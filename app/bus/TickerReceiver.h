// What does that which programs ask for over the bus.
#pragma once

#include "app/intake/ArrivingSign.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace zq::app {

// Whose call it is and how large: what limits are counted by.
struct BusSender {
  QString name; // its unique name on the bus, never empty
  qsizetype bytes = 0;
};

// Receives requests one by one, in the order in which a sender made them; the next one when what
// is to be displayed is shown. Whatever is raised, also by showing, goes back to the sender: a
// BusFailure as it says, another exception as org.zqticker.Error.Failed.
//
// Thread: main.
class TickerReceiver {
 public:
  virtual ~TickerReceiver() = default;

  // What is to be decoded, which may happen on another thread, and shown.
  virtual ArrivingSign displayMessage(const QVariantMap& message, const BusSender& sender) = 0;
  // The same for one that was broadcast; whatever is wrong with it is the receiver's to log.
  virtual ArrivingSign displayNotification(const QVariantMap& message, const BusSender& sender) = 0;
  virtual ArrivingSign displaySign(const QByteArray& archive, const QVariantMap& origin,
                                   const BusSender& sender) = 0;
  // Whether there was one.
  virtual bool removeSign(const QString& identifier, const BusSender& sender) = 0;
  virtual void arrangeSigns(const QStringList& identifiers, const BusSender& sender) = 0;
  // An invalid descriptor stands for no standard input.
  virtual void run(const QStringList& arguments, const QString& folder,
                   const QDBusUnixFileDescriptor& standardInput) = 0;
  virtual void showQueue() = 0;
  virtual void showSettings() = 0;
  virtual void pause() = 0;
  virtual void resume() = 0;
  virtual void hide() = 0;
  virtual void show() = 0;
  virtual void focus() = 0;
  // The reply has been sent already.
  virtual void quit() = 0;
};

} // namespace zq::app
