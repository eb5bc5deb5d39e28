// What a sign requires of the display that shows it.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QSizeF>

namespace zq::platform {
class Color;
class Font;
} // namespace zq::platform

// The display of a ticker, provided by the host. It owns its signs; a sign refers to it weakly,
// and a sign without a display behaves as if every operation returned zero, false or null.
//
// Thread: main. Lengths are points.
class ZQTICKER_EXPORT ZQTickerDisplayProtocol : public zq::platform::WeakReferenced {
 public:
  ~ZQTickerDisplayProtocol() override;

  // Width and height of the area in which signs scroll.
  virtual QSizeF size() const = 0;
  // 1 is horizontal, every other value vertical.
  virtual int scrollDirection() const = 0;
  // How far above a sign's lower edge its text is drawn.
  virtual qreal textOffset() const = 0;
  // Font and colour of a text that has none of its own; null for the platform's default.
  virtual zq::platform::Ref<zq::platform::Font> defaultFont() const = 0;
  virtual zq::platform::Ref<zq::platform::Color> defaultTextColor() const = 0;
  // Whether attributed text is scaled to the display's height.
  virtual bool shouldAutoscale() const = 0;
};
