#include "app/sight/LoginSession.h"

#include "app/bus/BusListener.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/sight/FakeServices.h"
#include "tests/support/CalendarSettings.h"

#include <memory>
#include <optional>

using namespace std::chrono_literals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
class LoginManager : public ::testing::Test {
 protected:
  // One that does not run out in a test.
  static constexpr auto Patience = 24h;

  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus_.emplace();
  }

  void start(FakeLoginManager::State state = {}) {
    manager_ = std::make_unique<FakeLoginManager>(bus_->address(), state);
  }
  // Follows the session until it is heard; asked, it is heard as well.
  void follow(std::chrono::milliseconds patience = Patience) {
    const int before = manager_->questions();
    listener_ = std::make_unique<BusListener>(bus_->address());
    session_ = std::make_unique<LoginSession>(*listener_, patience);
    listener_->open();
    ASSERT_TRUE(waitUntil([&] { return manager_->questions() > before; }));
  }

  zq::testing::EnvironmentVariable identifier_{"XDG_SESSION_ID", std::nullopt};
  std::optional<PrivateBus> bus_;
  std::unique_ptr<FakeLoginManager> manager_;
  std::unique_ptr<BusListener> listener_;
  std::unique_ptr<LoginSession> session_;
};
} // namespace

TEST_F(LoginManager, TellsOfItsSessionsLock) {
  start();
  follow();
  EXPECT_FALSE(session_->isLocked());
  manager_->setAnotherLocked(true);
  manager_->setLocked(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isLocked(); }));
  manager_->setLocked(false);
  ASSERT_TRUE(waitUntil([&] { return !session_->isLocked(); }));
  manager_->changeLocked(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isLocked(); }));
  manager_->changeLocked(false);
  ASSERT_TRUE(waitUntil([&] { return !session_->isLocked(); }));
}

TEST_F(LoginManager, DoesNotMeanOtherSessions) {
  start();
  follow();
  manager_->setAnotherLocked(true);
  manager_->setAsleep(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isAsleep(); })) << "was told later";
  EXPECT_FALSE(session_->isLocked());
}

TEST_F(LoginManager, IsAskedForWhatWasBefore) {
  start({true, true, true});
  follow();
  EXPECT_TRUE(waitUntil([&] { return session_->isLocked() && session_->isAsleep(); }));
}

TEST_F(LoginManager, NamesTheUsersSessionToAProcessThatBelongsToNone) {
  start({true, false, false});
  follow();
  EXPECT_TRUE(waitUntil([&] { return session_->isLocked(); }));
}

TEST_F(LoginManager, KnowsASessionByItsIdentifierToo) {
  zq::testing::EnvironmentVariable identifier("XDG_SESSION_ID", "auto");
  start({true, false, false});
  follow();
  EXPECT_TRUE(waitUntil([&] { return session_->isLocked(); }));
}

TEST_F(LoginManager, TellsOfSleep) {
  start();
  follow();
  manager_->setAsleep(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isAsleep(); }));
  EXPECT_FALSE(session_->isLocked());
  manager_->setAsleep(false);
  EXPECT_TRUE(waitUntil([&] { return !session_->isAsleep(); }));
}

TEST_F(LoginManager, AsksForALockThatEndsWithTheUnlock) {
  start();
  follow();
  manager_->tellLock();
  ASSERT_TRUE(waitUntil([&] { return session_->isLocked(); }));
  manager_->tellUnlock();
  EXPECT_TRUE(waitUntil([&] { return !session_->isLocked(); }));
}

TEST_F(LoginManager, AsksForALockThatEndsWhenItIsToldToBeOver) {
  start();
  follow();
  manager_->tellLock();
  ASSERT_TRUE(waitUntil([&] { return session_->isLocked(); }));
  manager_->setLocked(false);
  EXPECT_TRUE(waitUntil([&] { return !session_->isLocked(); }));
}

TEST_F(LoginManager, IsNotTrustedForLongThatALockItAsksForWasDone) {
  start();
  follow(1ms);
  int changes = 0;
  QObject::connect(session_.get(), &LoginSession::changed, [&] { ++changes; });
  // Whatever has been asked at the beginning is answered.
  manager_->setAsleep(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isAsleep(); }));
  const int before = changes;
  manager_->tellLock();
  EXPECT_TRUE(waitUntil([&] { return changes == before + 2; })) << "locked and not";
  EXPECT_FALSE(session_->isLocked());
}

TEST_F(LoginManager, KeepsALockThatIsToldHoweverLongItTakes) {
  start();
  follow(1ms);
  manager_->tellLock();
  manager_->setLocked(true);
  manager_->setAsleep(true);
  ASSERT_TRUE(waitUntil([&] { return session_->isAsleep(); }));
  EXPECT_TRUE(session_->isLocked());
}

TEST_F(LoginManager, LeavesNothingLockedWhenItGoesAndTellsAnewWhenItComesBack) {
  start({true, true, true});
  follow();
  ASSERT_TRUE(waitUntil([&] { return session_->isLocked() && session_->isAsleep(); }));
  manager_.reset();
  ASSERT_TRUE(waitUntil([&] { return !session_->isLocked() && !session_->isAsleep(); }));
  start({true, false, true});
  EXPECT_TRUE(waitUntil([&] { return session_->isLocked(); }));
}
