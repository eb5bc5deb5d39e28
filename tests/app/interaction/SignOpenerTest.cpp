#include "app/interaction/SignOpener.h"

#include "app/display/SignAction.h"
#include "tests/support/LogWatch.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::testing::expectLog;

namespace {
struct Opened {
  QUrl url;
  QVariant data;
};

class SignOpening : public ::testing::Test {
 protected:
  std::vector<Opened> opened;
  bool canOpen = true;
  SignOpener opener{[this](const QUrl& url, const QVariant& data) {
    opened.push_back({url, data});
    return canOpen;
  }};
};
} // namespace

TEST_F(SignOpening, OpensALocationWithTheDataOfTheSign) {
  const auto sign = ZQTextTickerSign::make(u"a"_s);
  sign->setActionType(OpenLocation);
  sign->setActionString(u"https://example.org/"_s);
  EXPECT_TRUE(SignOpener::opensSomething(actionOf(*sign)));
  EXPECT_TRUE(opener.perform(actionOf(*sign, u"data"_s)));
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_EQ(opened[0].url, QUrl(u"https://example.org/"_s));
  EXPECT_EQ(opened[0].data, QVariant(u"data"_s));
}

TEST_F(SignOpening, DoesNothingWithoutAnAction) {
  const auto sign = ZQTextTickerSign::make(u"a"_s);
  sign->setActionString(u"https://example.org/"_s);
  EXPECT_FALSE(SignOpener::opensSomething(actionOf(*sign)));
  EXPECT_FALSE(opener.perform(actionOf(*sign)));
  EXPECT_TRUE(opened.empty());
}

TEST_F(SignOpening, RefusesActionsThatItDoesNotKnow) {
  for (const std::int32_t type : {2, -1, std::numeric_limits<std::int32_t>::max()}) {
    expectLog(u"unknown type %1"_s.arg(type));
    EXPECT_FALSE(opener.perform({type, u"https://example.org/"_s, {}}));
    EXPECT_FALSE(SignOpener::opensSomething({type, u"https://example.org/"_s, {}}));
  }
  EXPECT_TRUE(opened.empty());
}

TEST_F(SignOpening, RefusesOtherLocationsInOneLine) {
  for (const QString& text : {u"javascript:alert(1)"_s, u"mailto:a@example.org"_s, QString(),
                              u"a\nb"_s, QString(1'000'000, u'x')}) {
    expectLog(u"a sign's location is not opened"_s);
    EXPECT_FALSE(opener.perform({OpenLocation, text, {}}));
    EXPECT_FALSE(SignOpener::opensSomething({OpenLocation, text, {}}));
  }
  EXPECT_TRUE(opened.empty());
}

TEST_F(SignOpening, TellsThatNothingOpensIt) {
  canOpen = false;
  expectLog(u"there is nothing to open"_s);
  EXPECT_FALSE(opener.perform({OpenLocation, u"https://example.org/"_s, {}}));
}
