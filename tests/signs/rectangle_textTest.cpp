#include "zqticker/signs/rectangle_text.h"

#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using zq::platform::RangeException;

TEST(StringFromRect, PrintsFourNumbersWithSixDecimals) {
  EXPECT_EQ(ZQStringFromRect(QRectF(0, 0, 100, 20)), u"0.000000 0.000000 100.000000 20.000000"_s);
}

TEST(StringFromRect, RoundsToTheSixthDecimal) {
  EXPECT_EQ(ZQStringFromRect(QRectF(2.0 / 3, -1.0 / 3, 0.4e-6, -1e-7)),
            u"0.666667 -0.333333 0.000000 -0.000000"_s);
}

TEST(StringFromRect, PrintsLargeNumbersWithoutAnExponent) {
  EXPECT_EQ(ZQStringFromRect(QRectF(1e22, -1e15, 1.2345678901234568e17, 1)),
            u"10000000000000000000000.000000 -1000000000000000.000000 "
            "123456789012345680.000000 1.000000"_s);
}

TEST(StringFromRect, PrintsTheLargestAndTheSpecialNumbers) {
  const QString text = ZQStringFromRect(
      QRectF(-std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity(),
             -std::numeric_limits<double>::infinity(), std::nan("")));
  EXPECT_TRUE(text.startsWith(u"-179769313486231570814527423731704356798070567525844996598917"_s));
  EXPECT_TRUE(text.endsWith(u".000000 inf -inf nan"_s)) << text.toStdString();
}

TEST(RectFromString, ReadsFourNumbersBetweenSingleSpaces) {
  EXPECT_EQ(ZQRectFromString(u"1 2 3 4"_s), QRectF(1, 2, 3, 4));
}

TEST(RectFromString, CountsTheEmptyPieceBetweenTwoSpacesAsZero) {
  EXPECT_EQ(ZQRectFromString(u"1  2 3 4"_s), QRectF(1, 0, 2, 3));
}

TEST(RectFromString, CountsALeadingSpaceAsAnEmptyPiece) {
  EXPECT_EQ(ZQRectFromString(u" 1 2 3"_s), QRectF(0, 1, 2, 3));
}

TEST(RectFromString, IgnoresPiecesAfterTheFourth) {
  EXPECT_EQ(ZQRectFromString(u"1 2 3 4 5 x"_s), QRectF(1, 2, 3, 4));
}

TEST(RectFromString, RaisesForFewerThanFourPieces) {
  EXPECT_THROW(ZQRectFromString(u"1 2 3"_s), RangeException);
  EXPECT_THROW(ZQRectFromString(u""_s), RangeException);
  EXPECT_THROW(ZQRectFromString(QString()), RangeException);
  EXPECT_THROW(ZQRectFromString(u"1\t2\t3\t4"_s), RangeException);
}

TEST(RectFromString, ReadsNothingAsTheZeroRectangle) {
  EXPECT_EQ(ZQRectFromString(std::nullopt), QRectF(0, 0, 0, 0));
}

TEST(RectFromString, ReadsInSinglePrecision) {
  const QRectF rect = ZQRectFromString(u"0.1 0.2 0.3 1234.567890"_s);
  EXPECT_EQ(rect.x(), 0.10000000149011612);
  EXPECT_EQ(rect.y(), 0.20000000298023224);
  EXPECT_EQ(rect.width(), 0.30000001192092896);
  EXPECT_EQ(rect.height(), 1234.56787109375);
}

TEST(RectFromString, PrintedRectanglesComeBackInSinglePrecision) {
  const QRectF rect(81.079759, -1566.470576, 24.23774, 1e9);
  EXPECT_EQ(ZQRectFromString(ZQStringFromRect(rect)),
            QRectF(float(rect.x()), float(rect.y()), float(rect.width()), float(rect.height())));
}

TEST(RectFromString, ReadsTheLongestNumericPrefixOfAPiece) {
  EXPECT_EQ(ZQRectFromString(u"1.e2 .25 1e5e5 1_000"_s), QRectF(100, 0.25, 100000, 1));
  EXPECT_EQ(ZQRectFromString(u"1, 2, +3; 1e"_s), QRectF(1, 2, 3, 1));
  EXPECT_EQ(ZQRectFromString(u"-5 1e+ -0x10 3-4"_s), QRectF(-5, 1, 0, 3));
}

TEST(RectFromString, ReadsAPieceWithoutANumberAsZero) {
  EXPECT_EQ(ZQRectFromString(u"z Infinity nan ."_s), QRectF(0, 0, 0, 0));
  EXPECT_EQ(ZQRectFromString(u"$5 (5) \u22125 \u0665"_s), QRectF(0, 0, 0, 0));
  EXPECT_EQ(ZQRectFromString(u"+-1 -+1 ++1 e5"_s), QRectF(0, 0, 0, 0));
}

TEST(RectFromString, SkipsWhiteSpaceOtherThanSpacesBeforeAPiece) {
  EXPECT_EQ(ZQRectFromString(u"\t1 \n2 \u00a03 4"_s), QRectF(1, 2, 3, 4));
}

TEST(RectFromString, ReadsNumbersBeyondSinglePrecisionAsInfiniteOrZero) {
  const double infinity = std::numeric_limits<double>::infinity();
  const QRectF rect = ZQRectFromString(u"1e40 -1e999 1e-60 1e-999"_s);
  EXPECT_EQ(rect.x(), infinity);
  EXPECT_EQ(rect.y(), -infinity);
  EXPECT_EQ(rect.width(), 0);
  EXPECT_EQ(rect.height(), 0);
}
