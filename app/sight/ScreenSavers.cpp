#include "app/sight/ScreenSavers.h"

#include "app/bus/BusListener.h"

#include <QtDBus/QDBusMessage>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
struct ScreenSaver {
  QString service; // the interface is called so too
  QString path;    // of the object that is asked; its signals may come from another
};

const ScreenSaver Known[] = {
    {u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s},
    {u"org.gnome.ScreenSaver"_s, u"/org/gnome/ScreenSaver"_s},
    {u"org.cinnamon.ScreenSaver"_s, u"/org/cinnamon/ScreenSaver"_s},
    {u"org.mate.ScreenSaver"_s, u"/org/mate/ScreenSaver"_s},
    {u"org.xfce.ScreenSaver"_s, u"/org/xfce/ScreenSaver"_s},
};
const QString ActiveSignal = u"ActiveChanged"_s;

// What a reply or a signal with one truth value says; nothing for anything else.
std::optional<bool> truthOf(const QDBusMessage& message) {
  if (message.signature() != "b"_L1)
    return std::nullopt;
  return message.arguments().value(0).toBool();
}
} // namespace

ScreenSavers::ScreenSavers(BusListener& bus, QObject* parent) : QObject(parent), bus_(bus) {
  connect(&bus, &BusListener::opened, this, &ScreenSavers::listen);
  connect(&bus, &BusListener::heard, this, &ScreenSavers::hear);
  connect(&bus, &BusListener::ownerChanged, this, [this](const QString& service, bool isThere) {
    // One that has ended covers nothing, and another one may do already.
    setActive(service, false);
    if (isThere)
      askWhether(service);
  });
  connect(&bus, &BusListener::closed, this, [this] {
    active_.clear();
    Q_EMIT changed();
  });
}

ScreenSavers::~ScreenSavers() = default;

void ScreenSavers::listen() {
  for (const ScreenSaver& each : Known)
    bus_.listen(each.service, QString(), each.service, ActiveSignal);
}

void ScreenSavers::hear(const QDBusMessage& signal) {
  if (signal.member() != ActiveSignal)
    return;
  if (const std::optional<bool> isActive = truthOf(signal))
    setActive(signal.interface(), *isActive);
}

void ScreenSavers::askWhether(const QString& service) {
  for (const ScreenSaver& each : Known)
    if (each.service == service)
      bus_.ask(service, each.path, service, u"GetActive"_s, {},
               [this, service](const QDBusMessage& reply) {
                 if (const std::optional<bool> isActive = truthOf(reply))
                   setActive(service, *isActive);
               });
}

void ScreenSavers::setActive(const QString& service, bool isActive) {
  if (active_.contains(service) == isActive)
    return;
  if (isActive)
    active_.insert(service);
  else
    active_.remove(service);
  Q_EMIT changed();
}

} // namespace zq::app
