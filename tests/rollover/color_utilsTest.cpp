#include "zqticker/rollover/color_utils.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/SystemColors.h"
#include "zqticker/rollover/color_utils_p.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq;

namespace {

// Far below a step of an 8-bit channel, far above the rounding of doubles.
constexpr double tolerance = 1e-12;

Ref<Color> hsb(double hue, double saturation, double brightness, double alpha = 1) {
  return Color::calibratedHSB(hue, saturation, brightness, alpha);
}

void expectHSB(const Ref<Color>& color, double hue, double saturation, double brightness,
               double alpha = 1) {
  ASSERT_NE(color, nullptr);
  EXPECT_EQ(color->space(), Color::Space::CalibratedRGB);
  EXPECT_NEAR(color->hueComponent(), hue, tolerance);
  EXPECT_NEAR(color->saturationComponent(), saturation, tolerance);
  EXPECT_NEAR(color->brightnessComponent(), brightness, tolerance);
  EXPECT_NEAR(color->alphaComponent(), alpha, tolerance);
}

// A theme for the running test.
class Theme {
 public:
  explicit Theme(SystemColors::Table table) { SystemColors::setTable(std::move(table)); }
  ~Theme() { SystemColors::setTable(nullptr); }
  Theme(const Theme&) = delete;
  Theme& operator=(const Theme&) = delete;
};

Theme themeWithTint(const Ref<Color>& tint) {
  return Theme([tint](const QString& name) {
    return name == "selectedControlColor"_L1 ? tint : Ref<Color>();
  });
}

} // namespace

TEST(LightYellowColor, HasItsComponents) {
  expectHSB(lightYellowColor(), 0.2, 0.2, 1);
}

TEST(AccentColor, OfABrightColorIsItsHueAtHalfTheBrightness) {
  expectHSB(accentColor(hsb(0.6, 0.3, 0.31, 0.5)), 0.6, 1, 0.155, 0.5);
  expectHSB(accentColor(hsb(0.1, 0.9, 1)), 0.1, 1, 0.5);
}

TEST(AccentColor, OfADarkColorIsTheTintAtFullBrightness) {
  const Theme theme = themeWithTint(Color::deviceRGB(0.1, 0.2, 0.4, 0.75));
  for (const double brightness : {0.0, 0.15, 0.3})
    expectHSB(accentColor(hsb(0.1, 0.5, brightness, 0.5)), 11 / 18.0, 1, 1, 0.75);
  expectHSB(accentColor(Color::calibratedWhite(0.3)), 11 / 18.0, 1, 1, 0.75);
}

TEST(AccentColor, AsksTheThemeOnEveryCall) {
  const auto black = Color::calibratedWhite(0);
  {
    const Theme theme = themeWithTint(Color::deviceRGB(1, 0, 0));
    expectHSB(accentColor(black), 0, 1, 1);
  }
  const Theme theme = themeWithTint(Color::deviceRGB(0, 1, 0));
  expectHSB(accentColor(black), 1 / 3.0, 1, 1);
}

TEST(AccentColor, OfAGrayThemeIsBluish) {
  const Theme theme = themeWithTint(Color::deviceWhite(0.5));
  const auto accent = accentColor(Color::calibratedWhite(0));
  EXPECT_NEAR(accent->hueComponent(), 0.583, 0.001);
  EXPECT_EQ(accent->saturationComponent(), 1);
}

TEST(AccentColor, OfAGrayColorIsRed) {
  // Greys have the hue 0.
  expectHSB(accentColor(Color::calibratedWhite(0.5)), 0, 1, 0.25);
}

TEST(LighterColor, OfADarkColorHasTheBrightness06) {
  expectHSB(lighterColor(hsb(0.6, 0.5, 0.05, 0.5)), 0.6, 0.5, 0.6, 0.5);
  expectHSB(lighterColor(hsb(0.6, 0.5, 0.4)), 0.6, 0.5, 0.6);
  expectHSB(lighterColor(Color::calibratedWhite(0)), 0, 0, 0.6);
}

TEST(LighterColor, OfAMediumColorIsBrighterByTheStatedAmount) {
  expectHSB(lighterColor(hsb(0.6, 0.5, 0.5, 0.5)), 0.6, 0.5, 0.75, 0.5);
  expectHSB(lighterColor(hsb(0.6, 0.5, 0.41)), 0.6, 0.5, 0.633);
}

TEST(LighterColor, HandsItsBrightnessOnUnlimited) {
  EXPECT_NEAR(lighterComponents({0.6, 0.5, 0.89, 1}).brightness, 1.257, tolerance);
  // The colour limits it, with hue and saturation as they were.
  expectHSB(lighterColor(hsb(0.6, 0.5, 0.89)), 0.6, 0.5, 1);
}

TEST(LighterColor, OfABrightColorIsDesaturated) {
  expectHSB(lighterColor(hsb(0.6, 0.8, 0.9, 0.5)), 0.6, 0.3, 1, 0.5);
  expectHSB(lighterColor(hsb(0.6, 1, 1)), 0.6, 0.4, 1);
}

TEST(LighterColor, OfABrightColorOfLittleSaturationIsWhite) {
  for (const double saturation : {0.2, 0.15, 0.1201})
    expectHSB(lighterColor(hsb(0.6, saturation, 1)), 0, 0, 1);
  EXPECT_EQ(lighterComponents({0, 0.2, 1, 1}).saturation, 0);
  EXPECT_EQ(lighterComponents({0, 0.13, 1, 1}).saturation, 0);
}

TEST(LighterColor, OfABrightColorOfHardlyAnySaturationIsMoreSaturated) {
  expectHSB(lighterColor(hsb(0.6, 0.12, 1)), 0.6, 0.37, 1);
  expectHSB(lighterColor(Color::calibratedWhite(1)), 0, 0.25, 1);
  EXPECT_EQ(lighterComponents({0, 0.12, 0.9, 1}).saturation, 0.37);
}

TEST(LighterColor, BranchesAtItsLimitsExactly) {
  EXPECT_EQ(lighterComponents({0, 0.5, 0.4, 1}).brightness, 0.6);
  EXPECT_GT(lighterComponents({0, 0.5, std::nextafter(0.4, 1), 1}).brightness, 0.61);
  EXPECT_EQ(lighterComponents({0, 0.5, std::nextafter(0.9, 0), 1}).saturation, 0.5);
  EXPECT_EQ(lighterComponents({0, 0.5, 0.9, 1}).brightness, 1);
  EXPECT_NEAR(lighterComponents({0, 0.5, 0.9, 1}).saturation, 0.15, tolerance);
}

TEST(DisabledColor, OfAnOpaqueColorIsHalfTransparent) {
  EXPECT_TRUE(disabledColor(Color::deviceRGB(0.25, 0.5, 0.75))
                  ->isEqual(*Color::deviceRGB(0.25, 0.5, 0.75, 0.5)));
}

TEST(DisabledColor, OfAnyOtherColorIsInvisible) {
  for (const double alpha : {0.99, 0.5, 0.0})
    EXPECT_EQ(disabledColor(Color::deviceRGB(1, 1, 1, alpha))->alphaComponent(), 0) << alpha;
}

TEST(DisabledColor, OfANamedColorIsWhatItShows) {
  const auto named = Color::catalog(u"System"_s, u"textColor"_s, Color::calibratedWhite(0.25));
  EXPECT_TRUE(disabledColor(named)->isEqual(*Color::calibratedWhite(0.25, 0.5)));
}

TEST(DisabledColor, LeavesAPatternAsItIs) {
  const auto pattern = Color::pattern(Image::make(QSizeF(2, 2)));
  const auto disabled = disabledColor(pattern);
  EXPECT_NE(disabled, pattern);
  EXPECT_TRUE(disabled->isEqual(*pattern));
}

TEST(DerivedColors, OfNothingAreNothing) {
  EXPECT_EQ(accentColor(nullptr), nullptr);
  EXPECT_EQ(lighterColor(nullptr), nullptr);
  EXPECT_EQ(disabledColor(nullptr), nullptr);
}

TEST(DerivedColors, ReadColorsOfEverySpace) {
  expectHSB(lighterColor(Color::deviceCMYK(1, 0, 0, 0.5)), 0.5, 1, 0.75);
  expectHSB(lighterColor(Color::sRGB(0.5, 0, 0)), 0, 1, 0.75);
  expectHSB(lighterColor(Color::catalog(u"System"_s, u"textColor"_s, Color::deviceRGB(0, 0.5, 0))),
            1 / 3.0, 1, 0.75);
}

TEST(ToolTipColors, AreThoseOfTheTheme) {
  const Theme theme([](const QString& name) {
    return name == "toolTipColor"_L1       ? Color::deviceRGB(1, 0, 0)
           : name == "toolTipTextColor"_L1 ? Color::deviceRGB(0, 0, 1)
                                           : nullptr;
  });
  EXPECT_TRUE(zq_toolTipColor()->isEqual(*Color::deviceRGB(1, 0, 0)));
  EXPECT_TRUE(zq_toolTipTextColor()->isEqual(*Color::deviceRGB(0, 0, 1)));
}

TEST(ToolTipColors, AreLightYellowAndBlackWhereTheThemeLacksThem) {
  const Theme theme([](const QString&) { return Ref<Color>(); });
  EXPECT_TRUE(zq_toolTipColor()->isEqual(*lightYellowColor()));
  EXPECT_TRUE(zq_toolTipTextColor()->isEqual(*Color::calibratedWhite(0)));
}

TEST(ToolTipColors, AskTheThemeOnEveryCall) {
  bool offers = false;
  const Theme theme(
      [&](const QString&) { return offers ? Color::deviceRGB(0, 1, 0) : Ref<Color>(); });
  EXPECT_TRUE(zq_toolTipColor()->isEqual(*lightYellowColor()));
  EXPECT_TRUE(zq_toolTipTextColor()->isEqual(*Color::calibratedWhite(0)));
  offers = true;
  EXPECT_TRUE(zq_toolTipColor()->isEqual(*Color::deviceRGB(0, 1, 0)));
  EXPECT_TRUE(zq_toolTipTextColor()->isEqual(*Color::deviceRGB(0, 1, 0)));
}

TEST(DefaultShadows, HaveTheirOffsetsBlurAndColors) {
  const Theme theme([](const QString& name) {
    return name == "controlLightHighlightColor"_L1 ? Color::deviceWhite(0.9)
           : name == "controlDarkShadowColor"_L1   ? Color::deviceWhite(0.1)
                                                   : nullptr;
  });
  EXPECT_TRUE(zqRollOverButtonDefaultControlShadow()->isEqual(
      Shadow(QSizeF(0, -1), 1, Color::deviceWhite(0.9))));
  EXPECT_TRUE(zqRollOverButtonDefaultHighlightedControlShadow()->isEqual(
      Shadow(QSizeF(0, 1), 1, Color::deviceWhite(0.1))));
  EXPECT_TRUE(zqRollOverButtonDefaultTextShadow()->isEqual(
      Shadow(QSizeF(0, -1), 1, Color::calibratedWhite(0.3))));
}

TEST(DefaultShadows, HaveNoColorWhereTheThemeLacksIt) {
  const Theme theme([](const QString&) { return Ref<Color>(); });
  EXPECT_EQ(zqRollOverButtonDefaultControlShadow()->shadowColor(), nullptr);
  EXPECT_EQ(zqRollOverButtonDefaultHighlightedControlShadow()->shadowColor(), nullptr);
}

TEST(DefaultShadows, AreNewOnEveryCall) {
  for (const auto shadow :
       {zqRollOverButtonDefaultControlShadow, zqRollOverButtonDefaultHighlightedControlShadow,
        zqRollOverButtonDefaultTextShadow}) {
    const Ref<Shadow> first = shadow();
    first->setShadowBlurRadius(9);
    first->setShadowColor(nullptr);
    EXPECT_NE(shadow(), first);
    EXPECT_EQ(shadow()->shadowBlurRadius(), 1);
    EXPECT_NE(shadow()->shadowColor(), nullptr);
  }
}
