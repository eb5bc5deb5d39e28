// A strip of pictures, to be handled.
#pragma once

#include "app/display/SignAction.h"
#include "app/display/StripWidget.h"
#include "app/interaction/SignOpener.h"
#include "tests/app/FakePointer.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtGui/QCursor>

#include <gtest/gtest.h>

namespace zq::app::testing {

// 200 points long and 24 high, at 20 points a second. Pictures in it are followed by a gap of 12.
class HandledStrip : public ::testing::Test {
 protected:
  HandledStrip() : display(FrameClock::now()), strip(display, Qt::white) {
    // The platform without a screen says so of every window that stays on top.
    zq::testing::allowLog(QStringLiteral("does not support raise()"));
    // Far from everything.
    QCursor::setPos(780, 580);
    display.setDefaultFont(platform::Font::systemFontOfSize(13));
    display.setDefaultTextColor(platform::Color::deviceRGB(0, 0, 0));
    strip.resize(200, 24);
    display.setSpeed(20, strip.time());
  }

  static platform::Ref<ZQImageTickerSign> picture(int width, const QString& location = {}) {
    QImage image(width, 24, QImage::Format_RGB32);
    image.fill(Qt::red);
    const auto sign = ZQImageTickerSign::make(platform::Image::fromQImage(image));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    if (!location.isEmpty()) {
      sign->setActionType(OpenLocation);
      sign->setActionString(location);
    }
    return sign;
  }
  TickerDisplay::Entry add(const platform::Ref<ZQTickerSign>& sign, SignOrigin origin = {}) {
    const auto entry = display.addSign(sign, strip.time(), std::move(origin));
    strip.displayChanged();
    return entry;
  }

  // Shows the strip, and its first sign at the far edge, from where it goes on.
  void show() {
    strip.show();
    ASSERT_TRUE(waitUntil([&] {
      strip.displayChanged();
      return !display.strip().runs().empty();
    }));
    display.stepForward(strip.time());
    strip.displayChanged();
    ASSERT_TRUE(waitUntil([&] { return display.strip().travel() >= 200; }));
  }

  double travel() {
    strip.displayChanged();
    return display.strip().travel();
  }
  bool stands() const { return display.isPaused() && display.strip().speed() == 0; }
  bool moves() const { return !display.isPaused(); }

  TickerDisplay display;
  StripWidget strip;
  std::vector<QUrl> opened;
  SignOpener opener{[this](const QUrl& url, const QVariant&) {
    opened.push_back(url);
    return true;
  }};
};

} // namespace zq::app::testing
