#include "zqticker/rollover/ZQRollOverButton.h"

#include "tests/rollover/RollOverButtonProbe.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

class RollOverButton : public ::testing::Test, public RollOverButtonWindow {};

} // namespace

TEST_F(RollOverButton, LightsItsCellWhileThePointerIsInside) {
  enter();
  EXPECT_TRUE(cell().mouseOver());
  leave();
  EXPECT_FALSE(cell().mouseOver());
}

TEST_F(RollOverButton, ClicksByPressAndReleaseInside) {
  int clicks = 0;
  QObject::connect(button, &QAbstractButton::clicked, [&] { ++clicks; });
  press();
  release();
  EXPECT_EQ(clicks, 1);
}

TEST_F(RollOverButton, SharesTheLookOfItsClass) {
  const auto red = Color::deviceRGB(1, 0, 0);
  button->setControlColor(red);
  EXPECT_EQ(ZQRollOverButton::appearance<RollOverProbe>()->controlColor(), red);
  const auto shared = ZQRollOverButton::appearance<RollOverProbe>();
  RollOverProbe other;
  RollOverProbe::setClassAppearance(shared);
  EXPECT_EQ(other.controlColor(), red);
  EXPECT_EQ(ZQRollOverButton::appearance<ZQRollOverButton>(), nullptr);
}
