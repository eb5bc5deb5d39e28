// Calls that other threads have the main thread make.
#include "zqticker/platform/objects/MainThread.h"

#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
// Runs `work` on a thread of its own while the main loop turns.
void runOnThread(const std::function<void()>& work) {
  std::atomic<bool> isDone = false;
  std::thread thread([&] {
    work();
    isDone = true;
  });
  // Joining a thread that does not end would hang.
  if (!zq::testing::waitFor([&] { return isDone.load(); }))
    std::terminate();
  thread.join();
}

// Whether a call from another thread is refused, without the main loop's help.
bool isRefused() {
  bool refused = false;
  std::thread([&] {
    try {
      performOnMainThreadAndWait([] {});
    } catch (const MainThreadEndedException&) {
      refused = true;
    }
  }).join();
  return refused;
}

// Makes applications one after the other, with each kind of event loop.
bool areThreadsServedByApplicationsMadeAnew() {
  int argc = 1;
  char name[] = "application";
  char* argv[] = {name, nullptr};
  int served = 0;
  for (const char* withoutGlib : {"", "1"}) {
    qputenv("QT_NO_GLIB", withoutGlib);
    QCoreApplication application(argc, argv);
    std::thread thread([&] {
      performOnMainThreadAndWait([&] { ++served; });
      performOnMainThreadAndWait([&] {
        ++served;
        QCoreApplication::quit();
      });
    });
    QCoreApplication::exec();
    thread.join();
    if (!isRefused())
      return false;
  }
  return served == 4 && isRefused();
}
} // namespace

TEST(MainThread, IsThatOfTheApplication) {
  EXPECT_TRUE(isMainThread());
  bool other = true;
  std::thread([&] { other = isMainThread(); }).join();
  EXPECT_FALSE(other);
}

TEST(MainThread, CallsAtOnceWhenAlreadyThere) {
  int calls = 0;
  performOnMainThreadAndWait([&] { ++calls; });
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(performOnMainThreadAndWait([] { return 7; }), 7);
  EXPECT_THROW(performOnMainThreadAndWait([] { throw RangeException(u"x"_s); }), RangeException);
}

TEST(MainThread, RunsTheCallOfAnotherThreadThereAndGivesItsResultBack) {
  const std::thread::id mainId = std::this_thread::get_id();
  runOnThread([&] {
    EXPECT_EQ(performOnMainThreadAndWait([] { return std::this_thread::get_id(); }), mainId);
    // Results that cannot be copied, and references, come back as well.
    EXPECT_EQ(*performOnMainThreadAndWait([] { return std::make_unique<int>(3); }), 3);
    int number = 0;
    EXPECT_EQ(&performOnMainThreadAndWait([&]() -> int& { return number; }), &number);
  });
}

TEST(MainThread, GivesTheExceptionBackToTheCallingThread) {
  runOnThread([] {
    try {
      performOnMainThreadAndWait([]() -> int { throw RangeException(u"too far"_s); });
      ADD_FAILURE() << "nothing was raised";
    } catch (const RangeException& exception) {
      EXPECT_EQ(exception.reason(), u"too far"_s);
    }
    EXPECT_THROW(performOnMainThreadAndWait([] { throw 5; }), int);
  });
}

TEST(MainThread, ServesManyThreadsEachInItsOrder) {
  constexpr int Threads = 4;
  constexpr int Calls = 250;
  std::vector<std::vector<int>> seen(Threads); // touched by the main thread only
  std::atomic<int> ended = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < Threads; ++thread)
    threads.emplace_back([&seen, &ended, thread] {
      for (int call = 0; call < Calls; ++call)
        performOnMainThreadAndWait([&] { seen[std::size_t(thread)].push_back(call); });
      ++ended;
    });
  EXPECT_TRUE(zq::testing::waitFor([&] { return ended == Threads; }));
  for (std::thread& thread : threads)
    thread.join();
  std::vector<int> all(Calls);
  for (int call = 0; call < Calls; ++call)
    all[std::size_t(call)] = call;
  for (const std::vector<int>& calls : seen)
    EXPECT_EQ(calls, all);
}

TEST(MainThread, ServesOtherThreadsFromALoopThatACallRuns) {
  std::atomic<bool> isInside = false;
  std::atomic<bool> isInnerDone = false;
  bool innerWasServed = false;
  std::thread inner([&] {
    isInside.wait(false);
    performOnMainThreadAndWait([&] { isInnerDone = true; });
  });
  runOnThread([&] {
    performOnMainThreadAndWait([&] {
      isInside = true;
      isInside.notify_all();
      innerWasServed = zq::testing::waitFor([&] { return isInnerDone.load(); });
    });
  });
  inner.join();
  EXPECT_TRUE(innerWasServed);
}

// Both calls wait before the loop turns, so that one event serves the first and the loop that this
// runs must be woken for the second.
TEST(MainThread, ServesWhatWasWaitingFromALoopThatACallOfAThreadRuns) {
  std::atomic<int> begun = 0;
  std::atomic<int> served = 0;
  bool bothServed = false;
  const auto work = [&] {
    ++begun;
    performOnMainThreadAndWait([&] {
      if (++served == 1)
        bothServed = zq::testing::waitFor([&] { return served == 2; });
    });
  };
  std::thread first(work);
  std::thread second(work);
  while (begun < 2)
    std::this_thread::yield();
  EXPECT_TRUE(zq::testing::waitFor([&] { return bothServed; }));
  first.join();
  second.join();
}

TEST(MainThread, LetsACallWaitForALoopThatHasNotBegun) {
  std::atomic<bool> isBegun = false;
  std::atomic<bool> isServed = false;
  std::thread thread([&] {
    isBegun = true;
    isBegun.notify_all();
    performOnMainThreadAndWait([&] { isServed = true; });
  });
  isBegun.wait(false);
  EXPECT_FALSE(isServed);
  EXPECT_TRUE(zq::testing::waitFor([&] { return isServed.load(); }));
  thread.join();
}

TEST(MainThread, RefusesCallsOfThreadsOnceTheLoopHasQuitUntilOneRunsAgain) {
  QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
  QCoreApplication::exec();
  EXPECT_TRUE(isRefused());
  // A call on the main thread itself needs no loop.
  EXPECT_EQ(performOnMainThreadAndWait([] { return 1; }), 1);
  zq::testing::runPostedEvents();
  runOnThread([] { EXPECT_EQ(performOnMainThreadAndWait([] { return 2; }), 2); });
  // The second loop's end counts like that of the first.
  QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
  QCoreApplication::exec();
  EXPECT_TRUE(isRefused());
  zq::testing::runPostedEvents();
}

TEST(MainThread, RaisesInThreadsThatWaitWhenTheLoopQuits) {
  constexpr int Threads = 8;
  std::atomic<int> begun = 0;
  std::atomic<int> raised = 0;
  std::atomic<int> called = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < Threads; ++i)
    threads.emplace_back([&] {
      ++begun;
      try {
        performOnMainThreadAndWait([&] { ++called; });
      } catch (const MainThreadEndedException&) {
        ++raised;
      }
    });
  // Lets most of them get as far as waiting; one that is slower is refused.
  for (int yields = 0; begun < Threads || yields < 1000; ++yields)
    std::this_thread::yield();
  // As the end of exec() does, without events between.
  EXPECT_TRUE(QMetaObject::invokeMethod(qApp, "aboutToQuit", Qt::DirectConnection));
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(raised, Threads);
  EXPECT_EQ(called, 0);
  zq::testing::runPostedEvents();
}

TEST(MainThread, FinishesTheCallOfAThreadThatQuitsTheLoopAndRefusesTheNext) {
  bool wasRefused = false;
  bool wasCalledAgain = false;
  std::thread thread([&] {
    EXPECT_EQ(performOnMainThreadAndWait([] {
                QCoreApplication::quit();
                return 3;
              }),
              3);
    try {
      performOnMainThreadAndWait([&] { wasCalledAgain = true; });
    } catch (const MainThreadEndedException&) {
      wasRefused = true;
    }
  });
  QCoreApplication::exec();
  thread.join();
  EXPECT_TRUE(wasRefused);
  EXPECT_FALSE(wasCalledAgain);
  zq::testing::runPostedEvents();
}

// Calls that are refused leave wake-ups behind, which must not stand for later calls.
TEST(MainThread, ServesAThreadInItsOrderAfterManyWereRefused) {
  constexpr int Threads = 4;
  std::atomic<int> begun = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < Threads; ++i)
    threads.emplace_back([&] {
      ++begun;
      EXPECT_THROW(performOnMainThreadAndWait([] {}), MainThreadEndedException);
    });
  for (int yields = 0; begun < Threads || yields < 1000; ++yields)
    std::this_thread::yield();
  EXPECT_TRUE(QMetaObject::invokeMethod(qApp, "aboutToQuit", Qt::DirectConnection));
  for (std::thread& thread : threads)
    thread.join();
  zq::testing::runPostedEvents();
  std::vector<int> seen;
  runOnThread([&] {
    for (int i = 0; i < 5; ++i)
      performOnMainThreadAndWait([&] { seen.push_back(i); });
  });
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(MainThread, LetsThreadsEndAsSoonAsTheirCallHasReturned) {
  constexpr int Threads = 200;
  int calls = 0; // touched by the main thread only
  runOnThread([&] {
    for (int i = 0; i < Threads; ++i)
      std::thread([&] { performOnMainThreadAndWait([&] { ++calls; }); }).join();
  });
  EXPECT_EQ(calls, Threads);
}

// In a process of its own, as below, for the kind of the event loop is chosen when it starts.
TEST(MainThreadDeathTest, ServesThreadsInApplicationsMadeAnewWithAnyKindOfEventLoop) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        QCoreApplication::instance()->~QCoreApplication();
        std::_Exit(areThreadsServedByApplicationsMadeAnew() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(MainThreadDeathTest, RaisesInAThreadThatWaitsWhenTheApplicationIsDestroyed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        std::atomic<bool> isBegun = false;
        bool wasRefused = false;
        bool wasCalled = false;
        std::thread thread([&] {
          isBegun = true;
          try {
            performOnMainThreadAndWait([&] { wasCalled = true; });
          } catch (const MainThreadEndedException&) {
            wasRefused = true;
          }
        });
        for (int yields = 0; !isBegun || yields < 1000; ++yields)
          std::this_thread::yield();
        QCoreApplication::instance()->~QCoreApplication();
        thread.join();
        std::_Exit(wasRefused && !wasCalled ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

// In a process of its own, so that there is no application but the one made here.
TEST(MainThreadDeathTest, RefusesCallsWithoutAnApplication) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        QCoreApplication::instance()->~QCoreApplication();
        const bool isRight = !isMainThread() && isRefused();
        bool hereToo = false;
        try {
          performOnMainThreadAndWait([] {});
        } catch (const MainThreadEndedException&) {
          hereToo = true;
        }
        std::_Exit(isRight && hereToo ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}
