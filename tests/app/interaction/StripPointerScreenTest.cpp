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

TEST_F(StripPointerScreen, IsDraggedToThePixelAndThrown) {
  const QRgb red = qRgb(255, 0, 0);
  run({u"--image"_s, pictureFile(400, qRgb(0, 0, 255), u"blue.png"_s), u"--image"_s,
       pictureFile(300, red, u"red.png"_s), u"--speed"_s, u"300"_s});
  ASSERT_TRUE(waitUntil([&] { return columnOf(red) > 250 && columnOf(red) < 450; }));
  moveTo(200);
  button("mousedown", 1);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const int before = columnOf(red);
  ASSERT_GT(before, 130);
  moveTo(150);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before - 50; })) << columnOf(red);
  moveTo(220);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before + 20; })) << columnOf(red);
  button("mouseup", 1);
  moveTo(200, 50);
  EXPECT_TRUE(waitUntil([&] { return !stands(); })) << "it goes on";
}

TEST_F(StripPointerScreen, MovesWithAWheel) {
  const QRgb red = qRgb(255, 0, 0);
  run({u"--image"_s, pictureFile(400, qRgb(0, 0, 255), u"blue.png"_s), u"--image"_s,
       pictureFile(300, red, u"red.png"_s), u"--speed"_s, u"300"_s});
  ASSERT_TRUE(waitUntil([&] { return columnOf(red) > 250 && columnOf(red) < 450; }));
  moveTo(30);
  ASSERT_TRUE(waitUntil([&] { return stands(); }));
  const int before = columnOf(red);
  ASSERT_GT(before, 70);
  button("click", 5);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before - 60; })) << columnOf(red);
  button("click", 4);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before; })) << columnOf(red);
  button("click", 7);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before - 60; })) << columnOf(red);
  button("click", 6);
  EXPECT_TRUE(waitUntil([&] { return columnOf(red) == before; })) << columnOf(red);
}
