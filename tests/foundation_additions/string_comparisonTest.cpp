#include "zqticker/foundation_additions/string_additions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using zq::numericCompare;

namespace {

void expectAscending(const QStringList& strings) {
  for (qsizetype i = 0; i < strings.size(); ++i)
    for (qsizetype j = 0; j < strings.size(); ++j)
      EXPECT_TRUE(numericCompare(strings[i], strings[j]) == (i <=> j))
          << strings[i].toStdString() << ", " << strings[j].toStdString();
}

} // namespace

TEST(NumericCompare, OrdersDigitRunsByValue) {
  expectAscending({u"File"_s, u"File2"_s, u"File2a"_s, u"File10"_s, u"File10a"_s, u"File11"_s});
  expectAscending({u"1.2.9"_s, u"1.9.9"_s, u"1.10"_s, u"1.10.0"_s, u"9.0"_s, u"10.0"_s});
}

TEST(NumericCompare, OrdersEverythingElseByCodeUnit) {
  expectAscending({u""_s, QString(QChar(0)), u" "_s, u"$9"_s, u"$10"_s, u"1"_s, u":"_s, u"A"_s,
                   u"Z"_s, u"a"_s, u"e\u0301"_s, u"z"_s, u"\u00e9"_s, u"\U0001F600"_s, u"\xde00"_s,
                   u"\uff21"_s});
}

TEST(NumericCompare, IsCaseSensitive) {
  expectAscending({u"FILE10"_s, u"File2"_s, u"file1"_s});
}

TEST(NumericCompare, TakesRunsOfAnyLength) {
  const QString big = u"1"_s + QString(1000, u'0');
  expectAscending({u"x99999999999999999998"_s, u"x99999999999999999999"_s, u"x"_s + big,
                   u"x"_s + big + u"0"_s, u"x2"_s + big});
}

TEST(NumericCompare, LeadingZerosCountOnlyWhereAllElseIsEqual) {
  expectAscending({u"a1"_s, u"a01b"_s, u"a1c"_s, u"a2"_s});
  expectAscending({u"a001"_s, u"a01"_s, u"a1"_s});
  expectAscending({u"0"_s, u"00"_s, u"000"_s, u"0000a"_s, u"0b"_s, u"01"_s, u"2"_s});
  expectAscending({u"01.1"_s, u"1.01"_s, u"1.1"_s, u"001.2"_s});
}

TEST(NumericCompare, OtherDigitsAreNoNumbers) {
  expectAscending({u"\u0661\u0660"_s, u"\u0662"_s});
  expectAscending({u"\uff11\uff10"_s, u"\uff12"_s});
}

TEST(NumericCompare, TakesLinearTime) {
  constexpr qsizetype Length = 25 << 20;
  const QString digits(Length, u'7');
  EXPECT_TRUE(numericCompare(digits + u"1"_s, digits + u"2"_s) == std::strong_ordering::less);
  const QString zeros(Length, u'0');
  EXPECT_TRUE(numericCompare(zeros + u"2"_s, zeros + u"1"_s) == std::strong_ordering::greater);
  const QString mixed = u"1a"_s.repeated(2 << 20);
  EXPECT_TRUE(numericCompare(mixed, mixed) == std::strong_ordering::equal);
}
