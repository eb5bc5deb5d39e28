// A rollover button as a picture, without a window.
#pragma once

#include "zqticker/platform/controls/control_types.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <optional>

class QColor;
class QPainter;
class ZQRollOverButtonAppearance;

namespace zq::platform {
class Menu;
}

namespace zq::app {

// What a user does to a button. One that is pressed has the pointer over it, which the others do
// not.
enum class SampleState { Normal, MouseOver, Pressed, On, Disabled };
inline constexpr SampleState SampleStates[] = {SampleState::Normal, SampleState::MouseOver,
                                               SampleState::Pressed, SampleState::On,
                                               SampleState::Disabled};

// One button: a look with its bezel and its shading, and the state in which it is seen.
struct ButtonSample {
  platform::Ref<ZQRollOverButtonAppearance> appearance;
  SampleState state = SampleState::Normal;
  // Null for a button without one.
  platform::Ref<platform::Menu> menu{};
  platform::ControlSize controlSize = platform::ControlSize::Regular;
  QString title{};
  // Whether the button's own coordinates run downwards, as those of a window's buttons do.
  bool isFlipped = true;

  // Draws it with its upper left corner at the painter's origin; nothing outside of `size`. The
  // painter's units are points.
  void draw(QPainter& painter, QSizeF size) const;
};

// The height in points of a button of that size.
double heightOfButton(platform::ControlSize size);

// The contrast of the title to the bezel in front of `ground`, in a gradient to the end that is
// closer to it; nothing without a colour for either.
std::optional<double> titleContrast(const ZQRollOverButtonAppearance& appearance, SampleState state,
                                    const QColor& ground);

} // namespace zq::app
