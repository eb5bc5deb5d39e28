#include "tests/app/messages/Samples.h"

#include "app/intake/LineSplitter.h"
#include "app/intake/message_pictures.h"
#include "app/services/picture_decoding.h"
#include "zqticker/signs/message_keys.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
QVariantMap message(const QString& key = QString(), const QVariant& value = QVariant()) {
  QVariantMap dictionary{{u"text"_s, u"Hello"_s}};
  if (!key.isEmpty())
    dictionary.insert(key, value);
  return dictionary;
}

DisplayMessage readWith(const QVariantMap& dictionary) {
  return readMessage(dictionary, style());
}

QString complaintOf(const QVariantMap& dictionary) {
  return errorOf<MessageError>([&] { readWith(dictionary); });
}

Ref<AttributedString> styledText(const QString& text) {
  return AttributedString::make(
      text, {{FontAttributeName, any(Font::fontWithName(u"DejaVu Serif"_s, 20))}});
}
} // namespace

TEST(DisplayMessage, TurnsATextIntoATextSignOfTheDefaultLook) {
  const MessageStyle look = style();
  const auto sign = std::dynamic_pointer_cast<ZQTextTickerSign>(
      readMessage({{ZQTickerMessageTextKey, u"Hello"_s}}, look).sign);
  ASSERT_TRUE(sign);
  EXPECT_EQ(sign->text()->string(), u"Hello"_s);
  EXPECT_EQ(objectOf(sign->text()->attributeAtIndex(FontAttributeName, 0)), look.font);
  EXPECT_EQ(objectOf(sign->text()->attributeAtIndex(ForegroundColorAttributeName, 0)), look.color);
  EXPECT_FALSE(sign->identifier());
  EXPECT_FALSE(sign->actionString());
}

TEST(DisplayMessage, TurnsAPictureIntoAnImageSign) {
  for (const QByteArray& data : {png(), tiff()}) {
    const auto sign = readWith({{ZQTickerMessageImageKey, data}}).sign;
    ASSERT_EQ(sign->className(), u"ZQImageTickerSign"_s);
    EXPECT_EQ(sign->size(), QSizeF(16, 12));
  }
}

TEST(DisplayMessage, TurnsTextAndPictureIntoAComboSignThatFollowsTheDisplay) {
  const auto sign = std::dynamic_pointer_cast<ZQComboTickerSign>(
      readWith({{ZQTickerMessageImageKey, png()}, {ZQTickerMessageTextKey, u"Hello"_s}}).sign);
  ASSERT_TRUE(sign);
  EXPECT_EQ(sign->text(), Any(u"Hello"_s)) << "a plain text takes the display's font later on";
  EXPECT_EQ(sign->image()->size(), QSizeF(16, 12));
}

TEST(DisplayMessage, TakesAnArchivedAttributedString) {
  const QByteArray archive = archived(styledText(u"Hello"_s));
  const auto text =
      std::dynamic_pointer_cast<ZQTextTickerSign>(readWith({{u"text"_s, archive}}).sign);
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->text()->isEqual(*styledText(u"Hello"_s)));
  const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(
      readWith({{u"text"_s, archive}, {u"image"_s, png()}}).sign);
  ASSERT_TRUE(combo);
  EXPECT_TRUE(objectOf(combo->text())->isEqual(*styledText(u"Hello"_s)));
}

TEST(DisplayMessage, ReadsTheFieldsOfTheSign) {
  QVariantMap dictionary = message();
  dictionary.insert(ZQTickerMessageIdentifierKey, u"weather"_s);
  dictionary.insert(ZQTickerMessageLoopCountKey, 3);
  dictionary.insert(ZQTickerMessageLoopDelayKey, 1.5);
  dictionary.insert(ZQTickerMessageScrollDirectionKey, 7);
  dictionary.insert(ZQTickerMessageContinuousScrollingKey, true);
  dictionary.insert(ZQTickerMessageActionTypeKey, 42);
  dictionary.insert(ZQTickerMessageActionStringKey, u"https://example.org/"_s);
  for (const bool withImage : {false, true}) {
    if (withImage)
      dictionary.insert(ZQTickerMessageImageKey, png());
    const auto sign = readWith(dictionary).sign;
    EXPECT_EQ(sign->identifier(), u"weather"_s);
    EXPECT_EQ(sign->loopCount(), 3);
    EXPECT_EQ(sign->loopDelay(), 1.5);
    EXPECT_EQ(sign->scrollDirection(), 7);
    EXPECT_TRUE(sign->continuousScrolling());
    EXPECT_EQ(sign->actionType(), 42);
    EXPECT_EQ(sign->actionString(), u"https://example.org/"_s);
  }
}

TEST(DisplayMessage, ReadsTheOrigin) {
  QVariantMap dictionary = message();
  dictionary.insert(ZQTickerMessageSenderIdentifierKey, u"org.example.weather"_s);
  dictionary.insert(ZQTickerMessageSenderNameKey, u" Weather\nstation "_s);
  dictionary.insert(ZQTickerMessagePriorityKey, -2.5);
  dictionary.insert(ZQTickerMessageFadeInOutTypeKey, 2);
  dictionary.insert(ZQTickerMessageActionDataKey, QVariantMap{{u"a"_s, QByteArray("b")}});
  const SignOrigin origin = readWith(dictionary).origin;
  EXPECT_EQ(origin.senderIdentifier, u"org.example.weather"_s);
  EXPECT_EQ(origin.senderName, u"Weather station"_s);
  EXPECT_EQ(origin.priority, -2.5);
  EXPECT_TRUE(origin.fades);
  EXPECT_EQ(origin.actionData, QVariant(QVariantMap{{u"a"_s, QByteArray("b")}}));
  EXPECT_EQ(readOrigin(dictionary).senderName, u"Weather station"_s);
}

TEST(DisplayMessage, HasDefaultsForWhatIsMissing) {
  const DisplayMessage read = readWith(message());
  EXPECT_EQ(read.sign->loopCount(), 0);
  EXPECT_EQ(read.sign->loopDelay(), 0);
  EXPECT_FALSE(read.sign->continuousScrolling());
  EXPECT_EQ(read.sign->actionType(), 0);
  EXPECT_EQ(read.origin.senderIdentifier, QString());
  EXPECT_EQ(read.origin.senderName, QString());
  EXPECT_EQ(read.origin.priority, 0);
  EXPECT_FALSE(read.origin.fades);
  EXPECT_FALSE(read.origin.actionData.isValid());
}

TEST(DisplayMessage, KnowsTheMisspeltKeyAndNotTheRightOne) {
  EXPECT_TRUE(readWith(message(u"continuousScroling"_s, true)).sign->continuousScrolling());
  EXPECT_FALSE(readWith(message(u"continuousScrolling"_s, true)).sign->continuousScrolling());
}

TEST(DisplayMessage, PassesOverUnknownKeys) {
  QVariantMap dictionary = message(u"loopcount"_s, u"many"_s);
  dictionary.insert(u""_s, 1);
  dictionary.insert(u"senderid"_s, 1);
  EXPECT_EQ(complaintOf(dictionary), QString());
}

TEST(DisplayMessage, RefusesWhatShowsNothing) {
  EXPECT_EQ(complaintOf({}), u"text: missing, and no image either"_s);
  EXPECT_EQ(complaintOf({{u"priority"_s, 1}}), u"text: missing, and no image either"_s);
  for (const QString& text : {u""_s, u" \t "_s, u"\x1b[31m\x1b[0m"_s, u"\x01"_s})
    EXPECT_EQ(complaintOf({{u"text"_s, text}}),
              u"text: nothing to show in it, and no image either"_s);
  EXPECT_EQ(complaintOf({{u"text"_s, archived(styledText(u""_s))}}),
            u"text: nothing to show in it"_s);
  EXPECT_EQ(readWith({{u"text"_s, u""_s}, {u"image"_s, png()}}).sign->className(),
            u"ZQImageTickerSign"_s);
}

TEST(DisplayMessage, MakesTextsShowable) {
  EXPECT_EQ(readWith({{u"text"_s, u"one\ntwo\tthree\x1b[1m!\x07 "_s}}).sign->description(),
            u"one two three!"_s);
}

TEST(DisplayMessage, LimitsStrings) {
  const struct {
    QString key;
    qsizetype longest;
    QString complaint;
  } cases[] = {
      {u"text"_s, LongestLine, u"text: longer than 1,000,000 characters"_s},
      {u"identifier"_s, LongestIdentifier, u"identifier: longer than 1,000 characters"_s},
      {u"senderID"_s, LongestIdentifier, u"senderID: longer than 1,000 characters"_s},
      {u"senderName"_s, LongestSenderName, u"senderName: longer than 200 characters"_s},
      {u"actionString"_s, LongestActionString, u"actionString: longer than 32,768 characters"_s},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(complaintOf(message(example.key, QString(example.longest, u'x'))), QString());
    EXPECT_EQ(complaintOf(message(example.key, QString(example.longest + 1, u'x'))),
              example.complaint);
  }
}

TEST(DisplayMessage, TakesAnEmptyIdentifierAsNone) {
  EXPECT_FALSE(readWith(message(u"identifier"_s, u""_s)).sign->identifier());
}

TEST(DisplayMessage, RefusesEveryWrongTypeWithTheKey) {
  const QVariant string = u"1"_s;
  const QVariant bytes = QByteArray("1");
  const QVariant list = QVariantList{1};
  const QVariant map = QVariantMap{{u"1"_s, 1}};
  const QVariant flag = true;
  const QVariant number = 1;
  const QVariant real = 1.5;
  const struct {
    QString key;
    QVariantList wrong;
    QString complaint;
  } cases[] = {
      {u"senderID"_s, {bytes, list, map, flag, number, real}, u"must be a string"_s},
      {u"senderName"_s, {bytes, list, map, flag, number, real}, u"must be a string"_s},
      {u"identifier"_s, {bytes, list, map, flag, number, real}, u"must be a string"_s},
      {u"actionString"_s, {bytes, list, map, flag, number, real}, u"must be a string"_s},
      {u"text"_s,
       {list, map, flag, number, real},
       u"must be a string or the bytes of an archived attributed string"_s},
      {u"image"_s,
       {string, list, map, flag, number, real},
       u"must be the bytes of a TIFF or PNG file"_s},
      {u"priority"_s, {string, bytes, list, map, flag}, u"must be a number"_s},
      {u"fadeInOutType"_s, {string, bytes, list, map, flag}, u"must be a number"_s},
      {u"loopDelay"_s, {string, bytes, list, map, flag}, u"must be a number"_s},
      {u"loopCount"_s, {string, bytes, list, map, flag, real}, u"must be a whole number"_s},
      {u"scrollDirection"_s, {string, bytes, list, map, flag, real}, u"must be a whole number"_s},
      {u"actionType"_s, {string, bytes, list, map, flag, real}, u"must be a whole number"_s},
      {u"continuousScroling"_s, {string, bytes, list, map}, u"must be true, false or a number"_s},
  };
  for (const auto& example : cases)
    for (const QVariant& wrong : example.wrong)
      EXPECT_EQ(complaintOf(message(example.key, wrong)),
                QString(example.key + u": "_s + example.complaint))
          << wrong.typeName();
}

TEST(DisplayMessage, NamesTheKeyOfTheError) {
  try {
    readWith(message(u"loopCount"_s, u"many"_s));
    FAIL() << "nothing was raised";
  } catch (const MessageError& error) {
    EXPECT_EQ(error.key(), u"loopCount"_s);
    EXPECT_STREQ(error.what(), "loopCount: must be a whole number");
  }
}

TEST(DisplayMessage, TakesWholeNumbersOfEveryType) {
  const QVariant threes[] = {QVariant::fromValue<uchar>(3),  QVariant::fromValue<signed char>(3),
                             QVariant::fromValue<short>(3),  QVariant::fromValue<ushort>(3),
                             QVariant::fromValue<int>(3),    QVariant::fromValue<uint>(3),
                             QVariant::fromValue<long>(3),   QVariant::fromValue<ulong>(3),
                             QVariant::fromValue<qint64>(3), QVariant::fromValue<quint64>(3),
                             QVariant::fromValue(3.0),       QVariant::fromValue(3.0F)};
  for (const QVariant& three : threes)
    for (const QString& key : {u"loopCount"_s, u"scrollDirection"_s, u"actionType"_s, u"priority"_s,
                               u"loopDelay"_s, u"fadeInOutType"_s, u"continuousScroling"_s}) {
      const DisplayMessage read = readWith(message(key, three));
      EXPECT_EQ(read.sign->loopCount(), key == "loopCount"_L1 ? 3 : 0) << three.typeName();
      EXPECT_EQ(read.origin.priority, key == "priority"_L1 ? 3 : 0) << three.typeName();
      EXPECT_EQ(read.sign->loopDelay(), key == "loopDelay"_L1 ? 3 : 0) << three.typeName();
      EXPECT_EQ(read.origin.fades, key == "fadeInOutType"_L1) << three.typeName();
      EXPECT_EQ(read.sign->continuousScrolling(), key == "continuousScroling"_L1);
      EXPECT_EQ(read.sign->actionType(), key == "actionType"_L1 ? 3 : 0) << three.typeName();
    }
}

TEST(DisplayMessage, LimitsNumbers) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  const double nan = std::nan("");
  const struct {
    const char* key;
    QVariant value;
    const char* complaint; // empty where it is taken
  } cases[] = {
      {"loopCount", -1, ""},
      {"loopCount", 0, ""},
      {"loopCount", 2147483647, ""},
      {"loopCount", -2, "must be from -1 to 2147483647"},
      {"loopCount", 2147483648LL, "must be from -1 to 2147483647"},
      {"loopCount", QVariant::fromValue<quint64>(~0ULL), "must be from -1 to 2147483647"},
      {"loopCount", std::numeric_limits<qint64>::min(), "must be from -1 to 2147483647"},
      {"loopCount", 1e300, "must be from -1 to 2147483647"},
      {"loopCount", -1e300, "must be from -1 to 2147483647"},
      {"loopCount", nan, "must be a whole number"},
      {"loopCount", Infinity, "must be a whole number"},
      {"scrollDirection", -2147483648LL, ""},
      {"scrollDirection", 2147483648LL, "must be from -2147483648 to 2147483647"},
      {"actionType", 2147483647, ""},
      {"actionType", -2147483649LL, "must be from -2147483648 to 2147483647"},
      {"loopDelay", 0, ""},
      {"loopDelay", 1e9, ""},
      {"loopDelay", 1.0001e9, "must be from 0 to 1000000000"},
      {"loopDelay", -0.001, "must be from 0 to 1000000000"},
      {"loopDelay", Infinity, "must be from 0 to 1000000000"},
      {"loopDelay", nan, "must be a number"},
      {"priority", 1e300, ""},
      {"priority", -Infinity, ""},
      {"priority", nan, "must be a number"},
      {"fadeInOutType", nan, "must be a number"},
      {"continuousScroling", nan, "must be true, false or a number"},
  };
  for (const auto& example : cases) {
    const QString key = QString::fromLatin1(example.key);
    EXPECT_EQ(complaintOf(message(key, example.value)),
              *example.complaint ? QString(key + u": "_s + QLatin1StringView(example.complaint))
                                 : QString())
        << example.value.toDouble();
  }
}

TEST(DisplayMessage, KnowsTheEndlessCount) {
  EXPECT_EQ(readWith(message(u"loopCount"_s, ZQEndlessLoopCount)).sign->loopCount(),
            ZQEndlessLoopCount);
}

TEST(DisplayMessage, TakesBooleansAsNumbers) {
  const struct {
    QVariant value;
    bool expected;
  } cases[] = {{true, true}, {false, false}, {1, true},   {0, false},
               {-7, true},   {0.5, true},    {0.0, false}};
  for (const auto& example : cases)
    EXPECT_EQ(readWith(message(u"continuousScroling"_s, example.value)).sign->continuousScrolling(),
              example.expected);
}

TEST(DisplayMessage, FadesForEveryTypeButZero) {
  EXPECT_FALSE(readWith(message(u"fadeInOutType"_s, 0)).origin.fades);
  EXPECT_FALSE(readWith(message(u"fadeInOutType"_s, -0.0)).origin.fades);
  for (const QVariant& type : QVariantList{1, -1, 0.25, 99})
    EXPECT_TRUE(readWith(message(u"fadeInOutType"_s, type)).origin.fades);
}

TEST(DisplayMessage, LimitsTheActionData) {
  const QString key = u"actionData"_s;
  const QString complaint = u"actionData: larger than 64 KiB"_s;
  EXPECT_EQ(complaintOf(message(key, QByteArray(60'000, 'x'))), QString());
  EXPECT_EQ(complaintOf(message(key, QByteArray(66'000, 'x'))), complaint);
  EXPECT_EQ(complaintOf(message(key, QString(33'000, u'x'))), complaint);
  EXPECT_EQ(complaintOf(message(key, QVariantList(2000, QVariant(1)))), QString());
  EXPECT_EQ(complaintOf(message(key, QVariantList(3000, QVariant(1)))), complaint);
  QVariant deep = 1;
  for (int i = 0; i < 63; ++i)
    deep = QVariantList{deep};
  EXPECT_EQ(complaintOf(message(key, deep)), QString());
  for (int i = 0; i < 10; ++i)
    deep = QVariantList{deep};
  EXPECT_EQ(complaintOf(message(key, deep)), complaint);
}

TEST(DisplayMessage, RefusesOtherPictures) {
  const QString complaint = u"image: must be TIFF or PNG data"_s;
  for (const char* format : {"jpeg", "bmp", "webp", "ico"})
    EXPECT_EQ(complaintOf({{u"image"_s, encoded(solid(16, 12), format)}}), complaint) << format;
  EXPECT_EQ(complaintOf({{u"image"_s, QByteArray()}}), complaint);
  EXPECT_EQ(complaintOf({{u"image"_s, QByteArray("<svg/>")}}), complaint);
  EXPECT_EQ(complaintOf({{u"image"_s, png().left(20)}}), complaint);
}

TEST(DisplayMessage, RefusesDamagedPictures) {
  const QString complaint = u"image: the picture cannot be decoded"_s;
  EXPECT_EQ(complaintOf({{u"image"_s, png(300, 300).left(200)}}), complaint);
  QByteArray damaged = png(300, 300);
  const qsizetype pixels = damaged.indexOf("IDAT") + 4;
  damaged.replace(pixels, 20, QByteArray(20, '\xff'));
  EXPECT_EQ(complaintOf({{u"image"_s, damaged}}), complaint);
  EXPECT_NE(complaintOf({{u"image"_s, tiff(300, 300).left(100)}}), QString());
}

TEST(DisplayMessage, RefusesLargePictures) {
  EXPECT_EQ(complaintOf({{u"image"_s, QByteArray(LargestMessagePicture + 1, 'x')}}),
            u"image: larger than 8 MiB"_s);
  const QString complaint = u"image: more than 16 million pixels"_s;
  EXPECT_EQ(complaintOf({{u"image"_s, png(4001, 4000)}}), complaint);
  EXPECT_EQ(complaintOf({{u"image"_s, tiff(4001, 4000)}}), complaint);
  EXPECT_EQ(complaintOf({{u"image"_s, png(4000, 4000)}}), QString());
}

TEST(DisplayMessage, CountsThePixelsOfHeaders) {
  EXPECT_EQ(pixelCountOf(png(30, 20)), 600);
  EXPECT_EQ(pixelCountOf(tiff(30, 20)), 600);
  const auto image = Image::fromQImage(solid(30, 20));
  Image::Representations pages = image->representations();
  pages.push_back(Image::fromQImage(solid(60, 40))->representations().front());
  EXPECT_EQ(pixelCountOf(*Image::make(QSizeF(30, 20), pages)->TIFFRepresentation()), 3000);
  EXPECT_FALSE(pixelCountOf(QByteArray("II*\0", 4)));
  EXPECT_FALSE(pixelCountOf(QByteArray("II*\0\xff\xff\xff\xff", 8)));
}
