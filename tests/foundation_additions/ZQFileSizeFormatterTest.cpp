#include "zqticker/foundation_additions/ZQFileSizeFormatter.h"

#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/DecimalNumber.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QLocale>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
QString text(const Any& value, const std::optional<QString>& formatString = std::nullopt) {
  ZQFileSizeFormatter formatter;
  formatter.setFormatString(formatString);
  return formatter.stringForObjectValue(value).value_or(u"nothing"_s);
}

DecimalNumber bytes(const std::optional<QString>& string) {
  Any object;
  QString error = u"untouched"_s;
  EXPECT_TRUE(ZQFileSizeFormatter().getObjectValue(&object, string, &error));
  EXPECT_EQ(error, u"untouched"_s);
  EXPECT_EQ(object.metaType(), QMetaType::fromType<DecimalNumber>());
  return object.value<DecimalNumber>();
}

DecimalNumber number(const QString& string) {
  DecimalNumber result;
  EXPECT_EQ(DecimalNumber::readPrefix(string, result), string.size()) << string.toStdString();
  return result;
}

// Takes failures and lets the program go on.
class LenientHandler : public AssertionHandler {
 public:
  LenientHandler() { setCurrentHandler(this); }
  ~LenientHandler() override { setCurrentHandler(nullptr); }
  void handleFailure(const QString& message, const QString& file, int line) override {
    failures.append(u"%1 %2 %3"_s.arg(file).arg(line).arg(message));
  }
  QStringList failures;
};
} // namespace

TEST(FileSizeFormatter, ShowsBytesWithASpaceADecimalAndTheLetterB) {
  EXPECT_EQ(text(0), u"0.0 B");
  EXPECT_EQ(text(2), u"2.0 B");
  EXPECT_EQ(text(1023), u"1023.0 B");
}

TEST(FileSizeFormatter, CountsUnitsInPowersOf1024) {
  EXPECT_EQ(text(1024), u"1.0 KB");
  EXPECT_EQ(text(1536), u"1.5 KB");
  EXPECT_EQ(text(1048576), u"1.0 MB");
  EXPECT_EQ(text(5368709120LL), u"5.0 GB");
  EXPECT_EQ(text(1649267441664LL), u"1.5 TB");
}

TEST(FileSizeFormatter, ChoosesTheUnitBeforeRounding) {
  EXPECT_EQ(text(1048575), u"1024.0 KB");
  EXPECT_EQ(text(1125899906842623LL), u"1024.0 TB");
}

TEST(FileSizeFormatter, RoundsTiesToTheEvenDecimal) {
  EXPECT_EQ(text(1024 + 256), u"1.2 KB");       // 1.25
  EXPECT_EQ(text(1024 + 256 + 512), u"1.8 KB"); // 1.75
}

TEST(FileSizeFormatter, RaisesBeyondTerabytes) {
  EXPECT_THROW(text(1125899906842624LL), RangeException);
  EXPECT_THROW(text(std::numeric_limits<qlonglong>::max()), RangeException);
  EXPECT_THROW(text(1e300), RangeException);
  EXPECT_THROW(text(std::numeric_limits<double>::infinity()), RangeException);
  EXPECT_THROW(text(u"99999999999999999999"_s), RangeException);
}

TEST(FileSizeFormatter, CutsDecimalsOff) {
  EXPECT_EQ(text(1023.99), u"1023.0 B");
  EXPECT_EQ(text(-0.75), u"0.0 B");
  EXPECT_EQ(text(Any::fromValue(number(u"2047.9"_s))), u"2.0 KB");
  EXPECT_EQ(text(Any::fromValue(number(u"1023.9"_s))), u"1023.0 B");
}

TEST(FileSizeFormatter, ShowsTextsLikeTheNumbersTheyBeginWith) {
  EXPECT_EQ(text(u"2048"_s), u"2.0 KB");
  EXPECT_EQ(text(u"  1024 KB"_s), u"1.0 KB");
  EXPECT_EQ(text(u"-0"_s), u"0.0 B");
  EXPECT_EQ(text(u"none"_s), u"0.0 B");
  EXPECT_EQ(text(QString()), u"0.0 B");
}

TEST(FileSizeFormatter, ShowsBooleansAndWhatIsNotANumberAsNumbers) {
  EXPECT_EQ(text(true), u"1.0 B");
  EXPECT_EQ(text(std::nan("")), u"0.0 B");
  EXPECT_EQ(text(Any::fromValue(DecimalNumber::notANumber())), u"0.0 B");
}

TEST(FileSizeFormatter, ShowsNothingForValuesWithoutANumber) {
  const ZQFileSizeFormatter formatter;
  EXPECT_EQ(formatter.stringForObjectValue(Any()), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(QByteArray("1024")), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(QVariantList{1024}), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(QDateTime::currentDateTimeUtc()), std::nullopt);
  EXPECT_EQ(formatter.stringForObjectValue(any(std::make_shared<ZQFileSizeFormatter>())),
            std::nullopt);
}

// File, line and "to large" are what programs and people know.
TEST(FileSizeFormatter, RefusesNegativeNumbersInTheKnownWords) {
  try {
    text(-1);
    FAIL();
  } catch (const InternalInconsistencyException& exception) {
    EXPECT_EQ(exception.file(), u"ZQFileSizeFormatter");
    EXPECT_EQ(exception.line(), 34);
    EXPECT_EQ(exception.message(), u"ZQFileSizeFormatter - number to large: -1");
  }
  EXPECT_THROW(text(u"-5 KB"_s), InternalInconsistencyException);
  EXPECT_THROW(text(-std::numeric_limits<double>::infinity()), InternalInconsistencyException);
}

TEST(FileSizeFormatter, TakesWholeNumbersBeyond63BitsForNegativeOnes) {
  try {
    text(std::numeric_limits<qulonglong>::max());
    FAIL();
  } catch (const InternalInconsistencyException& exception) {
    EXPECT_EQ(exception.message(), u"ZQFileSizeFormatter - number to large: 18446744073709551615");
  }
}

TEST(FileSizeFormatter, GoesOnWithANegativeNumberWhereTheHandlerReturns) {
  LenientHandler handler;
  EXPECT_EQ(text(u"-2048 %@"_s), u"-2048.0 B");
  EXPECT_EQ(
      handler.failures,
      QStringList{u"ZQFileSizeFormatter 34 ZQFileSizeFormatter - number to large: -2048 %@"_s});
}

TEST(FileSizeFormatter, HasNoFormatStringByDefault) {
  ZQFileSizeFormatter formatter;
  EXPECT_EQ(formatter.formatString(), std::nullopt);
  formatter.setFormatString(u"%@ %@"_s);
  EXPECT_EQ(formatter.formatString(), u"%@ %@"_s);
  formatter.setFormatString(std::nullopt);
  EXPECT_EQ(formatter.formatString(), std::nullopt);
}

TEST(FileSizeFormatter, PutsTheSizeIntoTheFormatString) {
  EXPECT_EQ(text(1536, u"(%@)"_s), u"(1.5 KB)");
  EXPECT_EQ(text(1536, u"Size: %@"_s), u"Size: 1.5 KB");
  EXPECT_EQ(text(1, u"\\%@ \U0001F600"_s), u"\\1.0 B \U0001F600");
}

TEST(FileSizeFormatter, ReplacesInTheFormatStringTwice) {
  EXPECT_EQ(text(1536, u"%%%% %@"_s), u"% 1.5 KB");
  EXPECT_EQ(text(1536, u"%%@ %@"_s), u"(null) (null) (null)B");
}

TEST(FileSizeFormatter, SurvivesFormatStringsWithoutExactlyOnePlace) {
  EXPECT_EQ(text(1536, u""_s), u"");
  EXPECT_EQ(text(1536, u"none"_s), u"none");
  EXPECT_EQ(text(1536, u"%@ %@"_s), u"1.5 KB (null)");
  EXPECT_EQ(text(1536, u"%s%n%d %@ %"_s), u"%s%n%d 1.5 KB %");
}

TEST(FileSizeFormatter, ReadsUnitsInAnyCase) {
  EXPECT_EQ(bytes(u"1.5 kb"_s), DecimalNumber(1536, 0, false));
  EXPECT_EQ(bytes(u"2 MB"_s), DecimalNumber(2097152, 0, false));
  EXPECT_EQ(bytes(u"-2 gB"_s), DecimalNumber(2147483648, 0, true));
  EXPECT_EQ(bytes(u"1 tb"_s), DecimalNumber(1099511627776, 0, false));
  EXPECT_EQ(bytes(u"1kb"_s), DecimalNumber(1024, 0, false));
}

TEST(FileSizeFormatter, ReadsUnitsInTurkeyToo) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::Turkish));
  EXPECT_EQ(bytes(u"1.5 kb"_s), DecimalNumber(1536, 0, false));
  EXPECT_EQ(text(1536), u"1.5 KB");
  QLocale::setDefault(before);
}

TEST(FileSizeFormatter, TakesOtherTextsForNoUnit) {
  for (const auto& unit : {u""_s, u" B"_s, u" K"_s, u" KiB"_s, u" KB "_s, u" MBit"_s, u" PB"_s,
                           u" K B"_s, u" \u212AB"_s, QString(u" "_s + QChar(0xd83d))})
    EXPECT_EQ(bytes(u"3"_s + unit), DecimalNumber(3, 0, false)) << unit.toStdString();
  EXPECT_EQ(bytes(QString(u"3 KB"_s + QChar(0))), DecimalNumber(3, 0, false));
  EXPECT_EQ(bytes(u"1.5.5 KB"_s), DecimalNumber(15, -1, false));
}

TEST(FileSizeFormatter, EndsTheUnitAtALineFeed) {
  EXPECT_EQ(bytes(u"3 KB\nMB"_s), DecimalNumber(3072, 0, false));
  EXPECT_EQ(bytes(u"3 KB\r\n"_s), DecimalNumber(3, 0, false));
  // Before the unit, line feeds are white space as any other.
  EXPECT_EQ(bytes(u"\n 3\n\u2029KB"_s), DecimalNumber(3072, 0, false));
}

TEST(FileSizeFormatter, ReadsWithoutBinaryRounding) {
  EXPECT_EQ(bytes(u"3.14159 TB"_s), number(u"3454214734704.80384"_s));
  EXPECT_EQ(bytes(u"0.1 KB"_s), number(u"102.4"_s));
  EXPECT_EQ(bytes(u"12345678901234567890 PB"_s), DecimalNumber(12345678901234567890U, 0, false));
}

TEST(FileSizeFormatter, Rounds38DigitsAtEachFactor) {
  EXPECT_EQ(bytes(u"1.2345678901234567890123456789012345679 kb"_s),
            number(u"1264.1975194864197519486419751948641975"_s));
}

TEST(FileSizeFormatter, ReadsTextsWithoutANumberAsZero) {
  for (const auto& string : {u""_s, u"KB"_s, u"none"_s, u"-"_s, u".KB"_s, u"\u0663 KB"_s})
    EXPECT_EQ(bytes(string), DecimalNumber()) << string.toStdString();
  EXPECT_EQ(bytes(std::nullopt), DecimalNumber());
}

TEST(FileSizeFormatter, ReadsNumbersTooLargeAsNotANumber) {
  EXPECT_TRUE(bytes(u"1e200 KB"_s).isNaN());
  EXPECT_TRUE(bytes(u"99999999999999999999999999999999999999e127 KB"_s).isNaN());
}

TEST(FileSizeFormatter, ReadsWithoutAPlaceForTheResult) {
  EXPECT_TRUE(ZQFileSizeFormatter().getObjectValue(nullptr, u"1 KB"_s, nullptr));
}
