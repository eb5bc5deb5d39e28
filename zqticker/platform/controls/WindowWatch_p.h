// What happens to a window, for the views in it.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QObject>

class QWidget;

namespace zq::platform {

// One for each window that was asked about, and owned by it. Posts WindowDidResizeNotification.
class WindowWatch : public QObject {
  Q_OBJECT

 public:
  // The watch of the window `window`.
  static WindowWatch* of(QWidget* window);

  const Ref<Object>& windowObject() const { return windowObject_; }

  bool eventFilter(QObject* receiver, QEvent* event) override;

  // Another window has come up that must be answered first.
  Q_SIGNAL void blocked();
  Q_SIGNAL void unblocked();

 private:
  explicit WindowWatch(QWidget* window);

  Ref<Object> windowObject_;
};

} // namespace zq::platform
