#include "tests/app/messages/Samples.h"

#include "app/intake/MessageIntake.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"
#include "zqticker/signs/message_keys.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;
using zq::testing::expectLog;

namespace {
const QString Connection = u":1.7"_s;

class MessageIntakeTest : public ::testing::Test {
 protected:
  struct Shown {
    Ref<ZQTickerSign> sign;
    SignOrigin origin;
    MessageIntake::Order order;
  };

  MessageIntake::Host host() {
    MessageIntake::Host host;
    host.style = [] { return style(); };
    host.show = [this](const Ref<ZQTickerSign>& sign, const SignOrigin& origin,
                       MessageIntake::Order order) {
      shown_.push_back({sign, origin, order});
      return sign->identifier().value_or(u"made"_s);
    };
    host.time = [this] { return time_; };
    return host;
  }

  // What comes in is decoded and shown at once.
  QString takeMessage(const QVariantMap& dictionary, const QString& connection) {
    return intake_.takeMessage(dictionary, connection).show();
  }
  QString takeSign(const QByteArray& archive, const QVariantMap& origin,
                   const QString& connection) {
    return intake_.takeSign(archive, origin, connection).show();
  }

  QString limitOf(const QVariantMap& dictionary, const QString& connection = Connection) {
    return errorOf<LimitError>([&] { takeMessage(dictionary, connection); });
  }

  static QVariantMap textFrom(const QString& sender, const QString& identifier = QString()) {
    return {{u"text"_s, u"Hello"_s}, {u"senderID"_s, sender}, {u"identifier"_s, identifier}};
  }

  double time_ = 100;
  std::vector<Shown> shown_;
  MessageIntake intake_{host()};
};

constexpr int Burst = int(OneSender.messages.burst);
} // namespace

TEST_F(MessageIntakeTest, ShowsAMessageAndReturnsItsIdentifier) {
  EXPECT_EQ(takeMessage(textFrom(u"news"_s, u"headline"_s), Connection), u"headline"_s);
  EXPECT_EQ(takeMessage(textFrom(u"news"_s), Connection), u"made"_s);
  ASSERT_EQ(shown_.size(), 2u);
  EXPECT_EQ(shown_[0].sign->description(), u"Hello"_s);
  EXPECT_EQ(shown_[0].origin.senderIdentifier, u"news"_s);
  EXPECT_EQ(shown_[0].order, MessageIntake::Order::Free);
}

TEST_F(MessageIntakeTest, ShowsASignByCopyWithItsOrigin) {
  const auto sign = ZQComboTickerSign::make(u"Hello"_s, Image::fromQImage(solid(16, 12)));
  sign->setIdentifier(u"headline"_s);
  const QVariantMap origin{{u"senderID"_s, u"news"_s}, {u"priority"_s, 3}, {u"arranged"_s, true}};
  EXPECT_EQ(takeSign(archived(Ref<ZQTickerSign>(sign)), origin, Connection), u"headline"_s);
  ASSERT_EQ(shown_.size(), 1u);
  EXPECT_EQ(shown_[0].sign->className(), u"ZQComboTickerSign"_s);
  EXPECT_EQ(shown_[0].origin.priority, 3);
  EXPECT_EQ(shown_[0].order, MessageIntake::Order::Arranged);
  takeSign(archived(Ref<ZQTickerSign>(sign)), {}, Connection);
  EXPECT_EQ(shown_[1].order, MessageIntake::Order::Free);
}

TEST_F(MessageIntakeTest, TakesAnEmptyIdentifierForNone) {
  const auto sign = ZQComboTickerSign::make(u"Hello"_s, nullptr);
  sign->setIdentifier(u""_s);
  EXPECT_EQ(takeSign(archived(Ref<ZQTickerSign>(sign)), {}, Connection), u"made"_s);
  EXPECT_EQ(takeMessage(textFrom(u"news"_s, u""_s), Connection), u"made"_s);
}

TEST_F(MessageIntakeTest, ShowsNothingOfWhatItRefuses) {
  EXPECT_THROW(takeMessage({{u"text"_s, 1}}, Connection), MessageError);
  EXPECT_THROW(takeSign("no archive", {}, Connection), SignError);
  const QByteArray sign = archived(Ref<ZQTickerSign>(ZQTextTickerSign::make(u"Hello"_s)));
  EXPECT_THROW(takeSign(sign, {{u"priority"_s, u"high"_s}}, Connection), MessageError);
  EXPECT_THROW(takeSign(sign, {{u"arranged"_s, u"yes"_s}}, Connection), MessageError);
  EXPECT_TRUE(shown_.empty());
}

TEST_F(MessageIntakeTest, RefusesAFloodWithoutDecoding) {
  for (int i = 0; i < Burst; ++i)
    EXPECT_EQ(limitOf(textFrom(u"news"_s, u"one"_s)), QString());
  expectLog(u"messages refused from news: more than 50 messages a second from one sender"_s);
  // What is wrong with it is not looked at any more.
  QVariantMap wrong = textFrom(u"news"_s);
  wrong.insert(u"loopCount"_s, u"many"_s);
  for (int i = 0; i < 10'000; ++i)
    ASSERT_EQ(limitOf(wrong), u"more than 50 messages a second from one sender"_s);
  EXPECT_EQ(shown_.size(), std::size_t(Burst));
  EXPECT_EQ(limitOf(textFrom(u"weather"_s), u":1.8"_s), QString()) << "others come through";
  time_ += 1;
  EXPECT_EQ(limitOf(textFrom(u"news"_s)), QString()) << "a sender that rests may go on";
  time_ += FloodLog::QuietTime;
  expectLog(u"messages refused from news: 10000 in all"_s);
  intake_.reportRefusals();
}

TEST_F(MessageIntakeTest, RefusesAMessageOfMoreThanTheLargestSize) {
  expectLog(u"messages refused from news: a message of more than 20 MiB"_s);
  QVariantMap large = textFrom(u"news"_s);
  large.insert(u"image"_s, QByteArray(50 << 20, 'x'));
  EXPECT_EQ(limitOf(large), u"a message of more than 20 MiB"_s);
  QVariantMap unknown = textFrom(u"news"_s);
  unknown.insert(u"else"_s, QByteArray(50 << 20, 'x'));
  EXPECT_EQ(limitOf(unknown), u"a message of more than 20 MiB"_s);
  EXPECT_THROW(takeSign(QByteArray(21 << 20, 'x'), {{u"senderID"_s, u"news"_s}}, Connection),
               LimitError);
  EXPECT_TRUE(shown_.empty());
}

TEST_F(MessageIntakeTest, LimitsTheShareOfOneSenderInTheQueue) {
  int taken = 0;
  for (; taken < int(OneSender.signCount); ++taken) {
    time_ += 1;
    ASSERT_EQ(limitOf(textFrom(u"news"_s, QString::number(taken))), QString());
  }
  time_ += 1;
  expectLog(u"messages refused from news: 500 signs of one sender are queued already"_s);
  EXPECT_EQ(limitOf(textFrom(u"news"_s)), u"500 signs of one sender are queued already"_s);
  EXPECT_EQ(limitOf(textFrom(u"news"_s, u"7"_s)), QString())
      << "a sign that takes over from another one needs no further place";
  const auto sign = ZQTextTickerSign::make(u"Hello"_s);
  EXPECT_THROW(
      takeSign(archived(Ref<ZQTickerSign>(sign)), {{u"senderID"_s, u"news"_s}}, Connection),
      LimitError);
  sign->setIdentifier(u"7"_s);
  EXPECT_EQ(takeSign(archived(Ref<ZQTickerSign>(sign)), {{u"senderID"_s, u"news"_s}}, Connection),
            u"7"_s);
  EXPECT_EQ(limitOf(textFrom(u"weather"_s)), QString()) << "others have their own share";
  shown_.erase(shown_.begin(), shown_.begin() + 10);
  EXPECT_EQ(limitOf(textFrom(u"news"_s)), QString()) << "signs that are gone leave their places";
}

TEST_F(MessageIntakeTest, LimitsWhatOneConnectionQueuesUnderManyNames) {
  for (int i = 0; i < int(OneConnection.signCount); ++i) {
    time_ += 1;
    ASSERT_EQ(limitOf(textFrom(QString::number(i))), QString());
  }
  expectLog(u"messages refused from :1.7: 1000 signs of one program are queued already"_s);
  EXPECT_EQ(limitOf(textFrom(u"another"_s)), u"1000 signs of one program are queued already"_s);
}

TEST_F(MessageIntakeTest, LimitsTheMemoryOfTheQueuedSigns) {
  // 64 MB each once they are decoded, and a few kilobytes on the way.
  QVariantMap picture = textFrom(u"news"_s);
  picture.insert(u"image"_s, png(4000, 4000));
  for (int i = 0; i < 2; ++i) {
    time_ += 100;
    EXPECT_EQ(limitOf(picture), QString());
  }
  time_ += 100;
  expectLog(u"messages refused from news: the signs of one sender that are queued take 122 MiB"_s);
  EXPECT_EQ(limitOf(picture), u"the signs of one sender that are queued take 122 MiB"_s);
  EXPECT_EQ(limitOf(textFrom(u"news"_s)), QString()) << "small ones find room";
}

TEST_F(MessageIntakeTest, LimitsWhatOneSenderLetsItDecode) {
  QVariantMap picture = textFrom(u"news"_s, u"one"_s);
  picture.insert(u"image"_s, png(4000, 4000));
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(limitOf(picture), QString());
  expectLog(u"messages refused from news: more than 8 million pixels a second to decode"_s);
  const QString complaint = u"more than 8 million pixels a second to decode from one sender"_s;
  picture.insert(u"text"_s, QString(1'000'000, u'x'));
  EXPECT_EQ(limitOf(picture), complaint) << "a long text counts as well";
  EXPECT_EQ(shown_.size(), 3u);
  shown_.clear();
  EXPECT_EQ(limitOf(textFrom(u"news"_s)), QString());
  time_ += 9;
  const auto sign =
      archived(Ref<ZQTickerSign>(ZQImageTickerSign::make(Image::fromQImage(solid(4000, 4000)))));
  const auto take = [&] { takeSign(sign, {{u"senderID"_s, u"news"_s}}, Connection); };
  QString refused;
  int taken = 0;
  for (; refused.isEmpty() && taken < 10; ++taken) {
    refused = errorOf<LimitError>(take);
    shown_.clear();
  }
  EXPECT_EQ(refused, complaint) << "signs are counted like messages";
  EXPECT_EQ(taken, 4);
}

TEST_F(MessageIntakeTest, ShowsAPictureOfAMessageThatAnotherThreadDecodes) {
  const ArrivingSign arriving = intake_.takeMessage(
      {{u"image"_s, png(1000, 400)}, {u"identifier"_s, u"large"_s}}, Connection);
  EXPECT_TRUE(shown_.empty());
  ASSERT_TRUE(arriving.decode);
  std::thread(arriving.decode).join();
  EXPECT_TRUE(shown_.empty()) << "decoding shows nothing";
  EXPECT_EQ(arriving.show(), u"large"_s);
  ASSERT_EQ(shown_.size(), 1u);
  const auto sign = std::dynamic_pointer_cast<ZQImageTickerSign>(shown_[0].sign);
  ASSERT_TRUE(sign);
  EXPECT_EQ(sign->image()->representations().front()->bitmap(), solid(1000, 400));
}

TEST_F(MessageIntakeTest, ShowsASignWhosePictureAnotherThreadDecodes) {
  const auto sign = ZQComboTickerSign::make(u"Hello"_s, Image::fromQImage(solid(2000, 1000)));
  const ArrivingSign arriving =
      intake_.takeSign(archived(Ref<ZQTickerSign>(sign)), {{u"arranged"_s, true}}, Connection);
  ASSERT_TRUE(arriving.decode);
  std::thread(arriving.decode).join();
  EXPECT_EQ(arriving.show(), u"made"_s);
  ASSERT_EQ(shown_.size(), 1u);
  EXPECT_EQ(shown_[0].order, MessageIntake::Order::Arranged);
  const auto arrived = std::dynamic_pointer_cast<ZQComboTickerSign>(shown_[0].sign);
  ASSERT_TRUE(arrived);
  EXPECT_EQ(arrived->image()->representations().front()->bitmap(), solid(2000, 1000));
}

TEST_F(MessageIntakeTest, LeavesNothingToDecodeOfTextsAndSmallPictures) {
  EXPECT_FALSE(intake_.takeMessage(textFrom(u"news"_s), Connection).decode);
  EXPECT_FALSE(intake_.takeMessage({{u"image"_s, png(300, 400)}}, Connection).decode);
  const auto sign = ZQImageTickerSign::make(Image::fromQImage(solid(300, 400)));
  EXPECT_FALSE(intake_.takeSign(archived(Ref<ZQTickerSign>(sign)), {}, Connection).decode);
}

TEST_F(MessageIntakeTest, RefusesADamagedPictureWhenItIsShown) {
  QByteArray damaged = png(1000, 400);
  damaged[damaged.size() / 2] = char(damaged[damaged.size() / 2] ^ 0x55);
  const ArrivingSign arriving = intake_.takeMessage({{u"image"_s, damaged}}, Connection);
  ASSERT_TRUE(arriving.decode);
  std::thread(arriving.decode).join();
  EXPECT_EQ(errorOf<MessageError>(arriving.show), u"image: the picture cannot be decoded"_s);
  EXPECT_TRUE(shown_.empty());
}

TEST_F(MessageIntakeTest, RefusesTooMuchDecodingBeforeAnyThreadBegins) {
  QVariantMap picture = textFrom(u"news"_s, u"one"_s);
  picture.insert(u"image"_s, png(4000, 4000));
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(intake_.takeMessage(picture, Connection).decode);
  expectLog(u"messages refused from news: more than 8 million pixels a second to decode"_s);
  EXPECT_THROW(intake_.takeMessage(picture, Connection), LimitError);
}

TEST_F(MessageIntakeTest, CountsCallsThatShowNothing) {
  const auto call = [this] { intake_.admitCall(100, Connection); };
  for (int i = 0; i < Burst; ++i)
    EXPECT_EQ(errorOf<LimitError>(call), QString());
  expectLog(u"messages refused from :1.7: more than"_s);
  EXPECT_NE(errorOf<LimitError>(call), QString());
}
