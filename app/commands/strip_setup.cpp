#include "app/commands/strip_setup.h"

#include "app/commands/sign_loading.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/FontManager.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

using namespace platform;

namespace {
constexpr double UsualHeight = 24;
constexpr double UsualVerticalWidth = 240;
// The font in a vertical strip, whose height says nothing about it.
constexpr double VerticalFontSize = 16;
// The part of a horizontal strip's height that a line of text takes.
constexpr double TextFraction = 0.8;

// The largest side of a picture beside an item, in pixels, and its length in breadths.
constexpr double LargestPicture = 2048;
constexpr double LongestPicture = 4;

Ref<Font> fontToFit(const Ref<Font>& font, double height) {
  return FontManager::sharedFontManager().convertFontToFitHeight(font, height);
}
} // namespace

StripLook lookOf(const StripOptions& options, QSizeF room) {
  FoundFont found = options.font ? findFont(*options.font, VerticalFontSize)
                                 : FoundFont{Font::systemFontOfSize(VerticalFontSize), false};
  StripLook look;
  look.color = options.color ? Color::fromQColor(*options.color) : Color::deviceRGB(0, 0, 0);
  if (!options.isHorizontal()) {
    look.size =
        QSizeF(options.width.value_or(UsualVerticalWidth), options.height.value_or(room.height()));
    look.font = found.font;
    return look;
  }
  const double fontHeight =
      found.hasSize ? std::ceil(found.font->lineHeight() / TextFraction) : UsualHeight;
  look.size = QSizeF(options.width.value_or(room.width()),
                     options.height.value_or(std::max(fontHeight, UsualHeight)));
  if (options.autoscale)
    look.font = fontToFit(found.font, look.size.height());
  else
    look.font =
        found.hasSize ? found.font : fontToFit(found.font, look.size.height() * TextFraction);
  return look;
}

void setUpDisplay(TickerDisplay& display, const StripOptions& options, const StripLook& look,
                  double time) {
  display.setShape(options.direction, look.size, time);
  if (!display.defaultFont() || !display.defaultFont()->isEqual(*look.font))
    display.setDefaultFont(look.font);
  if (!display.defaultTextColor() || !display.defaultTextColor()->isEqual(*look.color))
    display.setDefaultTextColor(look.color);
  if (display.shouldAutoscale() != (options.autoscale && options.isHorizontal()))
    display.setShouldAutoscale(options.autoscale);
  display.setEdgeFade(options.fade);
  if (display.speed() != options.speed)
    display.setSpeed(options.speed, time);
}

void fillDisplay(TickerDisplay& display, const StripOptions& options, const StripLook& look,
                 double time) {
  const std::vector<Ref<ZQTickerSign>> signs = loadSigns(options, look.font, look.color);
  setUpDisplay(display, options, look, time);
  for (const Ref<ZQTickerSign>& sign : signs)
    display.addSign(sign, time);
}

std::optional<ClockText> clockTextOf(const StripOptions& options) {
  for (const SignSource& source : options.sources)
    if (source.kind == SignSource::Kind::Clock)
      return ClockText::make(source.text);
  return std::nullopt;
}

LoopRule lineRuleOf(const StripOptions& options) {
  return {options.loopCount.value_or(1), options.loopDelay.value_or(0), options.continuous};
}

LoopRule feedRuleOf(const StripOptions& options) {
  return {options.loopCount.value_or(ZQEndlessLoopCount), options.loopDelay.value_or(0),
          options.continuous};
}

QSize pictureRoomOf(const StripOptions& options, const StripLook& look, double scale) {
  const double across = options.isHorizontal() ? look.size.height() : look.size.width();
  const int breadth = static_cast<int>(std::ceil(std::min(across * scale * 2, LargestPicture)));
  const int length = static_cast<int>(std::min(breadth * LongestPicture, LargestPicture));
  return options.isHorizontal() ? QSize(length, breadth) : QSize(breadth, length);
}

} // namespace zq::app
