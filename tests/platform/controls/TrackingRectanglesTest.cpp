#include "zqticker/platform/controls/TrackingRectangles_p.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <functional>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using zq::platform::TrackingRectangles;

namespace {

class TrackingRectanglesTest : public ::testing::Test {
 protected:
  // What was told by the pointer's going to `point`.
  QString at(std::optional<QPointF> point) {
    QStringList told;
    rectangles.pointerIsAt(point, [&](bool isEntry) {
      told.append(isEntry ? u"in"_s : u"out"_s);
      if (const auto perform = std::exchange(meanwhile, nullptr))
        perform();
      return true;
    });
    return told.join(u' ');
  }

  TrackingRectangles rectangles;
  std::function<void()> meanwhile;
};

} // namespace

TEST_F(TrackingRectanglesTest, TellEachEntryAndEachLeaveOnce) {
  EXPECT_NE(rectangles.add({0, 0, 10, 10}, false), 0);
  EXPECT_EQ(at(QPointF(5, 5)), u"in"_s);
  EXPECT_EQ(at(QPointF(6, 5)), QString());
  EXPECT_EQ(at(std::nullopt), u"out"_s);
  EXPECT_EQ(at(std::nullopt), QString());
}

TEST_F(TrackingRectanglesTest, CountTheNearEdgesAsInside) {
  rectangles.add({0, 0, 10, 10}, false);
  EXPECT_EQ(at(QPointF(10, 5)), QString());
  EXPECT_EQ(at(QPointF(0, 0)), u"in"_s);
  EXPECT_EQ(at(QPointF(5, 10)), u"out"_s);
}

TEST_F(TrackingRectanglesTest, AreLeftFromTheStartWhereInsideIsAssumed) {
  rectangles.add({0, 0, 10, 10}, true);
  EXPECT_EQ(at(QPointF(5, 5)), QString());
  EXPECT_EQ(at(QPointF(50, 5)), u"out"_s);
}

TEST_F(TrackingRectanglesTest, TellTheLeaveBeforeTheEntryOfTheNext) {
  rectangles.add({0, 0, 10, 10}, false);
  rectangles.add({10, 0, 10, 10}, false);
  EXPECT_EQ(at(QPointF(15, 5)), u"in"_s);
  EXPECT_EQ(at(QPointF(5, 5)), u"out in"_s);
}

TEST_F(TrackingRectanglesTest, TellNothingOfThoseThatWereRemoved) {
  const auto tag = rectangles.add({0, 0, 10, 10}, false);
  at(QPointF(5, 5));
  rectangles.remove(tag);
  rectangles.remove(tag);
  rectangles.remove(0);
  EXPECT_TRUE(rectangles.isEmpty());
  EXPECT_EQ(at(std::nullopt), QString());
}

TEST_F(TrackingRectanglesTest, StillTellTheLeaveWhereAnotherTakesThePlaceOfOneThatWasEntered) {
  rectangles.remove(rectangles.add({0, 0, 10, 10}, true));
  rectangles.add({20, 0, 10, 10}, false);
  EXPECT_EQ(at(QPointF(5, 5)), u"out"_s);
  EXPECT_EQ(at(QPointF(5, 5)), QString());
}

TEST_F(TrackingRectanglesTest, TellTheEntryAgainWhereTheNewOneIsUnderThePointer) {
  rectangles.remove(rectangles.add({0, 0, 10, 10}, true));
  rectangles.add({0, 0, 10, 10}, false);
  EXPECT_EQ(at(QPointF(5, 5)), u"in"_s);
  EXPECT_EQ(at(std::nullopt), u"out"_s);
}

TEST_F(TrackingRectanglesTest, MayBeChangedByWhomTheyTell) {
  const auto first = rectangles.add({0, 0, 10, 10}, false);
  const auto second = rectangles.add({0, 0, 10, 10}, false);
  meanwhile = [&] {
    rectangles.remove(first);
    rectangles.remove(second);
    rectangles.add({0, 0, 10, 10}, false);
  };
  EXPECT_EQ(at(QPointF(5, 5)), u"in"_s);
  EXPECT_EQ(at(QPointF(5, 5)), u"in"_s);
}

TEST_F(TrackingRectanglesTest, AreNotTouchedWhenTheirOwnerHasGone) {
  auto owned = std::make_unique<TrackingRectangles>();
  owned->add({0, 0, 10, 10}, false);
  owned->add({0, 0, 10, 10}, false);
  int told = 0;
  owned->pointerIsAt(QPointF(5, 5), [&](bool) {
    ++told;
    owned.reset();
    return false;
  });
  EXPECT_EQ(told, 1);
}
