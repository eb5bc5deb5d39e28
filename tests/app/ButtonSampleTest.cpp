// Buttons as pictures, and how well their titles can be read.
#include "app/commands/ButtonSample.h"

#include "tests/app/shipped_looks.h"
#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/rollover/ZQRollOverButton.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"
#include "zqticker/rollover/ZQRollOverButtonCell.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QMenu>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;
using zq::testing::maximumDifference;

namespace {

constexpr QSizeF size(60, 22);

// Bodies of one colour a state, without a frame.
Ref<ZQRollOverButtonAppearance> plainBodies() {
  const auto appearance = std::make_shared<ZQRollOverButtonAppearance>();
  appearance->setBezelStyle(6);
  appearance->setControlColor(Color::fromQColor(Qt::red));
  appearance->setMouseoverControlColor(Color::fromQColor(Qt::green));
  appearance->setHighlightedControlColor(Color::fromQColor(Qt::blue));
  for (const auto set : {&ZQRollOverButtonAppearance::setArrowColor,
                         &ZQRollOverButtonAppearance::setMouseoverArrowColor,
                         &ZQRollOverButtonAppearance::setHighlightedArrowColor})
    (appearance.get()->*set)(Color::fromQColor(Qt::yellow));
  return appearance;
}

QImage drawn(const ButtonSample& sample) {
  QImage image(80, 40, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.translate(10, 5);
  sample.draw(painter, size);
  return image;
}

bool has(const QImage& image, const QColor& color) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) == color)
        return true;
  return false;
}

double contrastOf(const ZQRollOverButtonAppearance& appearance, SampleState state,
                  const QColor& ground = Qt::white) {
  return titleContrast(appearance, state, ground).value_or(0);
}

} // namespace

TEST(ButtonSample, ShowsTheBodyOfEachState) {
  ButtonSample sample{plainBodies()};
  const auto body = [&](SampleState state) {
    sample.state = state;
    return drawn(sample).pixelColor(20, 16);
  };
  EXPECT_EQ(body(SampleState::Normal), QColor(Qt::red));
  EXPECT_EQ(body(SampleState::MouseOver), QColor(Qt::green));
  EXPECT_EQ(body(SampleState::Pressed), QColor(Qt::blue));
  EXPECT_EQ(body(SampleState::On), QColor(Qt::blue));
  EXPECT_EQ(body(SampleState::Disabled), QColor(Qt::red)) << "flat bodies do not fade";
}

TEST(ButtonSample, ThatIsPressedLiesLowerThanOneThatIsOn) {
  ButtonSample sample{plainBodies()};
  sample.state = SampleState::On;
  EXPECT_EQ(drawn(sample).pixelColor(40, 7), QColor(Qt::blue));
  sample.state = SampleState::Pressed;
  EXPECT_NE(drawn(sample).pixelColor(40, 7), QColor(Qt::blue));
}

// A sheet shows what people will see in windows.
TEST(ButtonSample, LooksLikeARealButton) {
  for (const char* name : ShippedLooks) {
    SCOPED_TRACE(name);
    ButtonSample sample{shippedLook(name)};
    sample.title = u"Button"_s;
    ZQRollOverButton button({QPointF(), size}, sample.title);
    const auto cell = std::dynamic_pointer_cast<ZQRollOverButtonCell>(button.cell());
    ASSERT_TRUE(cell);
    cell->setAppearance(sample.appearance);
    cell->setButtonType(ButtonType::PushOnPushOff);
    for (const SampleState state : SampleStates) {
      sample.state = state;
      cell->setMouseOver(state == SampleState::MouseOver);
      cell->setHighlighted(state == SampleState::Pressed);
      cell->setState(state == SampleState::On ? CellState::On : CellState::Off);
      cell->setEnabled(state != SampleState::Disabled);
      QImage window(80, 40, QImage::Format_RGB32);
      window.fill(Qt::white);
      button.render(&window, {10, 5}, {}, QWidget::DrawChildren);
      sample.isFlipped = button.isFlipped();
      EXPECT_EQ(maximumDifference(drawn(sample), window), 0) << int(state);
    }
  }
}

TEST(ButtonSample, ShowsTheArrowUnderThePointerAndWherePressed) {
  ButtonSample sample{plainBodies()};
  const auto hasArrow = [&](SampleState state) {
    sample.state = state;
    return has(drawn(sample), Qt::yellow);
  };
  EXPECT_FALSE(hasArrow(SampleState::MouseOver));
  sample.menu = Menu::make(std::make_unique<QMenu>());
  EXPECT_FALSE(hasArrow(SampleState::Normal));
  EXPECT_TRUE(hasArrow(SampleState::MouseOver));
  EXPECT_TRUE(hasArrow(SampleState::Pressed));
  EXPECT_FALSE(hasArrow(SampleState::On));
  sample.appearance->setAlwaysShowMenuIndicator(true);
  EXPECT_TRUE(hasArrow(SampleState::Normal));
  EXPECT_TRUE(hasArrow(SampleState::On));
}

TEST(ButtonSample, DrawsNothingOutsideOfItsSize) {
  ButtonSample sample{plainBodies()};
  sample.appearance->setTextColor(Color::fromQColor(Qt::black));
  sample.title = QString(40, u'M');
  const QImage image = drawn(sample);
  const QRect frame(10, 5, 60, 22);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (!frame.contains(x, y)) {
        ASSERT_EQ(image.pixel(x, y), qRgb(255, 255, 255)) << x << ", " << y;
      }
}

TEST(ButtonHeight, IsThatOfEachControlSize) {
  EXPECT_EQ(heightOfButton(ControlSize::Regular), 22);
  EXPECT_EQ(heightOfButton(ControlSize::Small), 19);
  EXPECT_EQ(heightOfButton(ControlSize::Mini), 16);
}

TEST(TitleContrast, IsThatOfEachState) {
  ZQRollOverButtonAppearance appearance;
  const auto grey = [](int level) { return Color::fromQColor(QColor(level, level, level)); };
  appearance.setControlColor(grey(255));
  appearance.setTextColor(grey(0));
  appearance.setMouseoverControlColor(grey(255));
  appearance.setMouseoverTextColor(grey(0x77));
  appearance.setHighlightedControlColor(grey(0x77));
  appearance.setHighlightedTextColor(grey(0));
  EXPECT_NEAR(contrastOf(appearance, SampleState::Normal), 21, 1e-6);
  EXPECT_NEAR(contrastOf(appearance, SampleState::MouseOver), 4.48, 0.005);
  EXPECT_NEAR(contrastOf(appearance, SampleState::Pressed), 4.69, 0.005);
  EXPECT_NEAR(contrastOf(appearance, SampleState::On), 4.69, 0.005);
  // Black at half its alpha on white.
  EXPECT_NEAR(contrastOf(appearance, SampleState::Disabled), 3.98, 0.05);
}

TEST(TitleContrast, IsTakenToTheCloserEndOfAGradient) {
  ZQRollOverButtonAppearance appearance;
  appearance.setTextColor(Color::fromQColor(Qt::black));
  appearance.setControlColor(Color::fromQColor(Qt::white));
  appearance.setShadingColor(Color::fromQColor(QColor(0x77, 0x77, 0x77)));
  for (const int mode : {0, 7}) {
    appearance.setShadingMode(std::uint64_t(mode));
    EXPECT_NEAR(contrastOf(appearance, SampleState::Normal), 21, 1e-6) << mode;
  }
  for (const int mode : {1, 2}) {
    appearance.setShadingMode(std::uint64_t(mode));
    EXPECT_NEAR(contrastOf(appearance, SampleState::Normal), 4.69, 0.005) << mode;
  }
}

TEST(TitleContrast, CountsWhatShowsThroughTheBezel) {
  ZQRollOverButtonAppearance appearance;
  appearance.setTextColor(Color::fromQColor(Qt::black));
  appearance.setControlColor(Color::fromQColor(Qt::transparent));
  EXPECT_NEAR(contrastOf(appearance, SampleState::Normal, Qt::white), 21, 1e-6);
  EXPECT_NEAR(contrastOf(appearance, SampleState::Normal, Qt::black), 1, 1e-6);
}

TEST(TitleContrast, IsNothingWithoutAColor) {
  ZQRollOverButtonAppearance appearance;
  EXPECT_EQ(titleContrast(appearance, SampleState::Normal, Qt::white), std::nullopt);
  appearance.setControlColor(Color::fromQColor(Qt::white));
  EXPECT_EQ(titleContrast(appearance, SampleState::Normal, Qt::white), std::nullopt);
}
