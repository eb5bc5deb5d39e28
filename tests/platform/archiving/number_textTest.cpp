#include "zqticker/platform/archiving/number_text.h"

#include <gtest/gtest.h>

#include <QtCore/QLocale>

#include <cmath>
#include <limits>
#include <random>

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(NumberText, WholeNumbersHaveNoPoint) {
  EXPECT_EQ(textOfNumber(100), u"100"_s);
  EXPECT_EQ(textOfNumber(100000), u"100000"_s);
  EXPECT_EQ(textOfNumber(-1), u"-1"_s);
  EXPECT_EQ(textOfNumber(0), u"0"_s);
}

TEST(NumberText, TheShortestTextThatReadsBackIsWritten) {
  EXPECT_EQ(textOfNumber(0.1), u"0.1"_s);
  EXPECT_EQ(textOfNumber(96.289599999999993), u"96.2896"_s);
  EXPECT_EQ(textOfNumber(1.0 / 3), u"0.3333333333333333"_s);
  EXPECT_EQ(textOfNumber(0.1 + 0.2), u"0.30000000000000004"_s);
}

TEST(NumberText, ExponentsAreWrittenOnlyForVeryLargeAndVerySmallNumbers) {
  EXPECT_EQ(textOfNumber(1e16), u"10000000000000000"_s);
  EXPECT_EQ(textOfNumber(1e17), u"1e+17"_s);
  EXPECT_EQ(textOfNumber(1e-5), u"0.00001"_s);
  EXPECT_EQ(textOfNumber(1e-6), u"1e-06"_s);
  EXPECT_EQ(textOfNumber(std::numeric_limits<double>::max()), u"1.7976931348623157e+308"_s);
}

TEST(NumberText, EveryDoubleReadsBack) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 10000; ++i) {
    const quint64 bits = random();
    double value;
    memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value))
      continue;
    EXPECT_EQ(numberOfText(textOfNumber(value)), value);
    EXPECT_EQ(pointOfText(textOfPoint({value, -value})), QPointF(value, -value));
  }
}

TEST(NumberText, InfinityAndNotANumberReadBack) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(numberOfText(textOfNumber(infinity)), infinity);
  EXPECT_EQ(numberOfText(textOfNumber(-infinity)), -infinity);
  EXPECT_TRUE(std::isnan(*numberOfText(textOfNumber(std::nan("")))));
  EXPECT_EQ(sizeOfText(textOfSize({infinity, 20})).width(), infinity);
  EXPECT_EQ(sizeOfText(textOfSize({infinity, 20})).height(), 20);
}

TEST(NumberText, NumbersBeyondADoubleAreInfiniteOrZero) {
  EXPECT_EQ(numberOfText(u"1e999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(numberOfText(u"-1e999"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(numberOfText(u"1e-999"), 0.0);
}

TEST(NumberText, GeometryHasOneSpaceAfterEachComma) {
  EXPECT_EQ(textOfPoint({1, 2.5}), u"{1, 2.5}"_s);
  EXPECT_EQ(textOfSize({100, 20}), u"{100, 20}"_s);
  EXPECT_EQ(textOfRect({0, -1.25, 100, 0.5}), u"{{0, -1.25}, {100, 0.5}}"_s);
}

TEST(NumberText, GeometryReadsBack) {
  EXPECT_EQ(pointOfText(u"{1, 2.5}"), QPointF(1, 2.5));
  EXPECT_EQ(sizeOfText(u"{100, 20}"), QSizeF(100, 20));
  EXPECT_EQ(rectOfText(u"{{0, -1.25}, {100, 0.5}}"), QRectF(0, -1.25, 100, 0.5));
  EXPECT_EQ(sizeOfText(u"{1.79769e+308, 1e+13}"), QSizeF(1.79769e+308, 1e13));
}

TEST(NumberText, SpacesCommasAndBracesDoNotMatter) {
  EXPECT_EQ(pointOfText(u"1 2"), QPointF(1, 2));
  EXPECT_EQ(pointOfText(u"{1,2}"), QPointF(1, 2));
  EXPECT_EQ(pointOfText(u"  { 1 ,2 } "), QPointF(1, 2));
  EXPECT_EQ(pointOfText(u"{1 -2}"), QPointF(1, -2));
  EXPECT_EQ(pointOfText(u"(x: .5; y: -.5)"), QPointF(0.5, -0.5));
}

TEST(NumberText, MissingNumbersAreZero) {
  EXPECT_EQ(pointOfText(u"{7}"), QPointF(7, 0));
  EXPECT_EQ(rectOfText(u""), QRectF());
  EXPECT_EQ(rectOfText(u"{{1, 2}, {3}}"), QRectF(1, 2, 3, 0));
}

TEST(NumberText, TheLocaleDoesNotMatter) {
  QLocale::setDefault(QLocale(QLocale::German));
  const char* before = setlocale(LC_NUMERIC, nullptr);
  const std::string saved = before ? before : "C";
  setlocale(LC_NUMERIC, "de_DE.UTF-8");
  EXPECT_EQ(textOfSize({1.5, 2.25}), u"{1.5, 2.25}"_s);
  EXPECT_EQ(sizeOfText(u"{1.5, 2.25}"), QSizeF(1.5, 2.25));
  setlocale(LC_NUMERIC, saved.c_str());
  QLocale::setDefault(QLocale::c());
}
