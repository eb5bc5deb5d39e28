#include "app/trace/TraceReport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zq::app;

namespace {
constexpr double Period = 1.0 / 60;

// Frames as a strip makes them that does everything right.
class Frames {
 public:
  explicit Frames(double speed, double scale = 1, double start = 100.25) {
    row_.speed = speed;
    row_.scale = scale;
    row_.time = start;
    row_.ideal = 7.3;
    row_.blank = 1000;
    row_.kind = TraceKind::Begin;
    report.add(finished(), ++line_);
  }

  // The frame after `blanks` of them.
  TraceRow next(std::uint64_t blanks = 1, TraceKind kind = TraceKind::Run) {
    const double seconds = static_cast<double>(blanks) * Period;
    row_.time += seconds;
    row_.ideal += seconds * row_.speed * row_.scale;
    row_.blank += blanks;
    row_.kind = kind;
    return finished();
  }
  void go(int count) {
    for (int i = 0; i < count; ++i)
      take(next());
  }
  void take(const TraceRow& row) { EXPECT_EQ(report.add(row, ++line_), QString()); }
  void moveBy(double pixels) { row_.ideal += pixels; }
  void setSpeed(double speed) { row_.speed = speed; }
  std::size_t line() const { return line_; }

  TraceReport report;

 private:
  TraceRow finished() {
    row_.drawn = row_.time - Period / 2;
    row_.offset = std::llround(row_.ideal);
    return row_;
  }

  TraceRow row_;
  std::size_t line_ = 1;
};

void expectFaultless(Frames& frames) {
  frames.report.finish();
  EXPECT_EQ(frames.report.fault(), QString());
  EXPECT_LE(frames.report.positionError(), 0.5 + 1e-6);
  EXPECT_EQ(frames.report.doubledSteps(), 0u);
  EXPECT_EQ(frames.report.missingSteps(), 0u);
}
} // namespace

TEST(TraceReport, FindsNothingWrongWithIdealMotion) {
  for (const double speed : {0.5, 10.0, 59.9976, 60.0, 90.0, 137.5, 2000.0})
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
      Frames frames(speed, scale);
      frames.go(3000);
      expectFaultless(frames);
      EXPECT_EQ(frames.report.frames(), 3001u);
      EXPECT_EQ(frames.report.lateFrames(), 0u);
    }
}

TEST(TraceReport, FindsADoubledAndAMissingStep) {
  Frames frames(60);
  frames.go(100);
  TraceRow row = frames.next();
  row.offset -= 1;
  frames.take(row);
  frames.go(100);
  frames.report.finish();
  EXPECT_EQ(frames.report.missingSteps(), 1u);
  EXPECT_EQ(frames.report.doubledSteps(), 1u);
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 103: ")))
      << frames.report.fault().toStdString();
}

TEST(TraceReport, FindsStepsThatJitterWithinHalfAPixel) {
  // Each frame is where its own uneven time wants it, and yet they do not move evenly.
  Frames frames(60);
  frames.go(50);
  for (int i = 0; i < 50; ++i) {
    TraceRow row = frames.next();
    const double shift = (i % 2 ? 0.004 : -0.004);
    row.time += shift;
    row.ideal += shift * 60;
    row.offset = std::llround(row.ideal);
    frames.take(row);
  }
  frames.go(50);
  frames.report.finish();
  EXPECT_LE(frames.report.positionError(), 0.5);
  EXPECT_GT(frames.report.doubledSteps(), 0u);
  EXPECT_FALSE(frames.report.fault().isEmpty());
}

TEST(TraceReport, FindsAFrameThatIsOffTheLine) {
  Frames frames(90, 1.5);
  frames.go(100);
  TraceRow row = frames.next();
  row.offset += 1;
  frames.take(row);
  frames.go(100);
  frames.report.finish();
  EXPECT_GT(frames.report.positionError(), 0.5);
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 103: ")));
}

TEST(TraceReport, DoesNotBelieveAnIdealOffsetThatIsNotOnTheLine) {
  Frames frames(60);
  frames.go(100);
  frames.moveBy(20);
  frames.go(1);
  frames.report.finish();
  EXPECT_GT(frames.report.positionError(), 19);
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 103: ")));
}

TEST(TraceReport, CountsLateFramesAndFindsNoFaultInThem) {
  Frames frames(60);
  frames.go(100);
  frames.take(frames.next(3));
  frames.go(100);
  frames.take(frames.next(2));
  frames.go(100);
  expectFaultless(frames);
  EXPECT_EQ(frames.report.lateFrames(), 2u);
  EXPECT_EQ(frames.report.emptyBlanks(), 3u);
  EXPECT_TRUE(frames.report.lines().contains(QStringLiteral("longest gap: 50.0 ms")));
  EXPECT_TRUE(
      frames.report.lines().contains(QStringLiteral("steps: 1 px x 300, 2 px x 1, 3 px x 1")));
}

TEST(TraceReport, HoldsALateFrameAgainstTheLine) {
  Frames frames(60);
  frames.go(100);
  TraceRow row = frames.next(3);
  row.offset -= 2; // as if nothing had been missed
  frames.take(row);
  frames.report.finish();
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 103: ")));
}

TEST(TraceReport, FindsBlanksThatDoNotFitTheirTime) {
  Frames frames(60);
  frames.go(100);
  TraceRow row = frames.next(3);
  row.blank -= 2; // a dropped blank that is kept quiet
  frames.take(row);
  for (int i = 0; i < 100; ++i) {
    row = frames.next();
    row.blank -= 2;
    frames.take(row);
  }
  frames.report.finish();
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 103: 1 blanks within")))
      << frames.report.fault().toStdString();
}

TEST(TraceReport, BeginsAnewAfterRestsChangesAndLostTime) {
  Frames frames(60);
  for (const TraceKind kind : {TraceKind::Begin, TraceKind::Change, TraceKind::Lost}) {
    frames.go(100);
    frames.moveBy(33.4);
    frames.take(frames.next(50, kind));
  }
  frames.go(100);
  frames.setSpeed(100);
  frames.take(frames.next(1, TraceKind::Change));
  frames.go(100);
  expectFaultless(frames);
  EXPECT_TRUE(frames.report.lines().contains(QStringLiteral("times left out: 1")));
  EXPECT_EQ(frames.report.lateFrames(), 0u);
}

TEST(TraceReport, HoldsGlidesAgainstTheirOwnPlaceOnly) {
  Frames frames(60);
  frames.go(10);
  for (int i = 0; i < 20; ++i) {
    frames.moveBy(5.0 * i);
    frames.take(frames.next(1, TraceKind::Glide));
  }
  frames.go(100);
  expectFaultless(frames);
}

TEST(TraceReport, GoesOnWithTheLineBehindAFrameThatIsDrawnOnceMore) {
  Frames frames(60);
  for (int i = 0; i < 10; ++i) {
    frames.go(10);
    frames.take(frames.next(0, TraceKind::Redraw));
  }
  frames.go(10);
  expectFaultless(frames);
  EXPECT_TRUE(frames.report.lines().contains(QStringLiteral("stretches of even motion: 1")));
}

TEST(TraceReport, FindsAStepBehindAFrameThatIsDrawnOnceMore) {
  Frames frames(60);
  frames.go(50);
  frames.take(frames.next(0, TraceKind::Redraw));
  TraceRow row = frames.next();
  row.offset -= 1;
  frames.take(row);
  frames.go(50);
  frames.report.finish();
  EXPECT_EQ(frames.report.missingSteps(), 1u);
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 54: ")))
      << frames.report.fault().toStdString();
}

TEST(TraceReport, FindsAFrameThatMovesWhileItIsDrawnOnceMore) {
  Frames frames(60);
  frames.go(50);
  frames.moveBy(5);
  frames.take(frames.next(0, TraceKind::Redraw));
  frames.moveBy(-5);
  frames.go(50);
  frames.report.finish();
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line 53: ")))
      << frames.report.fault().toStdString();
}

TEST(TraceReport, JudgesEachStretchByItsOwnLine) {
  // A wheel, a hand that drags back and throws, a rest and another speed.
  Frames frames(60);
  frames.go(60);
  frames.take(frames.next(0, TraceKind::Change));
  for (int i = 10; i > 0; --i) {
    frames.moveBy(i);
    frames.take(frames.next(1, TraceKind::Glide));
  }
  frames.go(60);
  for (int i = 0; i < 10; ++i) {
    frames.moveBy(-7.3);
    frames.take(frames.next(0, TraceKind::Change));
  }
  frames.setSpeed(137.5);
  frames.take(frames.next(100, TraceKind::Begin));
  frames.go(60);
  const std::size_t line = frames.line();
  frames.go(1);
  TraceRow row = frames.next();
  row.offset += 2;
  frames.take(row);
  frames.go(60);
  frames.report.finish();
  EXPECT_EQ(frames.report.doubledSteps(), 1u);
  EXPECT_TRUE(frames.report.fault().startsWith(QStringLiteral("line %1: ").arg(line + 2)))
      << frames.report.fault().toStdString();
}

TEST(TraceReport, RefusesTimesThatRunBackwards) {
  Frames frames(60);
  frames.go(10);
  TraceRow row = frames.next();
  row.time -= 1;
  EXPECT_EQ(frames.report.add(row, 50), QStringLiteral("the time runs backwards"));
  row = frames.next();
  row.blank -= 10;
  EXPECT_FALSE(frames.report.add(row, 51).isEmpty());
}

TEST(TraceReport, TakesAsMuchMemoryForALongTraceAsForAShortOne) {
  // What it lists is bounded, too.
  Frames frames(60);
  for (int i = 0; i < 5000; ++i) {
    TraceRow row = frames.next();
    row.offset += i * i;
    frames.take(row);
  }
  frames.report.finish();
  EXPECT_LT(frames.report.lines().last().size(), 2000);
}
