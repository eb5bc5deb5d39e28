// Messages by member function and by name.
#include "zqticker/platform/objects/Selector.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class Counter : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE int add(int number, int toNumber) { return number + toNumber; }
  Q_INVOKABLE QString loaderWillReceive(const QString& loader, qint64 ofLength) {
    return loader + QString::number(ofLength);
  }
  Q_INVOKABLE void receive(const QVariant& data, const QVariantMap& context) {
    received = data;
    receivedContext = context;
  }
  Q_INVOKABLE void fail() { throw RangeException(u"too far"_s); }
  Q_INVOKABLE bool isWhole(const QByteArray& bytes) const { return !bytes.isNull(); }

  void receiveTyped(const std::optional<QByteArray>& data, const QVariantMap& context) {
    typed = data;
    receivedContext = context;
  }
  void done() { ++doneCount; }
  int times(int factor) const { return 3 * factor; }

  QVariant received;
  std::optional<QByteArray> typed;
  QVariantMap receivedContext;
  int doneCount = 0;

 private:
  Q_INVOKABLE void hidden() {}
};

class Named : public Object {
  Q_GADGET
  ZQ_OBJECT

 public:
  Q_INVOKABLE QString greet(const QString& name) const { return "Hello "_L1 + name; }
  Ref<Object> me(const Ref<Named>& other) { return other; }
};

class Plain : public WeakReferenced {
 public:
  void hear(const QString& word) { heard = word; }
  QString heard;
};
} // namespace

TEST(Selector, CallsAMemberFunctionOfAQObject) {
  Counter counter;
  Selector(&Counter::receiveTyped).send(&counter, {QByteArray("abc"), QVariantMap{{u"k"_s, 1}}});
  EXPECT_EQ(counter.typed, QByteArray("abc"));
  EXPECT_EQ(counter.receivedContext, (QVariantMap{{u"k"_s, 1}}));
}

TEST(Selector, CallsAMemberFunctionOfAPlainDelegate) {
  Plain plain;
  Selector(&Plain::hear).send(&plain, {u"word"_s});
  EXPECT_EQ(plain.heard, u"word"_s);
}

TEST(Selector, CallsAMemberFunctionOfAReferenceObjectAndReturnsItsResult) {
  const auto named = std::make_shared<Named>();
  const auto other = std::make_shared<Named>();
  EXPECT_EQ(objectOf(Selector(&Named::me).send(named, {any(other)})), other);
}

TEST(Selector, CallsAConstMemberFunction) {
  Counter counter;
  EXPECT_EQ(Selector(&Counter::times).send(&counter, {14}), 42);
}

TEST(Selector, PassesNothingAsNothing) {
  Counter counter;
  counter.typed = QByteArray("before");
  Selector(&Counter::receiveTyped).send(&counter, {QVariant(), QVariantMap()});
  EXPECT_EQ(counter.typed, std::nullopt);
}

TEST(Selector, PassesEmptyBytesAsBytes) {
  Counter counter;
  Selector(&Counter::receiveTyped).send(&counter, {QByteArray(), QVariantMap()});
  EXPECT_EQ(counter.typed, QByteArray());
}

TEST(Selector, LeavesOutArgumentsThatTheMethodDoesNotTake) {
  Counter counter;
  Selector(&Counter::done).send(&counter, {1, 2});
  EXPECT_EQ(counter.doneCount, 1);
}

TEST(Selector, RefusesAnArgumentOfAnotherKind) {
  Counter counter;
  EXPECT_THROW(Selector(&Counter::receiveTyped).send(&counter, {QByteArray(), 7}),
               InvalidArgumentException);
  EXPECT_THROW(Selector("receive").send(&counter, {QByteArray(), 7}), InvalidArgumentException);
}

TEST(Selector, RefusesAnObjectOfAnotherClass) {
  const auto named = std::make_shared<Named>();
  EXPECT_THROW(Selector(&Named::me).send(named, {any(std::make_shared<Object>())}),
               InvalidArgumentException);
}

TEST(Selector, CallsAnInvokableMethodByItsName) {
  Counter counter;
  Selector("receive").send(&counter, {u"text"_s, QVariantMap()});
  EXPECT_EQ(counter.received, u"text"_s);
}

TEST(Selector, CallsAnInvokableMethodByItsOperation) {
  Counter counter;
  EXPECT_EQ(Selector("add:toNumber:").send(&counter, {40, 2}), 42);
}

TEST(Selector, JoinsTheFirstWordsOfAnOperation) {
  Counter counter;
  EXPECT_EQ(Selector("loaderWillReceive:ofLength:").send(&counter, {u"l"_s, qint64(5)}), u"l5"_s);
}

TEST(Selector, TellsOperationsApartByTheirParameters) {
  Counter counter;
  EXPECT_FALSE(Selector("add:fromNumber:").isAnsweredBy(&counter));
  EXPECT_FALSE(Selector("add:").isAnsweredBy(&counter));
  EXPECT_FALSE(Selector("add:toNumber:andMore:").isAnsweredBy(&counter));
}

TEST(Selector, CallsAnInvokableMethodOfAReferenceObject) {
  EXPECT_EQ(Selector("greet:").send(std::make_shared<Named>(), {u"you"_s}), u"Hello you"_s);
}

TEST(Selector, PassesNothingByNameAsADefaultMadeValue) {
  Counter counter;
  counter.received = 1;
  Selector("receive").send(&counter, {QVariant(), QVariantMap()});
  EXPECT_FALSE(counter.received.isValid());
  EXPECT_EQ(Selector("isWhole:").send(&counter, {QVariant()}), false);
}

TEST(Selector, RaisesForANameThatTheReceiverDoesNotKnow) {
  Counter counter;
  try {
    Selector("vanish:").send(&counter, {1});
    FAIL() << "nothing was raised";
  } catch (const UnrecognizedSelectorException& exception) {
    EXPECT_TRUE(exception.reason().endsWith("does not answer vanish:"_L1))
        << exception.reason().toStdString();
  }
}

TEST(Selector, RaisesForAMemberFunctionOfAnotherClass) {
  Counter counter;
  EXPECT_THROW(Selector(&Named::greet).send(&counter, {u"you"_s}), UnrecognizedSelectorException);
}

TEST(Selector, RaisesWhereArgumentsAreMissing) {
  Counter counter;
  EXPECT_THROW(Selector("add:toNumber:").send(&counter, {1}), UnrecognizedSelectorException);
  EXPECT_THROW(Selector(&Counter::times).send(&counter), UnrecognizedSelectorException);
}

TEST(Selector, DoesNotReachPrivateMethods) {
  Counter counter;
  EXPECT_THROW(Selector("hidden").send(&counter), UnrecognizedSelectorException);
}

TEST(Selector, RaisesForANameSentToADelegateWithoutInvokableMethods) {
  Plain plain;
  EXPECT_THROW(Selector("hear:").send(&plain, {u"word"_s}), UnrecognizedSelectorException);
}

TEST(Selector, LetsTheMethodsOwnExceptionPass) {
  Counter counter;
  EXPECT_THROW(Selector("fail").send(&counter), RangeException);
}

TEST(Selector, DoesNothingForATargetThatHasGone) {
  auto counter = std::make_unique<Counter>();
  auto plain = std::make_unique<Plain>();
  auto named = std::make_shared<Named>();
  const Target first = counter.get();
  const Target second = plain.get();
  const Target third = named;
  counter.reset();
  plain.reset();
  named.reset();
  EXPECT_EQ(Selector("add:toNumber:").send(first, {1, 2}), QVariant());
  EXPECT_EQ(Selector(&Plain::hear).send(second, {u"word"_s}), QVariant());
  EXPECT_EQ(Selector("greet:").send(third, {u"you"_s}), QVariant());
}

TEST(Selector, DoesNothingWithoutANameOrATarget) {
  Counter counter;
  EXPECT_EQ(Selector().send(&counter, {1}), QVariant());
  EXPECT_EQ(Selector("add:toNumber:").send(Target(), {1, 2}), QVariant());
  EXPECT_FALSE(Selector().isAnsweredBy(&counter));
  EXPECT_FALSE(Selector("add:toNumber:").isAnsweredBy(Target()));
}

TEST(Target, DoesNotOwnAReferenceObject) {
  auto named = std::make_shared<Named>();
  const std::weak_ptr<Named> weak = named;
  const Target target = named;
  EXPECT_TRUE(target);
  named.reset();
  EXPECT_TRUE(weak.expired());
  EXPECT_FALSE(target);
}

TEST(Target, IsEqualToAnotherWithTheSameReceiver) {
  Counter a;
  Counter b;
  EXPECT_EQ(Target(&a), Target(&a));
  EXPECT_FALSE(Target(&a) == Target(&b));
  EXPECT_EQ(Target(), Target(static_cast<Counter*>(nullptr)));
}

#include "SelectorTest.moc"
