// Contrasts against published values.
#include "app/commands/color_contrast.h"

#include <gtest/gtest.h>

using namespace zq::app;

TEST(ColorContrast, OfBlackAndWhiteIsTheGreatest) {
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::black, Qt::white), 21);
  EXPECT_DOUBLE_EQ(contrastRatio(Qt::white, Qt::black), 21);
}

TEST(ColorContrast, OfEqualColorsIsOne) {
  EXPECT_DOUBLE_EQ(contrastRatio(QColor(12, 200, 99), QColor(12, 200, 99)), 1);
}

// The greys on either side of 4.5 : 1, and the primaries, on white.
TEST(ColorContrast, AgreesWithPublishedValues) {
  EXPECT_NEAR(contrastRatio(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.005);
  EXPECT_NEAR(contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.005);
  EXPECT_NEAR(contrastRatio(Qt::red, Qt::white), 4.00, 0.005);
  EXPECT_NEAR(contrastRatio(Qt::green, Qt::white), 1.37, 0.005);
  EXPECT_NEAR(contrastRatio(Qt::blue, Qt::white), 8.59, 0.005);
}

TEST(ColorContrast, ShadesNearBlackAreLinear) {
  EXPECT_NEAR(relativeLuminance(QColor(10, 10, 10)), 10 / 255.0 / 12.92, 1e-6);
}

TEST(BlendedColor, LiesBetweenColorAndGroundByItsAlpha) {
  const QColor blend = blended(QColor(255, 0, 100, 51), QColor(0, 255, 100));
  EXPECT_EQ(blend.rgba(), qRgb(51, 204, 100));
}

TEST(DarkColor, IsOneOnWhichWhiteTextIsEasierToRead) {
  EXPECT_TRUE(isDark(Qt::black));
  EXPECT_TRUE(isDark(QColor(0x70, 0x70, 0x70)));
  EXPECT_FALSE(isDark(QColor(0x80, 0x80, 0x80)));
  EXPECT_FALSE(isDark(Qt::green));
  EXPECT_TRUE(isDark(Qt::blue));
}
