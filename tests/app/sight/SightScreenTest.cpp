// What a window system does to the strip's window, and what it then does itself.
#include "tests/app/Probe.h"
#include "tests/app/XServer.h"

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
class SightOnScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !XServer::hasProgram(u"xdotool"_s))
      GTEST_SKIP() << "Xvfb or xdotool is not installed";
    server_.emplace(400, 300);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    pointer_.emplace(*server_);
  }

  void show() {
    strip_ = probe({u"strip"_s, u"0"_s, u"276"_s, u"400"_s, u"24"_s});
    ASSERT_TRUE(strip_->awaitWindow(u"strip"_s));
    ASSERT_TRUE(waitUntil([&] { return strip_->hasSaidStart(u"in "_s); }));
    ASSERT_TRUE(moves());
  }
  std::unique_ptr<Probe> probe(const QStringList& arguments) {
    return std::make_unique<Probe>(QStringLiteral(ZQTICKER_SIGHT_PROBE), arguments, *server_);
  }
  std::unique_ptr<Probe> cover(int x, int width) {
    auto made = probe({u"cover"_s, QString::number(x), u"270"_s, QString::number(width), u"30"_s});
    EXPECT_TRUE(made->awaitWindow(u"cover"_s));
    return made;
  }

  bool moves() {
    strip_->forget();
    return waitUntil([&] { return strip_->hasSaid(u"moves"_s); });
  }
  bool goesOut() {
    return waitUntil([&] { return strip_->hasSaidStart(u"out "_s); });
  }
  // Whether it comes in again, without a frame and a step between, and goes on.
  void expectInUnmoved() {
    ASSERT_TRUE(waitUntil([&] { return strip_->hasSaidStart(u"in "_s); }));
    const QStringList out = strip_->last(u"out "_s).split(u' ');
    const QStringList in = strip_->last(u"in "_s).split(u' ');
    EXPECT_EQ(in[0], out[0]) << "frames";
    EXPECT_NEAR(in[1].toDouble(), out[1].toDouble(), 1e-6) << "points";
    EXPECT_TRUE(moves());
  }

  std::optional<XServer> server_;
  std::optional<Pointer> pointer_;
  std::unique_ptr<Probe> strip_;
};
} // namespace

TEST_F(SightOnScreen, StandsStillWhileItsWindowIsCovered) {
  show();
  auto covering = cover(0, 400);
  ASSERT_TRUE(goesOut());
  covering.reset();
  expectInUnmoved();
}

TEST_F(SightOnScreen, GoesOnWhileAPartOfItIsSeen) {
  show();
  auto left = cover(0, 200);
  ASSERT_TRUE(moves());
  EXPECT_FALSE(strip_->hasSaidStart(u"out "_s));
  auto right = cover(200, 200);
  ASSERT_TRUE(goesOut()) << "under both";
  left.reset();
  expectInUnmoved();
}

TEST_F(SightOnScreen, SeesThatAWindowWhichWasMadeAnewIsCovered) {
  strip_ = probe({u"strip"_s, u"0"_s, u"276"_s, u"400"_s, u"24"_s, u"remade"_s});
  ASSERT_TRUE(waitUntil([&] { return strip_->hasSaid(u"remade"_s); }));
  ASSERT_TRUE(moves());
  // What it said while it was made anew.
  strip_->forget();
  auto covering = cover(0, 400);
  ASSERT_TRUE(goesOut());
  covering.reset();
  expectInUnmoved();
}

TEST_F(SightOnScreen, StandsStillWhileItIsMinimised) {
  show();
  pointer_->tell({u"search"_s, u"--name"_s, u"^zqticker$"_s, u"windowminimize"_s});
  ASSERT_TRUE(goesOut());
  pointer_->tell({u"search"_s, u"--name"_s, u"^zqticker$"_s, u"windowmap"_s});
  expectInUnmoved();
}

TEST_F(SightOnScreen, StandsStillWhileItsWindowIsTakenAway) {
  show();
  pointer_->tell({u"search"_s, u"--name"_s, u"^zqticker$"_s, u"windowunmap"_s});
  ASSERT_TRUE(goesOut());
  pointer_->tell({u"search"_s, u"--name"_s, u"^zqticker$"_s, u"windowmap"_s});
  expectInUnmoved();
}
