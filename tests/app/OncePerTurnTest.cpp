#include "app/OncePerTurn.h"

#include <QtCore/QCoreApplication>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using zq::app::OncePerTurn;

namespace {
// One turn, with what was asked for before it.
void turn() {
  QCoreApplication::sendPostedEvents();
}
} // namespace

TEST(OncePerTurn, DoesLaterAndOnceWhatIsAskedForOften) {
  int count = 0;
  OncePerTurn work([&] { ++count; });
  turn();
  EXPECT_EQ(count, 0) << "nobody has asked";
  work.request();
  work.request();
  EXPECT_EQ(count, 0);
  turn();
  EXPECT_EQ(count, 1);
  turn();
  EXPECT_EQ(count, 1);
  work.request();
  turn();
  EXPECT_EQ(count, 2);
}

TEST(OncePerTurn, IsAskedForOnceMoreByTheWorkItself) {
  int count = 0;
  std::optional<OncePerTurn> work;
  work.emplace([&] {
    if (++count == 1)
      work->request();
  });
  work->request();
  turn();
  turn();
  EXPECT_EQ(count, 2);
  turn();
  EXPECT_EQ(count, 2);
}

TEST(OncePerTurn, CatchesUpWithWhatIsDueAlone) {
  int count = 0;
  OncePerTurn work([&] { ++count; });
  work.catchUp();
  EXPECT_EQ(count, 0);
  work.request();
  work.catchUp();
  EXPECT_EQ(count, 1);
  turn();
  EXPECT_EQ(count, 1) << "it has been done";
}

TEST(OncePerTurn, LeavesUndoneWhatWasDueWhenItGoes) {
  int count = 0;
  auto work = std::make_unique<OncePerTurn>([&] { ++count; });
  work->request();
  work.reset();
  turn();
  EXPECT_EQ(count, 0);
}

TEST(OncePerTurn, MayGoDuringTheWork) {
  const auto mark = std::make_shared<int>(7);
  std::unique_ptr<OncePerTurn> work;
  int seen = 0;
  work = std::make_unique<OncePerTurn>([&work, &seen, mark] {
    work.reset();
    seen = *mark;
  });
  work->request();
  turn();
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(mark.use_count(), 1);
}
