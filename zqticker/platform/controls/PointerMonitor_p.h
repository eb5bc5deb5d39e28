// What takes the pointer away from views without a word to them.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointF>

#include <optional>

class QWidget;

namespace zq::platform {

// Where the pointer is.
struct PointerPlace {
  // The widget that has it; null outside of the program's windows, where a menu or another widget
  // keeps it from whoever is below, and where the window system does not tell.
  const QWidget* widget = nullptr;
  QPointF globalPosition;

  static PointerPlace now();

  // The place in the coordinates of `view`; nothing where neither it nor a widget in it has the
  // pointer.
  std::optional<QPointF> over(const QWidget* view) const;
};

// Notices when a menu opens or closes and when a widget takes or releases the mouse: the toolkit
// tells those below the pointer nothing of it. Looks once in each turn of the event loop, and only
// while someone listens.
//
// Thread: main.
class PointerMonitor : public QObject {
  Q_OBJECT

 public:
  static PointerMonitor& shared();

  // Listeners are counted.
  void addListener();
  void removeListener();

  Q_SIGNAL void ownerOfPointerChanged(const PointerPlace& now);

 private:
  PointerMonitor();
  void look();

  int listeners_ = 0;
  const QWidget* grabber_ = nullptr;
  const QWidget* popup_ = nullptr;
};

} // namespace zq::platform
