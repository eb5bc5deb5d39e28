// Drags with the mouse on a real X server, between programs and within one.
#include "tests/app/Probe.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using zq::app::testing::Pointer;
using zq::app::testing::Probe;
using zq::app::testing::waitUntil;
using zq::app::testing::XServer;

namespace {

constexpr QRgb HighlightColor = qRgb(0, 255, 0);
// The target's window.
constexpr int TargetWidth = 200;
constexpr int TargetHeight = 150;

// Readable in a failure.
std::string text(const QStringList& lines) {
  return lines.join(u", ").toStdString();
}

const QString ProbeProgram = QStringLiteral(ZQTICKER_VIEWS_PROBE);

// What it has said of the last visit, without the moves.
QStringList stepsOf(Probe& probe) {
  QStringList steps;
  for (const QString& line : probe.lines()) {
    if (line.startsWith(u"entered "))
      steps.clear();
    if (!line.startsWith(u"updated"))
      steps.append(line);
  }
  return steps;
}

class DragAndDrop : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !XServer::hasProgram(u"xdotool"_s))
      GTEST_SKIP() << "Xvfb or xdotool is not installed";
    server_.emplace(640, 400);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    pointer_.emplace(*server_);
  }

  // Two programs, and the options of the one that takes the drops.
  void start(const QStringList& options = {}) {
    source = std::make_unique<Probe>(ProbeProgram, QStringList{u"source"_s}, *server_);
    target = std::make_unique<Probe>(ProbeProgram, QStringList{u"target"_s} + options, *server_);
    findWindows(*source, *target);
  }
  void findWindows(Probe& ofSource, Probe& ofTarget) {
    const auto from = ofSource.awaitWindow(u"source"_s);
    const auto to = ofTarget.awaitWindow(u"target"_s);
    ASSERT_TRUE(from && to);
    sourceCorner = *from;
    targetCorner = *to;
  }

  void xdotool(const QStringList& arguments) { pointer_->tell(arguments); }
  void moveTo(QPoint point) { pointer_->moveTo(point); }
  bool moveUntil(QPoint point, const std::function<bool()>& condition) {
    return pointer_->moveUntil(point, condition);
  }

  // Takes hold of what the source has, with the left button.
  void pick(Probe& ofSource) {
    ofSource.forget();
    moveTo(sourceCorner + QPoint(50, 50));
    xdotool({u"mousedown"_s, u"1"_s});
    ASSERT_TRUE(waitUntil([&] { return ofSource.hasSaid(u"pressed"_s); }));
    ASSERT_TRUE(
        moveUntil(sourceCorner + QPoint(60, 60), [&] { return ofSource.hasSaid(u"dragging"_s); }));
  }
  void release() { xdotool({u"mouseup"_s, u"1"_s}); }
  // Whether a border of three pixels lies inside the edges of what the target shows.
  bool isFramed() {
    const QImage screen = server_->screenshot();
    const auto isGreen = [&](int x, int y) {
      return (screen.pixel(targetCorner + QPoint(x, y)) & 0xffffff) == (HighlightColor & 0xffffff);
    };
    return isGreen(0, 0) && isGreen(2, 70) && !isGreen(3, 70) && isGreen(70, TargetHeight - 1) &&
           isGreen(70, TargetHeight - 3) && !isGreen(70, TargetHeight - 4);
  }
  bool isUnframed() {
    const QImage screen = server_->screenshot();
    return (screen.pixel(targetCorner) & 0xffffff) == 0xffffff;
  }

  std::optional<XServer> server_;
  std::optional<Pointer> pointer_;
  std::unique_ptr<Probe> source;
  std::unique_ptr<Probe> target;
  QPoint sourceCorner;
  QPoint targetCorner;
};

} // namespace

TEST_F(DragAndDrop, FromAnotherProgramEntersMovesAndDrops) {
  ASSERT_NO_FATAL_FAILURE(start());
  ASSERT_NO_FATAL_FAILURE(pick(*source));
  target->forget();
  ASSERT_TRUE(moveUntil(targetCorner + QPoint(40, 30),
                        [&] { return target->hasSaidStart(u"updated 40 120"_s); }));
  EXPECT_TRUE(target->hasSaid(u"highlight 1"_s));
  EXPECT_TRUE(waitUntil([&] { return isFramed(); }));
  EXPECT_TRUE(moveUntil(targetCorner + QPoint(90, 100),
                        [&] { return target->hasSaidStart(u"updated 90 50"_s); }));
  // Over the scroll bar.
  EXPECT_TRUE(moveUntil(targetCorner + QPoint(TargetWidth - 4, 100),
                        [&] { return target->hasSaidStart(u"updated 196 50"_s); }));
  EXPECT_TRUE(
      moveUntil(targetCorner + QPoint(90, 100), [&] { return source->hasSaid(u"action copy"_s); }));
  release();
  EXPECT_TRUE(waitUntil([&] { return source->hasSaid(u"result copy"_s); }));
  EXPECT_TRUE(waitUntil([&] { return target->hasSaid(u"ended"_s); }));
  const QStringList steps = stepsOf(*target);
  ASSERT_FALSE(steps.isEmpty());
  EXPECT_TRUE(steps.first().startsWith(u"entered "));
  EXPECT_EQ(text(steps.mid(1)),
            text(QStringList{u"mask 23"_s, u"source elsewhere"_s, u"highlight 1"_s, u"prepare"_s,
                             u"perform dragged"_s, u"conclude"_s, u"highlight 0"_s, u"ended"_s}));
  EXPECT_TRUE(waitUntil([&] { return isUnframed(); }));
}

TEST_F(DragAndDrop, ThatLeavesExitsAndMayComeBack) {
  ASSERT_NO_FATAL_FAILURE(start({u"move"_s}));
  ASSERT_NO_FATAL_FAILURE(pick(*source));
  target->forget();
  const QPoint outside = targetCorner + QPoint(60, TargetHeight + 60);
  for (int visit = 0; visit < 2; ++visit) {
    ASSERT_TRUE(moveUntil(targetCorner + QPoint(40, 30),
                          [&] { return target->hasSaid(u"highlight 1"_s); }));
    ASSERT_TRUE(moveUntil(outside, [&] { return target->hasSaid(u"highlight 0"_s); }));
    const QStringList steps = stepsOf(*target);
    EXPECT_TRUE(steps.first().startsWith(u"entered "));
    EXPECT_EQ(text(steps.mid(3)),
              text(QStringList{u"highlight 1"_s, u"exited"_s, u"highlight 0"_s}));
    target->forget();
  }
  release();
  EXPECT_TRUE(waitUntil([&] { return source->hasSaid(u"result none"_s); }));
  EXPECT_EQ(text(target->lines()), "");
  EXPECT_TRUE(waitUntil([&] { return isUnframed(); }));
}

TEST_F(DragAndDrop, ThatIsRefusedExitsWhenItIsDropped) {
  ASSERT_NO_FATAL_FAILURE(start({u"none"_s}));
  ASSERT_NO_FATAL_FAILURE(pick(*source));
  target->forget();
  ASSERT_TRUE(moveUntil(targetCorner + QPoint(40, 30), [&] {
    return target->hasSaidStart(u"updated"_s);
  })) << "although it was refused at once";
  EXPECT_TRUE(moveUntil(targetCorner + QPoint(80, 30),
                        [&] { return target->hasSaidStart(u"updated 80 120"_s); }));
  release();
  EXPECT_TRUE(waitUntil([&] { return source->hasSaid(u"result none"_s); }));
  EXPECT_TRUE(waitUntil([&] { return target->hasSaid(u"exited"_s); }));
  EXPECT_EQ(text(stepsOf(*target).mid(1)),
            text(QStringList{u"mask 23"_s, u"source elsewhere"_s, u"exited"_s}));
}

TEST_F(DragAndDrop, ThatIsNotPreparedOnlyEnds) {
  ASSERT_NO_FATAL_FAILURE(start({u"unprepared"_s}));
  ASSERT_NO_FATAL_FAILURE(pick(*source));
  target->forget();
  ASSERT_TRUE(
      moveUntil(targetCorner + QPoint(40, 30), [&] { return source->hasSaid(u"action copy"_s); }));
  release();
  EXPECT_TRUE(waitUntil([&] { return source->hasSaidStart(u"result"_s); }));
  EXPECT_TRUE(waitUntil([&] { return target->hasSaid(u"highlight 0"_s); }));
  EXPECT_EQ(text(stepsOf(*target).mid(3)),
            text(QStringList{u"highlight 1"_s, u"prepare"_s, u"ended"_s, u"highlight 0"_s}));
}

TEST_F(DragAndDrop, WhoseDelegateRaisesIsLoggedAndTheNextOneComes) {
  ASSERT_NO_FATAL_FAILURE(start({u"raising"_s}));
  for (int drop = 0; drop < 2; ++drop) {
    ASSERT_NO_FATAL_FAILURE(pick(*source));
    target->forget();
    ASSERT_TRUE(moveUntil(targetCorner + QPoint(40, 30),
                          [&] { return source->hasSaid(u"action copy"_s); }));
    release();
    EXPECT_TRUE(waitUntil([&] { return source->hasSaidStart(u"result"_s); }));
    EXPECT_TRUE(waitUntil([&] { return target->hasSaid(u"highlight 0"_s); }));
    EXPECT_EQ(text(stepsOf(*target).mid(4)),
              text(QStringList{u"prepare"_s, u"perform dragged"_s, u"ended"_s, u"highlight 0"_s}));
    EXPECT_TRUE(waitUntil(
        [&] { return target->logged("Error in the callback of a view: this drop") == drop + 1; }));
  }
}

TEST_F(DragAndDrop, WithinAProgramKnowsItsSource) {
  target = std::make_unique<Probe>(ProbeProgram, QStringList{u"both"_s, u"move"_s}, *server_);
  ASSERT_NO_FATAL_FAILURE(findWindows(*target, *target));
  ASSERT_NO_FATAL_FAILURE(pick(*target));
  ASSERT_TRUE(
      moveUntil(targetCorner + QPoint(40, 30), [&] { return target->hasSaid(u"action move"_s); }));
  release();
  EXPECT_TRUE(waitUntil([&] { return target->hasSaid(u"result move"_s); }));
  EXPECT_TRUE(target->hasSaid(u"mask 23"_s)) << "copy, link, generic and move";
  EXPECT_TRUE(target->hasSaid(u"source within"_s));
  EXPECT_EQ(target->lines().filter(u"ended"_s).size(), 1);
  EXPECT_EQ(target->lines().filter(u"perform dragged"_s).size(), 1);
}
