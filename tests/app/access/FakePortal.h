// The settings portal of a desktop, on a test's bus.
#pragma once

#include <QtCore/QHash>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusVirtualObject>

#include <utility>

namespace zq::app::testing {

// Answers ReadOne, or Read alone as older ones do, and tells changes. Takes the portal's name on
// the bus of `address` until its end.
class FakePortal : public QDBusVirtualObject {
  Q_OBJECT

 public:
  enum class Age { New, Old };

  explicit FakePortal(const QString& address, Age age = Age::New);
  ~FakePortal() override;

  // Changes a setting; told once the portal has been shown.
  void set(const QString& space, const QString& name, const QVariant& value);
  // Takes the name.
  void show();
  // Tells a change to each connection of the bus by its name, heard or not; they have it when this
  // returns.
  void tellAll(const QString& space, const QString& name, const QVariant& value) const;

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  Age age_;
  bool isShown_ = false;
  QDBusConnection connection_;
  QHash<std::pair<QString, QString>, QVariant> values_;
};

} // namespace zq::app::testing
