// Messages to the main thread, sent by other threads while its event loop turns.
#include "zqticker/watching/VXMainThreadProxy.h"

#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QObject>

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class Label : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE QString setText(const QString& newText) {
    wasOnMainThread = isMainThread();
    ++calls;
    text = newText;
    return u"was set"_s;
  }
  Q_INVOKABLE QString currentText() {
    ++calls;
    return text;
  }
  Q_INVOKABLE int add(int number, int toNumber) {
    ++calls;
    return number + toNumber;
  }
  Q_INVOKABLE void fail() { throw RangeException(u"too far"_s); }
  // What the proxy answers itself must not come here.
  Q_INVOKABLE QString description() {
    ++calls;
    return u"label"_s;
  }

  QString text;
  bool wasOnMainThread = false;
  int calls = 0;
};

class Number : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  explicit Number(int number) : value(number) {}
  Q_INVOKABLE int doubled() const { return 2 * value; }
  Ref<Number> plus(const Ref<Number>& other) {
    return std::make_shared<Number>(value + other->value);
  }
  int value;
};

class Listener : public WeakReferenced {
 public:
  virtual void hear(Listener& sender, const QString& word) {
    wasOnMainThread = isMainThread();
    heard = word;
    lastSender = &sender;
  }
  std::unique_ptr<int> take(std::unique_ptr<int> number) const { return number; }
  QString heard;
  Listener* lastSender = nullptr;
  bool wasOnMainThread = false;
};

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

// The reason of what `work` raises; empty when it is no UnrecognizedSelectorException.
QString unrecognized(const std::function<void()>& work) {
  try {
    work();
  } catch (const UnrecognizedSelectorException& exception) {
    return exception.reason();
  }
  return QString();
}
} // namespace

TEST(VXMainThreadProxy, DeliversAMessageByNameOnTheMainThreadAndGivesItsResultBack) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  runOnThread([&] {
    EXPECT_EQ(proxy->send("setText", {u"hello"_s}), Any(u"was set"_s));
    // The message has been handled when the call returns.
    EXPECT_EQ(label.text, u"hello"_s);
    EXPECT_TRUE(label.wasOnMainThread);
    EXPECT_EQ(proxy->send("setText:", {u"again"_s}), Any(u"was set"_s));
    EXPECT_EQ(proxy->send("add:toNumber:", {2, 3}), Any(5));
  });
}

TEST(VXMainThreadProxy, DeliversAMessageByMemberFunctionFromAnotherThread) {
  const auto number = std::make_shared<Number>(3);
  const auto proxy = mainThreadProxy(number);
  runOnThread([&] {
    const Any sum = proxy->send(&Number::plus, {any(std::make_shared<Number>(4))});
    ASSERT_TRUE(objectOf<Number>(sum));
    EXPECT_EQ(objectOf<Number>(sum)->value, 7);
    EXPECT_EQ(proxy->send("doubled"), Any(6));
  });
}

TEST(VXMainThreadProxy, CallsATypedMemberFunctionFromAnotherThread) {
  Listener listener;
  const auto proxy = mainThreadProxy(&listener);
  runOnThread([&] {
    proxy->call(&Listener::hear, listener, u"news"_s);
    EXPECT_TRUE(listener.wasOnMainThread);
    EXPECT_EQ(listener.heard, u"news"_s);
    // A parameter to write through is the sender's own object.
    EXPECT_EQ(listener.lastSender, &listener);
    EXPECT_EQ(*proxy->call(&Listener::take, std::make_unique<int>(5)), 5);
  });
}

TEST(VXMainThreadProxy, GivesExceptionsOfTheTargetBackToTheSendingThread) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  runOnThread([&] {
    EXPECT_THROW(proxy->send("fail"), RangeException);
    EXPECT_THROW(proxy->call(&Label::fail), RangeException);
    EXPECT_THROW(proxy->performSelector("fail"), RangeException);
  });
}

TEST(VXMainThreadProxy, DeliversAtOnceOnTheMainThread) {
  Label label;
  label.text = u"a"_s;
  EXPECT_EQ(mainThreadProxy(&label)->send("currentText"), Any(u"a"_s));
  EXPECT_EQ(mainThreadProxy(&label)->call(&Label::add, 1, 2), 3);
}

TEST(VXMainThreadProxy, PerformsASelectorFromAnotherThreadWithoutItsResult) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  runOnThread([&] {
    EXPECT_FALSE(proxy->performSelector("setText:", u"x"_s).isValid());
    EXPECT_TRUE(label.wasOnMainThread);
    EXPECT_EQ(label.text, u"x"_s);
    EXPECT_FALSE(proxy->performSelector("currentText").isValid());
    EXPECT_EQ(label.calls, 2);
    // The same method as an ordinary message.
    EXPECT_EQ(proxy->send("currentText"), Any(u"x"_s));
  });
}

// No loop turns here: whatever went to the main thread would hang.
TEST(VXMainThreadProxy, AnswersItsOwnOperationsOnTheCallingThread) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  std::thread([&] {
    EXPECT_EQ(proxy->send("respondsToSelector:", {u"setText:"_s}), Any(true));
    EXPECT_EQ(proxy->performSelector("respondsToSelector:", u"fly"_s), Any(false));
    EXPECT_EQ(proxy->performSelector("respondsToSelector", u"respondsToSelector:"_s), Any(true));
    EXPECT_EQ(objectOf(proxy->send("mainThreadProxy")), proxy);
    EXPECT_EQ(objectOf(proxy->performSelector("copyMainThreadProxy")), proxy);
    EXPECT_EQ(objectOf(proxy->performSelector(&VXMainThreadProxy::mainThreadProxy)), proxy);
    EXPECT_EQ(proxy->performSelector("description"), Any(proxy->description()));
    EXPECT_EQ(proxy->send("className"), Any(u"VXMainThreadProxy"_s));
    EXPECT_EQ(proxy->send("isEqual:", {any(proxy)}), Any(true));
    EXPECT_EQ(proxy->send("performSelector:", {u"className"_s}), Any(u"VXMainThreadProxy"_s));
    EXPECT_EQ(proxy->send("performSelector:withObject:", {u"respondsToSelector:"_s, u"fly"_s}),
              Any(false));
  }).join();
  EXPECT_EQ(label.calls, 0);
}

TEST(VXMainThreadProxy, RespondsToWhatItselfOrItsTargetAnswers) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  EXPECT_TRUE(proxy->respondsToSelector("setText:"));
  EXPECT_TRUE(proxy->respondsToSelector("setText"));
  EXPECT_TRUE(proxy->respondsToSelector(&Label::setText));
  EXPECT_TRUE(proxy->respondsToSelector("performSelector:withObject:"));
  EXPECT_TRUE(proxy->respondsToSelector(&VXMainThreadProxy::copyMainThreadProxy));
  EXPECT_FALSE(proxy->respondsToSelector("fly"));
  EXPECT_FALSE(proxy->respondsToSelector(&Number::doubled));
  EXPECT_FALSE(proxy->respondsToSelector(Selector()));
}

// No loop turns here either: the sending thread raises by itself.
TEST(VXMainThreadProxy, RaisesOnTheSendingThreadForAnUnknownMessageAndNamesItself) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  const QString named = proxy->description();
  std::thread([&] {
    EXPECT_EQ(unrecognized([&] { proxy->send("fly:", {1}); }), named + " does not answer fly:"_L1);
    EXPECT_EQ(unrecognized([&] { proxy->performSelector("fly"); }),
              named + " does not answer fly"_L1);
    EXPECT_EQ(unrecognized([&] { proxy->performSelector("fly:", 1); }),
              named + " does not answer fly:"_L1);
    EXPECT_TRUE(unrecognized([&] { proxy->send(&Number::doubled); }).startsWith(named));
    // A method that takes more than is sent.
    EXPECT_TRUE(unrecognized([&] { proxy->performSelector("setText:"); }).startsWith(named));
  }).join();
  EXPECT_EQ(label.calls, 0);
}

TEST(VXMainThreadProxy, RaisesOnTheSendingThreadForATypedCallToAnotherClass) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  runOnThread([&] {
    EXPECT_TRUE(
        unrecognized([&] { proxy->call(&Number::doubled); }).startsWith(proxy->description()));
  });
}

TEST(VXMainThreadProxy, RefusesMessagesOfAThreadOnceTheMainLoopHasQuit) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  EXPECT_TRUE(QMetaObject::invokeMethod(qApp, "aboutToQuit", Qt::DirectConnection));
  std::thread([&] {
    EXPECT_THROW(proxy->send("currentText"), MainThreadEndedException);
    EXPECT_THROW(proxy->performSelector("currentText"), MainThreadEndedException);
    EXPECT_THROW(proxy->call(&Label::currentText), MainThreadEndedException);
    // What needs no main thread is answered as before.
    EXPECT_EQ(proxy->send("respondsToSelector:", {u"currentText"_s}), Any(true));
    EXPECT_FALSE(unrecognized([&] { proxy->send("fly"); }).isEmpty());
  }).join();
  EXPECT_EQ(label.calls, 0);
  zq::testing::runPostedEvents();
}

TEST(VXMainThreadProxy, OfNothingAnswersItsOwnOperationsOnly) {
  const auto proxy = VXMainThreadProxy::make(nullptr);
  EXPECT_THROW(proxy->send("setText", {u"x"_s}), UnrecognizedSelectorException);
  EXPECT_THROW(proxy->call(&Label::currentText), UnrecognizedSelectorException);
  EXPECT_TRUE(proxy->respondsToSelector("mainThreadProxy"));
  EXPECT_FALSE(proxy->respondsToSelector("setText"));
}

TEST(VXMainThreadProxy, DoesNotOwnItsTargetNorCallOneThatHasGone) {
  auto number = std::make_shared<Number>(3);
  const auto proxy = mainThreadProxy(number);
  EXPECT_EQ(number.use_count(), 1);
  number.reset();
  EXPECT_FALSE(proxy->send("doubled").isValid());
  EXPECT_EQ(proxy->call(&Number::doubled), 0);
  EXPECT_FALSE(proxy->respondsToSelector("doubled"));
}

TEST(VXMainThreadProxy, KeepsTargetAndArgumentsWhileAThreadSends) {
  class Keeper : public Object {
   public:
    int keep(const Ref<Number>& argument) {
      (*forgetAll)();
      return argument->value + value;
    }
    int value = 1;
    const std::function<void()>* forgetAll = nullptr;
  };
  auto keeper = std::make_shared<Keeper>();
  auto number = std::make_shared<Number>(41);
  const std::function<void()> forgetAll = [&] {
    keeper.reset();
    number.reset();
  };
  keeper->forgetAll = &forgetAll;
  const auto proxy = mainThreadProxy(keeper);
  runOnThread([&] { EXPECT_EQ(proxy->call(&Keeper::keep, number), 42); });
}

TEST(mainThreadProxy, OfAProxyIsThatProxy) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  EXPECT_EQ(mainThreadProxy(proxy), proxy);
  EXPECT_EQ(copyMainThreadProxy(proxy), proxy);
  EXPECT_EQ(mainThreadProxy(Ref<Object>(proxy)), proxy);
  EXPECT_EQ(mainThreadProxy(proxy.get()), proxy);
  EXPECT_EQ(proxy->mainThreadProxy(), proxy);
  EXPECT_EQ(proxy->copyMainThreadProxy(), proxy);
}

TEST(mainThreadProxy, OfNothingIsNothingAndOtherwiseANewOneEachTime) {
  EXPECT_FALSE(mainThreadProxy(static_cast<Label*>(nullptr)));
  EXPECT_FALSE(mainThreadProxy(Ref<Number>()));
  Label label;
  EXPECT_NE(mainThreadProxy(&label), mainThreadProxy(&label));
}

TEST(VXMainThreadProxy, ServesSeveralThreadsAtOnce) {
  Label label;
  const auto proxy = mainThreadProxy(&label);
  std::atomic<int> ended = 0;
  const auto work = [&] {
    // Numbers: the thread sanitizer does not see Qt count the references to a text that is kept.
    for (int i = 0; i < 100; ++i)
      EXPECT_EQ(proxy->send("add", {i, 1}), Any(i + 1));
    ++ended;
  };
  std::thread first(work);
  std::thread second(work);
  EXPECT_TRUE(zq::testing::waitFor([&] { return ended == 2; }));
  first.join();
  second.join();
  EXPECT_EQ(label.calls, 200);
}

#include "VXMainThreadProxyTest.moc"
