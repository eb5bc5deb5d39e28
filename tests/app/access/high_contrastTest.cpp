#include "app/access/high_contrast.h"

#include "app/commands/color_contrast.h"

#include <QtGui/QPalette>

#include <gtest/gtest.h>

using namespace zq::app;

namespace {
QPalette palette(QColor ground, QColor text) {
  QPalette made;
  made.setColor(QPalette::Base, ground);
  made.setColor(QPalette::Text, text);
  return made;
}
} // namespace

TEST(HighContrast, TakesThePalettesColors) {
  const StripColors colors = contrastingColors(palette(Qt::black, Qt::yellow), {}, {});
  EXPECT_EQ(colors.background, QColor(Qt::black));
  EXPECT_EQ(colors.text, QColor(Qt::yellow));
}

TEST(HighContrast, RaisesTheContrastOfAPaletteThatHasLess) {
  const QColor grounds[] = {Qt::gray, Qt::white, Qt::black, QColor(0x30, 0x50, 0x90), Qt::red};
  for (const QColor& ground : grounds)
    for (const QColor& text : grounds) {
      const StripColors colors = contrastingColors(palette(ground, text), {}, {});
      EXPECT_GE(contrastRatio(colors.background, colors.text), HighContrastRatio);
      EXPECT_EQ(colors.background.alpha(), 255);
    }
}

TEST(HighContrast, LeavesChosenColorsAlone) {
  const QPalette usual = palette(Qt::white, Qt::black);
  const StripColors onNavy = contrastingColors(usual, QColor(0, 0, 128), {});
  EXPECT_EQ(onNavy.background, QColor(0, 0, 128));
  EXPECT_EQ(onNavy.text, QColor(Qt::white));
  const StripColors inYellow = contrastingColors(usual, {}, Qt::yellow);
  EXPECT_EQ(inYellow.background, QColor(Qt::black));
  EXPECT_EQ(inYellow.text, QColor(Qt::yellow));
  const StripColors both = contrastingColors(usual, Qt::gray, Qt::red);
  EXPECT_EQ(both.background, QColor(Qt::gray));
  EXPECT_EQ(both.text, QColor(Qt::red));
}
