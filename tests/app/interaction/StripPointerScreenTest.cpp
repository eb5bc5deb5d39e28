// The strip under a real pointer.
#include "tests/app/interaction/StripOnScreen.h"

using namespace Qt::StringLiterals;
using zq::app::testing::waitUntil;

namespace {
using StripPointerScreen = zq::app::testing::StripOnScreen;

const QStringList Text{u"--text"_s,  u"The quick brown fox jumps over the lazy dog"_s,
                       u"--color"_s, u"white"_s,
                       u"--speed"_s, u"150"_s};
} // namespace

TEST_F(StripPointerScreen, StandsStillWhileThePointerRests) {
  run(Text);
  ASSERT_TRUE(waitUntil([&] { return !stands(); }));
  moveTo(100);
  EXPECT_TRUE(waitUntil([&] { return stands(); }));
  moveTo(100, 50);
  EXPECT_TRUE(waitUntil([&] { return !stands(); }));
}

TEST_F(StripPointerScreen, GoesOnWhereItIsNotToStop) {
  run(Text + QStringList{u"--pause-on-hover"_s, u"off"_s});
  moveTo(100);
  // A rest has begun when the program shows its controls; here it has none, so a click tells.
  button("click", 1);
  EXPECT_TRUE(waitUntil([&] { return !stands(); }));
}

TEST_F(StripPointerScreen, UnderlinesAndOpensAClickedSign) {
  run({u"--sign"_s, signFile(u"https://example.org/a b"_s), u"--speed"_s, u"500"_s});
  const auto isUnderlined = [&] {
    return (server_->screenshot().pixel(200, Height - 1) & 0xffffff) == 0xffffff;
  };
  EXPECT_FALSE(isUnderlined());
  moveTo(100);
  ASSERT_TRUE(waitUntil([&] { return isUnderlined() && stands(); }));
  button("click", 1);
  ASSERT_TRUE(waitUntil([&] { return !addresses().isEmpty(); }));
  EXPECT_EQ(addresses(), "https://example.org/a%20b\n");
  moveTo(100, 50);
  EXPECT_TRUE(waitUntil([&] { return !isUnderlined(); }));
  EXPECT_EQ(program_->process().readAllStandardError(), "");
}

TEST_F(StripPointerScreen, RefusesAClickedSignThatIsNoLocation) {
  run({u"--sign"_s, signFile(u"javascript:alert(1)"_s), u"--speed"_s, u"500"_s});
  moveTo(100);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  button("click", 1);
  QByteArray told;
  ASSERT_TRUE(
      waitUntil([&] { return !(told += program_->process().readAllStandardError()).isEmpty(); }));
  EXPECT_TRUE(told.contains("is not opened")) << told.toStdString();
  EXPECT_EQ(addresses(), "");
}
