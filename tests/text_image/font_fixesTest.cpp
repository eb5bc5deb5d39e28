#include "zqticker/text_image/font_fixes.h"

#include "zqticker/platform/graphics/Font.h"
#include "zqticker/text_image/font_figures_p.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;

namespace {

// A font of figures that no row of the table has.
FontFigures systemFont(double pointSize) {
  return {true, pointSize, 4.25, 5.5, 7.75};
}

// One whose cap height is its ascender.
FontFigures brokenSystemFont(double pointSize) {
  return {true, pointSize, 4.25, 7.75, 7.75};
}

FontFigures otherFont(FontFigures figures) {
  figures.isSystemFont = false;
  return figures;
}

} // namespace

TEST(fixed_xHeight, IsFixedForTheSystemFontAt13And11And9Points) {
  EXPECT_EQ(correctedXHeight(systemFont(13)), 8.16943359375F);
  EXPECT_EQ(double(correctedXHeight(systemFont(11))), 6.912598133087158);
  EXPECT_EQ(double(correctedXHeight(systemFont(9))), 5.655762195587158);
}

TEST(fixed_xHeight, IsTheFontsOwnAtOtherSizesAndOfOtherFonts) {
  for (const double points : {1.0, 8.0, 10.0, 12.0, 14.0, 130.0})
    EXPECT_EQ(correctedXHeight(systemFont(points)), 4.25F) << points;
  for (const double points : {9.0, 11.0, 13.0})
    EXPECT_EQ(correctedXHeight(otherFont(systemFont(points))), 4.25F) << points;
}

TEST(fixed_xHeight, DoesNotAskWhetherTheCapHeightIsBroken) {
  EXPECT_EQ(correctedXHeight(systemFont(13)), correctedXHeight(brokenSystemFont(13)));
}

TEST(fixed_xHeight, IsNarrowedToSinglePrecision) {
  FontFigures figures = systemFont(12);
  figures.xHeight = 4.1;
  EXPECT_EQ(correctedXHeight(figures), 4.1F);
}

TEST(fixed_xHeight, RoundsTheSizeWithHalvesToTheEvenNumber) {
  constexpr float fixed = 8.16943359375F;
  EXPECT_EQ(correctedXHeight(systemFont(12.6)), fixed);
  EXPECT_EQ(correctedXHeight(systemFont(13.4)), fixed);
  // 12.5 is 12 and 13.5 is 14, 10.5 is 10 and 11.5 is 12.
  for (const double points : {12.4, 12.5, 13.5, 10.5, 11.5, 8.5, 9.5})
    EXPECT_EQ(correctedXHeight(systemFont(points)), 4.25F) << points;
  // In single precision this is 12.5 as well.
  EXPECT_EQ(correctedXHeight(systemFont(12.5 + 1e-9)), 4.25F);
  EXPECT_EQ(correctedXHeight(systemFont(12.5 + 1e-6)), fixed);
}

TEST(fixed_xHeight, BearsSizesBeyondAllMeasure) {
  for (const double points :
       {1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(correctedXHeight(systemFont(points)), 4.25F);
}

TEST(fixed_capHeight, IsFixedWhereTheFontsOwnIsItsAscender) {
  EXPECT_EQ(correctedCapHeight(brokenSystemFont(13)), 9.5F);
  EXPECT_EQ(correctedCapHeight(brokenSystemFont(11)), 8.0F);
  EXPECT_EQ(correctedCapHeight(brokenSystemFont(9)), 7.0F);
  EXPECT_EQ(correctedCapHeight(brokenSystemFont(12.6)), 9.5F);
}

TEST(fixed_capHeight, IsTheFontsOwnWhereItDiffersFromTheAscender) {
  for (const double points : {9.0, 11.0, 13.0})
    EXPECT_EQ(correctedCapHeight(systemFont(points)), 5.5F) << points;
}

TEST(fixed_capHeight, IsTheFontsOwnAtOtherSizesAndOfOtherFonts) {
  for (const double points : {8.0, 10.0, 12.0, 12.5, 14.0})
    EXPECT_EQ(correctedCapHeight(brokenSystemFont(points)), 7.75F) << points;
  for (const double points : {9.0, 11.0, 13.0})
    EXPECT_EQ(correctedCapHeight(otherFont(brokenSystemFont(points))), 7.75F) << points;
}

TEST(fixed_capHeight, ComparesInSinglePrecision) {
  FontFigures figures = brokenSystemFont(13);
  figures.ascender += 1e-9;
  EXPECT_EQ(correctedCapHeight(figures), 9.5F);
}

TEST(font_fixes, TheSystemFontIsKnownByItsFamily) {
  EXPECT_EQ(fixed_xHeight(Font::systemFontOfSize(0)), 8.16943359375F);
  const auto system = Font::systemFontOfSize(12.6);
  EXPECT_EQ(fixed_xHeight(system), 8.16943359375F);
  EXPECT_EQ(fixed_xHeight(Font::systemFontOfSize(12)),
            float(Font::systemFontOfSize(12)->xHeight()));
  // Styles of the family belong to it.
  const QString family = system->drawnFamily();
  ASSERT_TRUE(Font::isNameKnown(family));
  EXPECT_EQ(fixed_xHeight(Font::fontWithName(family, 11)), 6.912598133087158F);
  EXPECT_EQ(fixed_xHeight(Font::fontWithName(QString(family + u" Bold"), 9)), 5.655762195587158F);
}

TEST(font_fixes, AStandInForAMissingFontIsNotTheSystemFont) {
  const auto missing = Font::fontWithName(u"NoSuchFamilyAnywhere"_s, 13);
  EXPECT_EQ(fixed_xHeight(missing), float(missing->xHeight()));
  EXPECT_NE(fixed_xHeight(missing), 8.16943359375F);
}

TEST(font_fixes, OtherFamiliesKeepTheirFigures) {
  const auto mono = Font::fontWithName(u"DejaVu Sans Mono"_s, 13);
  ASSERT_TRUE(Font::isNameKnown(u"DejaVu Sans Mono"_s));
  EXPECT_EQ(fixed_xHeight(mono), float(mono->xHeight()));
  EXPECT_EQ(fixed_capHeight(mono), float(mono->capHeight()));
}

TEST(font_fixes, TheReportedCapHeightHoldsUnlessItIsTheAscender) {
  const auto system = Font::systemFontOfSize(11);
  ASSERT_NE(float(system->capHeight()), float(system->ascender()));
  EXPECT_EQ(fixed_capHeight(system), float(system->capHeight()));
  EXPECT_NE(fixed_capHeight(system), 8.0F);
}

TEST(font_fixes, NothingHasNoHeight) {
  EXPECT_EQ(fixed_xHeight(nullptr), 0);
  EXPECT_EQ(fixed_capHeight(nullptr), 0);
}
