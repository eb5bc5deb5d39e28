// The ways of a frame to the screen.
#pragma once

#include "app/display/StripFrame.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtGui/QColor>

#include <memory>

class QPaintEvent;
class QWidget;
class QWindow;

namespace zq::app {

class PixmapSurface;

// Shows frames in a window: by QPainter everywhere, and by copies within the X server, see
// PixmapSurface, where there is one and nothing else is to be seen in the window. Both show the
// same pixels and may take turns at any moment; what the window system wants painted again always
// goes through QPainter.
//
// The window must call paint() in its paint event, and nothing else may be painted there.
//
// Thread: main.
class StripSurface : public QObject {
 public:
  enum class Way {
    Best,    // within the X server wherever that can be
    Painter, // always by QPainter
  };

  // `window` must be a window of its own and outlive this object.
  explicit StripSurface(QWidget& window);
  ~StripSurface() override;

  void setWay(Way way) { way_ = way; }

  // Shows `frame` over `background` now.
  void show(const StripFrame& frame, const QColor& background);
  // Paints the window's paint event.
  void paint(const QPaintEvent& event, const StripFrame& frame, const QColor& background);

  // Frames that were shown within the X server.
  std::uint64_t nativeCount() const { return nativeCount_; }
  // Null while frames are not shown that way.
  const PixmapSurface* native() const { return native_.get(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool isAlone(const QColor& background) const;
  bool showNatively(const StripFrame& frame, const QColor& background);
  bool prepareNative();
  void awaitNative();
  void awaitPainted();
  void dropNative();
  void lose();

  QWidget& window_;
  QPointer<QWindow> handle_; // whose events are watched
  Way way_ = Way::Best;
  std::unique_ptr<PixmapSurface> native_;
  unsigned long tried_ = 0;   // the window for which it was or could not be made
  bool isLost_ = false;       // the server has gone
  bool isStoreOld_ = false;   // what the window keeps of itself lacks what was shown natively
  bool isNativeDue_ = false;  // the server may not have done what was asked natively
  bool isPaintedDue_ = false; // the same of what was painted
  std::uint64_t nativeCount_ = 0;
};

} // namespace zq::app
