// From options to a display that is ready to move.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/display/TickerDisplay.h"
#include "app/services/ClockText.h"

namespace zq::app {

// What the options leave to the program: size, font and color.
struct StripLook {
  QSizeF size; // points
  platform::Ref<platform::Font> font;
  platform::Ref<platform::Color> color;
};

// The look of a strip in `room` (points), for what the options do not state: a horizontal strip is
// as wide as the room, a vertical one as high. Raises RunTimeError for an unknown font.
StripLook lookOf(const StripOptions& options, QSizeF room);

// Gives `display` its look at `time`; what it has already is left alone, since every sign would be
// laid out anew.
void setUpDisplay(TickerDisplay& display, const StripOptions& options, const StripLook& look,
                  double time);

// Gives `display` its look and the signs of the options, all read and checked, at `time`. Raises
// RunTimeError for what cannot be shown; the display is unchanged then.
void fillDisplay(TickerDisplay& display, const StripOptions& options, const StripLook& look,
                 double time);

// The clock of the options, whose sign has ClockIdentifier.
std::optional<ClockText> clockTextOf(const StripOptions& options);

// The loop rule of lines of standard input.
LoopRule lineRuleOf(const StripOptions& options);

// The loop rule of the items of feeds: shown without end unless the options say otherwise.
LoopRule feedRuleOf(const StripOptions& options);
// The room that a picture beside an item has, in pixels, at `scale` device pixels a point; enough
// for a strip that is made twice as large.
QSize pictureRoomOf(const StripOptions& options, const StripLook& look, double scale);

} // namespace zq::app
