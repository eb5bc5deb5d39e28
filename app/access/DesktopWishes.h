// What the desktop says of how its user wants programs to be.
#pragma once

#include "app/bus/BusListener.h"
#include "app/bus/bus_address.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QVariant>

#include <optional>
#include <utility>

namespace zq::app {

// Reads the settings portal of the desktop (org.freedesktop.portal.Settings) and follows its
// changes; nobody else's word counts. Nothing waits for it and nothing starts it: until it has
// answered, and where there is none, the files of the desktops' own settings decide, as they were
// when the program started. Where the portal goes away, what it said last holds.
//
// Less motion is wished for where "reduced-motion" of org.freedesktop.appearance is 1; where the
// portal does not know that key, where the desktop's animations are switched off. More contrast is
// wished for where "contrast" there is 1; without it where the desktop's own switch for it is on or
// its theme is a high-contrast one.
//
// Thread: main.
class DesktopWishes : public QObject {
  Q_OBJECT

 public:
  // Of the session bus at `address`; nothing for no bus. `folder` is that of the user's settings,
  // $XDG_CONFIG_HOME.
  explicit DesktopWishes(std::optional<QString> address = sessionBusAddress(),
                         const QString& folder = usualFolder());
  ~DesktopWishes() override;

  bool reducesMotion() const { return reducesMotion_; }
  bool raisesContrast() const { return raisesContrast_; }
  // One of them is another than before.
  Q_SIGNAL void changed();

 private:
  using Key = std::pair<QString, QString>; // name space and name

  static QString usualFolder();
  void readFiles(const QString& folder);
  void ask(const Key& key, const QString& method);
  void hear(const QDBusMessage& signal);
  void take(const Key& key, const QVariant& value);
  void decide();
  bool decideMotion() const;
  bool decideContrast() const;

  BusListener bus_;
  QHash<Key, QVariant> values_; // as the portal says, or the files
  bool reducesMotion_ = false;
  bool raisesContrast_ = false;
};

} // namespace zq::app
