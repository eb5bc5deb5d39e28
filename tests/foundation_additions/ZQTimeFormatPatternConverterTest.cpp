#include "zqticker/foundation_additions/ZQTimeFormatPatternConverter.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/foundation_additions/calendar_additions.h"
#include "zqticker/platform/calendar/Date.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using zq::platform::Date;
using zq::platform::Ref;
using zq::testing::CalendarSettings;

namespace {

Ref<ZQTimeFormatPatternConverter> converter() {
  auto made = ZQTimeFormatPatternConverter::make();
  made->setLocalDateFormat(u"MMMM d, y"_s);
  made->setLocalTimeFormat(u"h:mm:ss a z"_s);
  return made;
}

QString converted(const QString& string) {
  return converter()->stringByReplacingOldTimeFormatPatternsInString(string);
}

} // namespace

TEST(TimeFormatPatternConverter, ReplacesEverySequenceOfItsTable) {
  const ZQTimeFormatPatternConverter::Mapping table{
      {u"%"_s, u"%"_s},    {u"a"_s, u"EEE"_s},  {u"A"_s, u"EEEE"_s}, {u"b"_s, u"MMM"_s},
      {u"B"_s, u"MMMM"_s}, {u"c"_s, u""_s},     {u"d"_s, u"dd"_s},   {u"e"_s, u"d"_s},
      {u"f"_s, u"FFFF"_s}, {u"F"_s, u"SSS"_s},  {u"H"_s, u"HH"_s},   {u"I"_s, u"hh"_s},
      {u"j"_s, u"DDD"_s},  {u"m"_s, u"MM"_s},   {u"M"_s, u"mm"_s},   {u"p"_s, u"a"_s},
      {u"S"_s, u"ss"_s},   {u"w"_s, u"e"_s},    {u"x"_s, u""_s},     {u"X"_s, u""_s},
      {u"y"_s, u"yy"_s},   {u"Y"_s, u"yyyy"_s}, {u"z"_s, u"ZZ"_s},   {u"Z"_s, u"zzzz"_s},
  };
  EXPECT_EQ(table.size(), 24);
  EXPECT_EQ(converter()->timeFormatPatternsMapping(), table);
  for (auto entry = table.begin(); entry != table.end(); ++entry) {
    const QString expected = entry.key() == u"x"   ? u"MMMM d, y"_s
                             : entry.key() == u"X" ? u"h:mm:ss a z"_s
                                                   : entry.value();
    EXPECT_EQ(converted(u'%' + entry.key()), expected) << entry.key().toStdString();
  }
}

TEST(TimeFormatPatternConverter, PutsLiteralTextBetweenApostrophes) {
  EXPECT_EQ(converted(u""_s), u"");
  EXPECT_EQ(converted(u"Hello"_s), u"'Hello'");
  EXPECT_EQ(converted(u" "_s), u"' '");
  EXPECT_EQ(converted(u"%H:%M"_s), u"HH':'mm");
  EXPECT_EQ(converted(u"%d.%m.%Y"_s), u"dd'.'MM'.'yyyy");
  EXPECT_EQ(converted(u"at %H Uhr\n"_s), u"'at 'HH' Uhr\n'");
  EXPECT_EQ(converted(u"%x %X"_s), u"MMMM d, y' 'h:mm:ss a z");
}

TEST(TimeFormatPatternConverter, LeavesAnApostropheInTheTextAsItIs) {
  EXPECT_EQ(converted(u"o'clock"_s), u"'o'clock'");
  EXPECT_EQ(converted(u"''"_s), u"''''");
}

TEST(TimeFormatPatternConverter, DropsASequenceThatIsNotKnown) {
  EXPECT_EQ(converted(u"%q"_s), u"");
  EXPECT_EQ(converted(u"a%qb"_s), u"'ab'");
  EXPECT_EQ(converted(u"a%q%q%b"_s), u"'aqq'MMM");
  EXPECT_EQ(converted(u"% H"_s), u"'H'");
}

TEST(TimeFormatPatternConverter, MakesTextOfTheFirstOfTwoSequencesInARow) {
  EXPECT_EQ(converted(u"%Y%m"_s), u"yyyy'Y'MM");
  EXPECT_EQ(converted(u"%q%H"_s), u"'q'HH");
  EXPECT_EQ(converted(u"%H%M%S"_s), u"HH'H'mm'M'ss");
  EXPECT_EQ(converted(u"%x%X"_s), u"MMMM d, y'x'h:mm:ss a z");
}

TEST(TimeFormatPatternConverter, LeavesADoublePercentBare) {
  EXPECT_EQ(converted(u"%%"_s), u"%");
  EXPECT_EQ(converted(u"%%H"_s), u"%'H'");
  EXPECT_EQ(converted(u"abc%%S:%%H-%%"_s), u"'abc'%'S:'%'H-'%");
}

TEST(TimeFormatPatternConverter, IgnoresAPercentAtTheEnd) {
  EXPECT_EQ(converted(u"100%"_s), u"'100'");
  EXPECT_EQ(converted(u"%"_s), u"");
  EXPECT_EQ(converted(u"%H%"_s), u"HH'H'");
}

TEST(TimeFormatPatternConverter, FlushesTextForASequenceThatStandsForNothing) {
  EXPECT_EQ(converted(u"a%cb"_s), u"'a''b'");
}

TEST(TimeFormatPatternConverter, TakesOneCodeUnitAfterThePercent) {
  EXPECT_EQ(converted(u"%\U0001F600a"_s), u'\'' + QString(QChar(0xde00)) + u"a'"_s);
  EXPECT_EQ(converted(u"%\u00e9::%X"_s), u"'::'h:mm:ss a z");
  EXPECT_EQ(converted(u"%p\U0001F600"_s), u"a'\U0001F600'");
  const QString lone = QString(QChar(0xd800));
  EXPECT_EQ(converted(lone), QString(u'\'' + lone + u'\''));
}

TEST(TimeFormatPatternConverter, UsesTheTableThatItIsGiven) {
  const auto own = converter();
  own->setTimeFormatPatternsMapping(ZQTimeFormatPatternConverter::Mapping{{u"q"_s, u"Q"_s}});
  EXPECT_EQ(own->stringByReplacingOldTimeFormatPatternsInString(u"%q %H %x"_s), u"Q'  'MMMM d, y");
  own->setTimeFormatPatternsMapping(std::nullopt);
  EXPECT_EQ(own->stringByReplacingOldTimeFormatPatternsInString(u"%q."_s), u"'.'");
  own->setLocalDateFormat(std::nullopt);
  own->setLocalTimeFormat(std::nullopt);
  EXPECT_EQ(own->stringByReplacingOldTimeFormatPatternsInString(u"a%x-%Xb"_s), u"'a-b'");
  own->createTimeFormatPatternsMapping();
  EXPECT_EQ(own->timeFormatPatternsMapping()->size(), 24);
}

TEST(TimeFormatPatternConverter, HasTheLongPatternsOfTheUserWhenItIsMade) {
  const CalendarSettings settings("UTC", "de_DE");
  const auto german = ZQTimeFormatPatternConverter::make();
  EXPECT_EQ(german->localDateFormat(), u"d. MMMM y"_s);
  EXPECT_EQ(german->localTimeFormat(), u"HH:mm:ss z"_s);
  zq::platform::Locale::setCurrentLocale(zq::platform::Locale(u"en_US"_s));
  EXPECT_EQ(german->localDateFormat(), u"d. MMMM y"_s);
  EXPECT_EQ(ZQTimeFormatPatternConverter::make()->localDateFormat(), u"MMMM d, y"_s);
}

TEST(TimeFormatPatternConverter, MakesPatternsThatDatesAreDescribedWith) {
  const CalendarSettings settings("UTC", "en_US");
  const QString pattern = converted(u"%A, %e %B %Y at %H:%M"_s);
  EXPECT_EQ(zq::descriptionWithCalendarFormat(Date(257'515'200), pattern, std::nullopt),
            u"Saturday, 28 February 2009 at 12:00"_s);
}

TEST(TimeFormatPatternConverter, ConvertsLongStrings) {
  EXPECT_EQ(converted(QString(100 << 20, u'a')).size(), (100 << 20) + 2);
  QString sequences;
  for (int count = 0; count < 1 << 20; ++count)
    sequences += u"%H";
  EXPECT_EQ(converted(sequences).size(), (1 << 20) * 5 - 3);
}

TEST(TimeFormatPatternConverter, IsReadWhileAnotherThreadWritesIt) {
  const auto shared = converter();
  std::atomic<bool> isOver = false;
  std::thread writing([&] {
    while (!isOver) {
      shared->setLocalDateFormat(u"dd"_s);
      shared->createTimeFormatPatternsMapping();
      shared->setLocalTimeFormat(std::nullopt);
      shared->setLocalDateFormat(u"MMMM d, y"_s);
      shared->setLocalTimeFormat(u"h:mm:ss a z"_s);
    }
  });
  for (int round = 0; round < 2000; ++round) {
    const QString text = shared->stringByReplacingOldTimeFormatPatternsInString(u"%x"_s);
    ASSERT_TRUE(text == u"dd" || text == u"MMMM d, y") << text.toStdString();
    ASSERT_EQ(shared->timeFormatPatternsMapping()->size(), 24);
    const std::optional<QString> time = shared->localTimeFormat();
    ASSERT_TRUE(!time || *time == u"h:mm:ss a z");
  }
  isOver = true;
  writing.join();
}
