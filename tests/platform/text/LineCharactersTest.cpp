#include "zqticker/platform/text/LineCharacters_p.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// Longer than what is read at once.
QString longText() {
  return u"abc שלום (12.5 def) 👩‍👩‍👧‍👦 é\r\n 1️⃣ \x202eover\x202c "_s
      .repeated(1 + LineReading::LongestReadAtOnce / 20);
}

bool areSame(const std::vector<DirectionRun>& a, const std::vector<DirectionRun>& b) {
  return std::equal(
      a.begin(), a.end(), b.begin(), b.end(), [](const DirectionRun& x, const DirectionRun& y) {
        return x.start == y.start && x.length == y.length && x.rightToLeft == y.rightToLeft;
      });
}

} // namespace

TEST(LineCharacters, PutsATextOnOneLineUnitForUnit) {
  EXPECT_EQ(LineCharacters::of(u"a\r\nb\tc\x1f\x2028 d"_s, std::nullopt).text, u"a \x200b"
                                                                               u"b c\x200b  d"_s);
  EXPECT_EQ(LineCharacters::of(u"a\xd83d b"_s, std::nullopt).text, u"a\xfffd b"_s);
}

TEST(LineCharacters, SharesATextThatStandsOnOneLine) {
  const QString text = u"Съешь же é שלום 😀"_s;
  EXPECT_EQ(LineCharacters::of(text, std::nullopt).text.constData(), text.constData());
}

TEST(LineCharacters, TakesWhatDirectsOutBehindTheDirectionsThatItGave) {
  const LineCharacters forced = LineCharacters::of(u"\x202e"
                                                   u"abc\x202c"_s,
                                                   std::nullopt);
  EXPECT_EQ(forced.text, u"\x200b"
                         u"abc\x200b"_s);
  EXPECT_TRUE(forced.forcesDirection);
  EXPECT_TRUE(std::any_of(forced.directions.begin(), forced.directions.end(),
                          [](const DirectionRun& run) { return run.rightToLeft; }));
  const LineCharacters isolated = LineCharacters::of(u"\x2067"
                                                     u"abc\x2069"_s,
                                                     std::nullopt);
  EXPECT_EQ(isolated.text, u"\x200b"
                           u"abc\x200b"_s);
  EXPECT_FALSE(isolated.forcesDirection);
}

TEST(LineReading, GivesAShortTextAtOnce) {
  LineReading reading(u"short שלום"_s, std::nullopt);
  const auto characters = reading.takeUntil(QDeadlineTimer(0));
  ASSERT_TRUE(characters);
  EXPECT_EQ(characters->directions.size(), 2U);
}

TEST(LineReading, FindsTheSameWhileAnotherThreadReadsAsAtOnce) {
  const QString text = longText();
  for (const std::optional<bool> direction : {std::optional<bool>(), {true}, {false}}) {
    const LineCharacters expected = LineCharacters::of(text, direction);
    LineReading reading(text, direction);
    std::optional<LineCharacters> found;
    while (!found)
      found = reading.takeUntil(QDeadlineTimer(0));
    EXPECT_EQ(found->text, expected.text);
    EXPECT_EQ(found->emoji, expected.emoji);
    EXPECT_TRUE(areSame(found->directions, expected.directions));
    EXPECT_EQ(found->forcesDirection, expected.forcesDirection);
  }
}

TEST(LineReading, WaitsForAnotherThreadThatHasBegun) {
  const QString text = longText().repeated(20);
  LineReading reading(text, std::nullopt);
  auto found = reading.takeUntil(QDeadlineTimer(0));
  if (!found)
    found = reading.takeUntil(QDeadlineTimer(QDeadlineTimer::Forever));
  ASSERT_TRUE(found);
  EXPECT_EQ(found->text.size(), text.size());
}

TEST(LineReading, EndsWhileAnotherThreadStillReads) {
  for (int i = 0; i < 20; ++i) {
    // A text of its own, of which only the thread is left.
    LineReading reading(longText(), std::nullopt);
    reading.takeUntil(QDeadlineTimer(0));
  }
  LineReading last(longText(), std::nullopt);
  EXPECT_TRUE(last.takeUntil(QDeadlineTimer(QDeadlineTimer::Forever)));
}
