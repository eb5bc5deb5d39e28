// The accessible objects of a strip and of the signs on it.
#pragma once

#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>

#include <cstdint>

namespace zq::app {

class StripVoice;

// Lets strips that have a StripVoice be known to assistive technology by it. Once is enough.
void installAccessibleStrips();

// An animation, that is to say something whose contents change by themselves, called "Ticker". Its
// value and its description are what is to be read on it, a line for each sign; its children are
// the signs in sight, the one that leaves next first. It is marqueed while signs scroll, and
// animated while they move.
class AccessibleStrip : public QAccessibleWidget {
 public:
  AccessibleStrip(QWidget* strip, StripVoice& voice);

  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QString text(QAccessible::Text kind) const override;
  QAccessible::State state() const override;

 private:
  QPointer<StripVoice> voice_;
};

// One showing of a sign: a notification with the sign's text as its name. Pressing it does what a
// click does, where that opens something.
class AccessibleSign : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  AccessibleSign(StripVoice& voice, std::uint64_t run);

  std::uint64_t run() const { return run_; }

  bool isValid() const override;
  QObject* object() const override { return nullptr; }
  QWindow* window() const override;
  QAccessibleInterface* parent() const override;
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QString text(QAccessible::Text kind) const override;
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override;
  QAccessible::Role role() const override { return QAccessible::Notification; }
  QAccessible::State state() const override;
  void* interface_cast(QAccessible::InterfaceType type) override;

  QStringList actionNames() const override;
  void doAction(const QString& name) override;
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  QPointer<StripVoice> voice_;
  std::uint64_t run_;
};

} // namespace zq::app
