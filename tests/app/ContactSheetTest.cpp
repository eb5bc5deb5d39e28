// The page that holds all looks of a button.
#include "app/commands/ContactSheet.h"

#include "app/commands/color_contrast.h"
#include "tests/app/shipped_looks.h"
#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;
using zq::testing::maximumDifference;

namespace {

using Entry = ContactSheet::Entry;

// So many steps of a channel can be seen.
constexpr int VisibleStep = 8;
constexpr int StatesOfRow = 5;
// The matrix of outlines and modes stands at the end.
constexpr std::size_t MatrixSize = 2 * 3 * 2 * 2 * StatesOfRow;

class ContactSheetOfShipped : public ::testing::TestWithParam<const char*> {
 protected:
  ContactSheetOfShipped()
      : look(shippedLook(GetParam())),
        sheet(*look, u"a title"_s, ContactSheet::usualGround(*look)) {}

  // Of the matrix, by outline (0 and 1), mode, whether flipped, whether with a menu, and state.
  const Entry& at(int outline, int mode, bool isFlipped, bool hasMenu, SampleState state) const {
    const int row = outline * 6 + mode * 2 + int(isFlipped);
    const auto index = std::size_t((row * 2 + int(hasMenu)) * StatesOfRow + int(state));
    return sheet.entries()[sheet.entries().size() - MatrixSize + index];
  }
  void expectDifference(const QImage& image, const Entry& a, const Entry& b,
                        int least = VisibleStep) const {
    const int scale = int(image.devicePixelRatio());
    const auto picture = [&](const QRect& frame) {
      QImage part = image.copy(QRect(frame.topLeft() * scale, frame.size() * scale));
      part.setDevicePixelRatio(1);
      return part;
    };
    EXPECT_GE(maximumDifference(picture(a.frame), picture(b.frame)), least)
        << a.frame.x() << ", " << a.frame.y() << " and " << b.frame.x() << ", " << b.frame.y();
  }

  Ref<ZQRollOverButtonAppearance> look;
  ContactSheet sheet;
};

// One that is pressed lies lower than one that is on; that is all.
bool shareColors(SampleState a, SampleState b) {
  const auto isHighlighted = [](SampleState state) {
    return state == SampleState::Pressed || state == SampleState::On;
  };
  return isHighlighted(a) && isHighlighted(b);
}

ContactSheet sheetOf(const ZQRollOverButtonAppearance& appearance) {
  return ContactSheet(appearance, u"a title"_s, ContactSheet::usualGround(appearance));
}

// What stands left of the buttons in the row of `entry`.
QImage labelOf(const ContactSheet& sheet, const Entry& entry) {
  return sheet.image(1).copy(QRect(0, entry.frame.y(), entry.frame.x(), entry.frame.height()));
}

} // namespace

TEST_P(ContactSheetOfShipped, HoldsEveryCombinationOnce) {
  std::set<std::tuple<int, bool, bool, std::uint64_t, bool>> seen;
  const auto& entries = sheet.entries();
  ASSERT_GE(entries.size(), MatrixSize);
  for (std::size_t i = entries.size() - MatrixSize; i < entries.size(); ++i) {
    const ButtonSample& sample = entries[i].sample;
    seen.insert({int(sample.state), bool(sample.menu), sample.appearance->bezelStyle() == 6,
                 sample.appearance->shadingMode(), sample.isFlipped});
  }
  EXPECT_EQ(seen.size(), MatrixSize);
}

TEST_P(ContactSheetOfShipped, BeginsWithTheLookAsItIs) {
  const auto& entries = sheet.entries();
  ASSERT_EQ(entries.size() - MatrixSize, 4U * 2 * StatesOfRow);
  std::set<ControlSize> sizes;
  for (std::size_t i = 0; i < entries.size() - MatrixSize; ++i) {
    const ButtonSample& sample = entries[i].sample;
    EXPECT_EQ(sample.appearance->bezelStyle(), look->bezelStyle());
    EXPECT_EQ(sample.appearance->shadingMode(), look->shadingMode());
    EXPECT_TRUE(sample.isFlipped);
    EXPECT_EQ(entries[i].frame.height(), heightOfButton(sample.controlSize));
    sizes.insert(sample.controlSize);
  }
  EXPECT_EQ(sizes.size(), 3U);
}

TEST_P(ContactSheetOfShipped, KeepsButtonsApart) {
  const QRect page(QPoint(), sheet.size());
  constexpr int gap = 8;
  const auto& entries = sheet.entries();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const QRect around = entries[i].frame.adjusted(-gap, -gap, gap, gap);
    EXPECT_TRUE(page.contains(around)) << i;
    for (std::size_t other = 0; other < i; ++other)
      EXPECT_FALSE(around.intersects(entries[other].frame)) << i << " and " << other;
  }
}

TEST_P(ContactSheetOfShipped, ShowsDifferentLooksDifferently) {
  for (const int scale : {1, 2}) {
    const QImage image = sheet.image(scale);
    for (const int outline : {0, 1})
      for (const int mode : {0, 1, 2})
        for (const bool isFlipped : {false, true})
          for (const bool hasMenu : {false, true})
            for (const SampleState state : SampleStates) {
              const Entry& entry = at(outline, mode, isFlipped, hasMenu, state);
              for (const SampleState other : SampleStates)
                if (other != state)
                  expectDifference(image, entry, at(outline, mode, isFlipped, hasMenu, other),
                                   shareColors(state, other) ? 1 : VisibleStep);
              expectDifference(image, entry, at(1 - outline, mode, isFlipped, hasMenu, state));
              expectDifference(image, entry, at(outline, mode, !isFlipped, hasMenu, state));
              expectDifference(image, entry, at(outline, mode, isFlipped, !hasMenu, state));
            }
    // A gradient that is flat would look like no gradient.
    for (const int mode : {0, 1, 2})
      for (const int other : {0, 1, 2})
        if (mode != other)
          expectDifference(image, at(0, mode, true, false, SampleState::MouseOver),
                           at(0, other, true, false, SampleState::MouseOver));
  }
}

TEST_P(ContactSheetOfShipped, HasPixelsForEachScale) {
  const QImage image = sheet.image(1);
  EXPECT_EQ(image.size(), sheet.size());
  EXPECT_EQ(image.devicePixelRatio(), 1);
  EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 72, 0.05);
  const QImage fine = sheet.image(2);
  EXPECT_EQ(fine.size(), sheet.size() * 2);
  EXPECT_EQ(fine.devicePixelRatio(), 2);
  EXPECT_NEAR(fine.dotsPerMeterY() * 0.0254, 144, 0.05);
  // Drawn at that scale, not enlarged.
  bool isEnlarged = true;
  for (int y = 0; y < fine.height(); ++y)
    for (int x = 0; x < fine.width(); x += 2)
      isEnlarged = isEnlarged && fine.pixel(x, y) == fine.pixel(x + 1, y);
  EXPECT_FALSE(isEnlarged);
}

TEST_P(ContactSheetOfShipped, LeavesTheAppearanceAsItIs) {
  const auto fresh = shippedLook(GetParam());
  EXPECT_EQ(ZQRollOverButtonAppearance::dataRepresentationFromAppearance(look),
            ZQRollOverButtonAppearance::dataRepresentationFromAppearance(fresh));
}

INSTANTIATE_TEST_SUITE_P(Looks, ContactSheetOfShipped, ::testing::ValuesIn(ShippedLooks));

TEST(ContactSheet, MarksTheRowsOfItsOwnOutlineAndMode) {
  ZQRollOverButtonAppearance appearance;
  appearance.setBezelStyle(6);
  appearance.setShadingMode(1);
  const ContactSheet linear = sheetOf(appearance);
  appearance.setShadingMode(2);
  const ContactSheet bilinear = sheetOf(appearance);
  const std::size_t first = linear.entries().size() - MatrixSize;
  const auto isMarkedAlike = [&](std::size_t row) {
    const std::size_t index = first + row * 2 * StatesOfRow;
    return maximumDifference(labelOf(linear, linear.entries()[index]),
                             labelOf(bilinear, bilinear.entries()[index])) == 0;
  };
  // Flat, linear and bilinear, each unflipped and flipped, in a rounded rectangle, then in a plate.
  for (const std::size_t row : {0, 1, 6, 7, 8, 9, 10, 11})
    EXPECT_TRUE(isMarkedAlike(row)) << row;
  for (const std::size_t row : {2, 3, 4, 5})
    EXPECT_FALSE(isMarkedAlike(row)) << row;
}

TEST(ContactSheet, TakesOverTheNumberOfAPlate) {
  ZQRollOverButtonAppearance appearance;
  appearance.setBezelStyle(12345);
  EXPECT_EQ(sheetOf(appearance).entries().back().sample.appearance->bezelStyle(), 12345U);
}

TEST(ContactSheet, HasTheGroundThatIsAskedFor) {
  const ContactSheet sheet(ZQRollOverButtonAppearance(), u"a title"_s, QColor(1, 2, 3));
  const QImage image = sheet.image(1);
  EXPECT_EQ(image.pixel(0, 0), qRgb(1, 2, 3));
  EXPECT_EQ(image.pixel(image.width() - 1, image.height() - 1), qRgb(1, 2, 3));
}

TEST(ContactSheet, LabelsStandOutFromAnyGround) {
  for (const QColor& ground : {QColor(Qt::white), QColor(Qt::black), QColor(Qt::blue),
                               QColor(Qt::yellow), QColor(0x77, 0x77, 0x77)}) {
    const ContactSheet sheet(ZQRollOverButtonAppearance(), u"a title"_s, ground);
    const QImage label = labelOf(sheet, sheet.entries().back());
    double contrast = 1;
    for (int y = 0; y < label.height(); ++y)
      for (int x = 0; x < label.width(); ++x)
        contrast = std::max(contrast, contrastRatio(label.pixelColor(x, y), ground));
    EXPECT_GE(contrast, 4) << ground.name().toStdString();
  }
}

TEST(UsualGround, IsDarkForDarkBezelsAndForLightTitlesWithoutOne) {
  const auto isDarkFor = [](const QColor& control, const QColor& text) {
    ZQRollOverButtonAppearance appearance;
    appearance.setControlColor(Color::fromQColor(control));
    appearance.setTextColor(Color::fromQColor(text));
    return isDark(ContactSheet::usualGround(appearance));
  };
  EXPECT_TRUE(isDarkFor(Qt::black, Qt::black));
  EXPECT_FALSE(isDarkFor(Qt::white, Qt::white));
  EXPECT_TRUE(isDarkFor(Qt::transparent, Qt::white));
  EXPECT_FALSE(isDarkFor(Qt::transparent, Qt::black));
  EXPECT_FALSE(isDark(ContactSheet::usualGround(ZQRollOverButtonAppearance())));
}

TEST(ContactSheet, SurvivesLooksThatNobodyWouldDesign) {
  ZQRollOverButtonAppearance appearance;
  const double none = std::numeric_limits<double>::quiet_NaN();
  appearance.setShadingMode(std::numeric_limits<std::uint64_t>::max());
  appearance.setBezelStyle(std::numeric_limits<std::uint64_t>::max());
  appearance.setPopUpMenuDelay(none);
  appearance.setBordered(true);
  appearance.setTextShadow(
      std::make_shared<Shadow>(QSizeF(none, none), none, Color::deviceWhite(0)));
  appearance.setControlShadow(
      std::make_shared<Shadow>(QSizeF(1e300, -1e300), 1e300, Color::deviceWhite(0)));
  appearance.setHighlightedControlShadow(
      std::make_shared<Shadow>(QSizeF(1, 1), 1e6, Color::deviceWhite(0)));
  const ContactSheet sheet(appearance, QString(100'000, u'M'), Qt::white);
  EXPECT_EQ(sheet.image(1).size(), sheetOf(ZQRollOverButtonAppearance()).size());
}
