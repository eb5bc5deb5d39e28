// Who is sent which notification, when and where.
#include "zqticker/platform/system/NotificationCenter.h"

#include "zqticker/platform/system/Notification.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class Observer : public WeakReferenced {
 public:
  void hear(const Ref<Notification>& notification) {
    heard.push_back(notification);
    // A copy, for it may be replaced meanwhile.
    if (const auto call = then)
      call();
  }
  std::vector<Ref<Notification>> heard;
  std::function<void()> then;
};

class NamedObserver : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void hear(const QVariant& notification) {
    heard = objectOf<Notification>(notification);
  }
  Ref<Notification> heard;
};
} // namespace

TEST(NotificationCenter, HandsOverNameObjectAndUserInfo) {
  NotificationCenter center;
  Observer observer;
  const auto object = std::make_shared<Object>();
  center.addObserver(&observer, &Observer::hear);
  center.postNotificationName(u"Changed"_s, object, {{u"path"_s, u"/tmp"_s}});
  ASSERT_EQ(observer.heard.size(), 1u);
  EXPECT_EQ(observer.heard[0]->name(), u"Changed"_s);
  EXPECT_EQ(observer.heard[0]->object(), object);
  EXPECT_EQ(observer.heard[0]->userInfo(), QVariantMap({{u"path"_s, u"/tmp"_s}}));
}

TEST(NotificationCenter, CallsAMethodByName) {
  NotificationCenter center;
  NamedObserver observer;
  center.addObserver(&observer, "hear:");
  center.postNotificationName(u"Changed"_s, nullptr);
  ASSERT_TRUE(observer.heard);
  EXPECT_EQ(observer.heard->name(), u"Changed"_s);
  EXPECT_FALSE(observer.heard->object());
}

TEST(NotificationCenter, SelectsByNameAndByObject) {
  NotificationCenter center;
  const auto one = std::make_shared<Object>();
  const auto other = std::make_shared<Object>();
  Observer all, named, about, both;
  center.addObserver(&all, &Observer::hear);
  center.addObserver(&named, &Observer::hear, u"A"_s);
  center.addObserver(&about, &Observer::hear, std::nullopt, one);
  center.addObserver(&both, &Observer::hear, u"A"_s, one);
  center.postNotificationName(u"A"_s, one);
  center.postNotificationName(u"A"_s, other);
  center.postNotificationName(u"B"_s, one);
  center.postNotificationName(u"B"_s, nullptr);
  EXPECT_EQ(all.heard.size(), 4u);
  EXPECT_EQ(named.heard.size(), 2u);
  EXPECT_EQ(about.heard.size(), 2u);
  EXPECT_EQ(both.heard.size(), 1u);
}

TEST(NotificationCenter, OwnsNeitherObserversNorTheObjectsOfTheirInterest) {
  NotificationCenter center;
  auto object = std::make_shared<Object>();
  auto observer = std::make_unique<Observer>();
  Observer aboutObject;
  center.addObserver(observer.get(), &Observer::hear);
  center.addObserver(&aboutObject, &Observer::hear, std::nullopt, object);
  EXPECT_EQ(object.use_count(), 1);
  observer.reset();
  object.reset();
  center.postNotificationName(u"A"_s, nullptr);
  EXPECT_TRUE(aboutObject.heard.empty());
}

TEST(NotificationCenter, CallsInTheOrderOfRegistrationOnThePostingThread) {
  NotificationCenter center;
  QStringList order;
  std::vector<std::thread::id> where;
  Observer first, second;
  const auto note = [&](const QString& who) {
    return [&order, &where, who] {
      order.append(who);
      where.push_back(std::this_thread::get_id());
    };
  };
  first.then = note(u"first"_s);
  second.then = note(u"second"_s);
  center.addObserver(&second, &Observer::hear, u"A"_s);
  center.addObserver(&first, &Observer::hear);
  center.addObserver(&second, &Observer::hear);
  std::thread poster([&] { center.postNotificationName(u"A"_s, nullptr); });
  const std::thread::id posterId = poster.get_id();
  poster.join();
  EXPECT_EQ(order, QStringList({u"second"_s, u"first"_s, u"second"_s}));
  EXPECT_EQ(where, std::vector<std::thread::id>(3, posterId));
}

TEST(NotificationCenter, RemovesAllThatWasAddedForAnObserver) {
  NotificationCenter center;
  Observer observer, other;
  center.addObserver(&observer, &Observer::hear);
  center.addObserver(&other, &Observer::hear);
  center.addObserver(&observer, &Observer::hear, u"A"_s);
  center.removeObserver(&observer);
  center.removeObserver(&observer);
  center.removeObserver(nullptr);
  center.postNotificationName(u"A"_s, nullptr);
  EXPECT_TRUE(observer.heard.empty());
  EXPECT_EQ(other.heard.size(), 1u);
}

TEST(NotificationCenter, SendsNothingMoreToWhoIsRemovedByAnObserver) {
  NotificationCenter center;
  Observer first, second, third;
  first.then = [&] {
    center.removeObserver(&first);
    center.removeObserver(&second);
  };
  for (Observer* observer : {&first, &second, &third})
    center.addObserver(observer, &Observer::hear);
  center.postNotificationName(u"A"_s, nullptr);
  EXPECT_EQ(first.heard.size(), 1u);
  EXPECT_TRUE(second.heard.empty());
  EXPECT_EQ(third.heard.size(), 1u);
  center.postNotificationName(u"A"_s, nullptr);
  EXPECT_EQ(first.heard.size(), 1u);
}

TEST(NotificationCenter, SendsFromTheNextPostOnToWhoIsAddedByAnObserver) {
  NotificationCenter center;
  Observer first, second;
  first.then = [&] {
    first.then = nullptr;
    center.addObserver(&second, &Observer::hear);
  };
  center.addObserver(&first, &Observer::hear);
  center.postNotificationName(u"A"_s, nullptr);
  EXPECT_TRUE(second.heard.empty());
  center.postNotificationName(u"B"_s, nullptr);
  EXPECT_EQ(second.heard.size(), 1u);
}

TEST(NotificationCenter, PassesOnWhatAnObserverRaises) {
  NotificationCenter center;
  Observer failing, second;
  failing.then = [] { throw RangeException(u"too far"_s); };
  center.addObserver(&failing, &Observer::hear);
  center.addObserver(&second, &Observer::hear);
  EXPECT_THROW(center.postNotificationName(u"A"_s, nullptr), RangeException);
  EXPECT_TRUE(second.heard.empty());
}

TEST(NotificationCenter, TakesObserversFromSeveralThreadsWhileOthersPost) {
  NotificationCenter center;
  constexpr int Rounds = 300;
  std::atomic<bool> isDone = false;
  std::thread poster([&] {
    while (!isDone)
      center.postNotificationName(u"A"_s, nullptr);
  });
  // Each posts for itself as well; the other poster calls nobody, for nobody asks for "A".
  const auto work = [&](const QString& name) {
    Observer observer;
    for (int i = 0; i < Rounds; ++i) {
      center.addObserver(&observer, &Observer::hear, name);
      center.postNotificationName(name, nullptr);
      center.removeObserver(&observer);
    }
    EXPECT_EQ(observer.heard.size(), std::size_t(Rounds));
  };
  std::thread first(work, u"B"_s);
  std::thread second(work, u"C"_s);
  first.join();
  second.join();
  isDone = true;
  poster.join();
}

TEST(NotificationCenter, TakesBackWhatWasAddedForOneName) {
  NotificationCenter center;
  Observer observer;
  Observer other;
  const auto object = std::make_shared<Object>();
  center.addObserver(&observer, &Observer::hear, u"Moved"_s);
  center.addObserver(&observer, &Observer::hear, u"Resized"_s);
  center.addObserver(&observer, &Observer::hear, u"Resized"_s, object);
  center.addObserver(&observer, &Observer::hear);
  center.addObserver(&other, &Observer::hear, u"Resized"_s);
  center.removeObserver(&observer, u"Resized"_s);
  center.postNotificationName(u"Resized"_s, object);
  // By the registration for any name.
  EXPECT_EQ(observer.heard.size(), 1u);
  EXPECT_EQ(other.heard.size(), 1u);
  center.postNotificationName(u"Moved"_s, nullptr);
  EXPECT_EQ(observer.heard.size(), 3u);
}

TEST(NotificationCenter, TakesBackWhatWasAddedForOneNameAndObject) {
  NotificationCenter center;
  Observer observer;
  const auto object = std::make_shared<Object>();
  const auto another = std::make_shared<Object>();
  for (const auto& about : {object, another})
    center.addObserver(&observer, &Observer::hear, u"Resized"_s, about);
  center.removeObserver(&observer, u"Resized"_s, object);
  center.postNotificationName(u"Resized"_s, object);
  EXPECT_TRUE(observer.heard.empty());
  center.postNotificationName(u"Resized"_s, another);
  EXPECT_EQ(observer.heard.size(), 1u);
}

TEST(NotificationCenter, LetsRegistrationsGoWithWhatTheyAreAbout) {
  NotificationCenter center;
  Observer observer;
  auto object = std::make_shared<Object>();
  center.addObserver(&observer, &Observer::hear, u"Resized"_s, object);
  EXPECT_EQ(center.registrationCount(), 1u);
  object.reset();
  EXPECT_EQ(center.registrationCount(), 1u);
  center.addObserver(&observer, &Observer::hear, u"Moved"_s);
  EXPECT_EQ(center.registrationCount(), 1u);
}

#include "NotificationCenterTest.moc"
