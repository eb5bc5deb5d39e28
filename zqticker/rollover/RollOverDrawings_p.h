// What a rollover button's cell keeps from one draw to the next.
#pragma once

#include "zqticker/platform/text/ParagraphStyle.h"

#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtGui/QPainterPath>
#include <QtGui/QTransform>

#include <deque>

namespace zq::platform {
class AttributedString;
class BezierPath;
class Color;
class Font;
} // namespace zq::platform

namespace zq {

// A copy of an outline at the place where it is drawn.
class PlacedOutline {
 public:
  // A copy of `outline` moved by `offset`, the same one as long as nothing changes. Null for null.
  //
  // Its line is one point wide. On a device with a fraction of a pixel to the point the copy is
  // stretched by a pixel at most, so that the outer edges of its line lie between pixels, and the
  // line takes the number of whole pixels that is nearest to a point.
  std::shared_ptr<platform::BezierPath> at(QPointF offset,
                                           const std::shared_ptr<platform::BezierPath>& outline,
                                           const QTransform& toDevice);

 private:
  // The points of the outline, which may change within the same object.
  QPainterPath source_;
  QTransform toPlace_;
  std::shared_ptr<platform::BezierPath> placed_;
};

// What a title is made of.
struct TitleLook {
  QString text;
  std::shared_ptr<platform::Font> font;
  std::shared_ptr<platform::Color> color;
  platform::TextAlignment alignment = platform::TextAlignment::Natural;
  // Of its room, in points.
  double width = 0;

  friend bool operator==(const TitleLook&, const TitleLook&) = default;
};

// Objects that drawing makes out of others, kept while it goes on asking for them. Text and shadows
// are laid out and blurred once for each object, so that a new one for every draw would have that
// done again.
//
// Thread: main.
class RollOverDrawings {
 public:
  RollOverDrawings();
  ~RollOverDrawings();
  RollOverDrawings(const RollOverDrawings&) = delete;
  RollOverDrawings& operator=(const RollOverDrawings&) = delete;

  PlacedOutline background;
  PlacedOutline highlightedBackground;

  // disabledColor of `color`, the same object at every call; colours are immutable.
  std::shared_ptr<platform::Color> disabled(const std::shared_ptr<platform::Color>& color);

  // The text on one line, cut at its end to fit; null where nothing of it does. Cells that show the
  // same share it.
  std::shared_ptr<platform::AttributedString> title(const TitleLook& look);

 private:
  struct DisabledColor {
    std::shared_ptr<platform::Color> color;
    std::shared_ptr<platform::Color> disabled;
  };
  struct Title {
    TitleLook look;
    std::shared_ptr<platform::AttributedString> shown;
  };

  // Oldest first.
  std::deque<Title> titles_;
};

} // namespace zq
