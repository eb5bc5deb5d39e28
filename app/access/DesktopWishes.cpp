#include "app/access/DesktopWishes.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString PortalName = u"org.freedesktop.portal.Desktop"_s;
const QString PortalPath = u"/org/freedesktop/portal/desktop"_s;
const QString PortalInterface = u"org.freedesktop.portal.Settings"_s;
const QString ChangedSignal = u"SettingChanged"_s;

// Name spaces and names of settings in the portal.
using Key = std::pair<QString, QString>;
const Key ReducedMotion{u"org.freedesktop.appearance"_s, u"reduced-motion"_s};
const Key Contrast{u"org.freedesktop.appearance"_s, u"contrast"_s};
const Key Animations{u"org.gnome.desktop.interface"_s, u"enable-animations"_s};
const Key Theme{u"org.gnome.desktop.interface"_s, u"gtk-theme"_s};
const Key HighContrast{u"org.gnome.desktop.a11y.interface"_s, u"high-contrast"_s};
const Key AnimationFactor{u"org.kde.kdeglobals.KDE"_s, u"AnimationDurationFactor"_s};
const Key Keys[] = {ReducedMotion, Contrast, Animations, Theme, HighContrast, AnimationFactor};

// How the portal says that a wish is there.
constexpr uint Wished = 1;

// Values come in one variant, or, by the older way of asking, in two.
QVariant plain(QVariant value) {
  while (value.metaType() == QMetaType::fromType<QDBusVariant>())
    value = value.value<QDBusVariant>().variant();
  return value;
}

// A switch as it is written in files and on the bus.
bool isOff(const QVariant& value) {
  const QString text = value.toString();
  return text == "false"_L1 || text == "0"_L1;
}
} // namespace

DesktopWishes::DesktopWishes(std::optional<QString> address, const QString& folder)
    : bus_(std::move(address)) {
  readFiles(folder);
  decide();
  connect(&bus_, &BusListener::opened, this,
          [this] { bus_.listen(PortalName, PortalPath, PortalInterface, ChangedSignal); });
  connect(&bus_, &BusListener::heard, this, &DesktopWishes::hear);
  connect(&bus_, &BusListener::ownerChanged, this, [this](const QString&, bool isThere) {
    if (isThere)
      for (const Key& key : Keys)
        ask(key, u"ReadOne"_s);
  });
  bus_.open();
}

DesktopWishes::~DesktopWishes() = default;

QString DesktopWishes::usualFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

void DesktopWishes::readFiles(const QString& folder) {
  const auto read = [&](const Key& key, const QString& file, const QString& name) {
    const QVariant value = QSettings(folder + u'/' + file, QSettings::IniFormat).value(name);
    if (value.isValid() && !values_.contains(key))
      values_.insert(key, value);
  };
  for (const QString& file : {u"gtk-4.0/settings.ini"_s, u"gtk-3.0/settings.ini"_s}) {
    read(Animations, file, u"Settings/gtk-enable-animations"_s);
    read(Theme, file, u"Settings/gtk-theme-name"_s);
  }
  read(AnimationFactor, u"kdeglobals"_s, u"KDE/AnimationDurationFactor"_s);
}

void DesktopWishes::ask(const Key& key, const QString& method) {
  bus_.ask(PortalName, PortalPath, PortalInterface, method, {key.first, key.second},
           [this, key, method](const QDBusMessage& reply) {
             if (reply.type() == QDBusMessage::ReplyMessage)
               take(key, reply.arguments().value(0));
             else if (method == "ReadOne"_L1 &&
                      reply.errorName() == "org.freedesktop.DBus.Error.UnknownMethod"_L1)
               ask(key, u"Read"_s); // as older portals call it
           });
}

void DesktopWishes::hear(const QDBusMessage& signal) {
  if (signal.signature() != "ssv"_L1)
    return;
  const Key key(signal.arguments().at(0).toString(), signal.arguments().at(1).toString());
  if (std::find(std::begin(Keys), std::end(Keys), key) != std::end(Keys))
    take(key, signal.arguments().at(2));
}

void DesktopWishes::take(const Key& key, const QVariant& value) {
  values_.insert(key, plain(value));
  decide();
}

bool DesktopWishes::decideMotion() const {
  if (const auto wish = values_.find(ReducedMotion); wish != values_.end())
    return wish->toUInt() == Wished;
  if (const auto factor = values_.find(AnimationFactor); factor != values_.end()) {
    bool isNumber = false;
    if (factor->toDouble(&isNumber) == 0 && isNumber)
      return true;
  }
  return isOff(values_.value(Animations));
}

bool DesktopWishes::decideContrast() const {
  if (const auto wish = values_.find(Contrast); wish != values_.end())
    return wish->toUInt() == Wished;
  return values_.value(HighContrast).toBool() ||
         values_.value(Theme).toString().startsWith("HighContrast"_L1);
}

void DesktopWishes::decide() {
  const bool reduces = decideMotion();
  const bool raises = decideContrast();
  if (reduces == reducesMotion_ && raises == raisesContrast_)
    return;
  reducesMotion_ = reduces;
  raisesContrast_ = raises;
  Q_EMIT changed();
}

} // namespace zq::app
