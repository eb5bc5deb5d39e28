#include "app/display/sign_placement.h"

#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {
constexpr StripShape Horizontal{QSizeF(800, 24), true, false, 16};
constexpr StripShape Scaling{QSizeF(800, 24), true, true, 16};
constexpr StripShape Vertical{QSizeF(100, 600), false, false, 16};

Ref<ZQImageTickerSign> picture(double width, double height) {
  return ZQImageTickerSign::make(Image::make(QSizeF(width, height)));
}
} // namespace

TEST(SignPlacement, PutsAPictureIntoTheMiddleOfTheStrip) {
  const SignPlacement placement = placeSign(*picture(40, 10), Horizontal);
  EXPECT_EQ(placement.fit, 1);
  EXPECT_EQ(placement.length, 40);
  EXPECT_EQ(placement.across, 7);
  EXPECT_EQ(placement.gap, 12) << "half the strip's height";
  const SignPlacement upright = placeSign(*picture(40, 10), Vertical);
  EXPECT_EQ(upright.length, 10);
  EXPECT_EQ(upright.across, 30);
  EXPECT_EQ(upright.gap, 4) << "a quarter of the font's size";
}

TEST(SignPlacement, ScalesALargePictureDownToTheStrip) {
  const SignPlacement placement = placeSign(*picture(100, 48), Horizontal);
  EXPECT_EQ(placement.fit, 0.5);
  EXPECT_EQ(placement.length, 50);
  EXPECT_EQ(placement.breadth, 24);
  EXPECT_EQ(placement.across, 0);
  EXPECT_EQ(placeSign(*picture(400, 48), Vertical).fit, 0.25);
}

TEST(SignPlacement, LeavesTextsAsLargeAsTheyAre) {
  const Ref<ZQTextTickerSign> sign = ZQTextTickerSign::make(u"text"_s);
  const SignPlacement placement = placeSign(*sign, Horizontal);
  EXPECT_EQ(placement.fit, 1);
  EXPECT_EQ(placement.length, sign->size().width());
  EXPECT_DOUBLE_EQ(placement.across, (24 - sign->size().height()) / 2);
  EXPECT_EQ(placement.gap, 0) << "a text brings its own";
  EXPECT_EQ(placeSign(*sign, Vertical).across, 0);
}

TEST(SignPlacement, ScalesTextsToTheHeightWhereAsked) {
  const Ref<ZQTextTickerSign> sign = ZQTextTickerSign::make(u"text"_s);
  const SignPlacement placement = placeSign(*sign, Scaling);
  EXPECT_DOUBLE_EQ(placement.fit, 24 / sign->size().height());
  EXPECT_NEAR(placement.breadth, 24, 1e-9);
  EXPECT_NEAR(placement.across, 0, 1e-9);
  EXPECT_EQ(placeSign(*picture(40, 10), Scaling).fit, 1) << "pictures only shrink";
}

TEST(SignPlacement, GivesSignsThatShowNothingNoLength) {
  EXPECT_EQ(placeSign(*ZQImageTickerSign::make(nullptr), Horizontal).lengthWithGap(), 0);
  EXPECT_EQ(placeSign(*picture(40, 0), Horizontal).lengthWithGap(), 0);
  EXPECT_EQ(placeSign(*picture(0, 40), Horizontal).lengthWithGap(), 0);
}
