#include "zqticker/platform/objects/Error.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(Error, KeepsWhatItWasMadeFrom) {
  const Ref<Error> error = Error::make(u"D"_s, -7, u"no route"_s, QUrl(u"http://a/"_s));
  EXPECT_EQ(error->domain(), u"D"_s);
  EXPECT_EQ(error->code(), -7);
  EXPECT_EQ(error->localizedDescription(), u"no route"_s);
  EXPECT_EQ(error->failingURL(), QUrl(u"http://a/"_s));
}

TEST(Error, DescribesItselfInOneLine) {
  EXPECT_EQ(Error::make(u"D"_s, -7, u"no route"_s)->description(),
            u"Error Domain=D Code=-7 \"no route\""_s);
}

TEST(Error, IsEqualByItsValues) {
  const Ref<Error> error = Error::make(u"D"_s, 1, u"text"_s);
  EXPECT_TRUE(error->isEqual(*Error::make(u"D"_s, 1, u"text"_s)));
  EXPECT_FALSE(error->isEqual(*Error::make(u"E"_s, 1, u"text"_s)));
  EXPECT_FALSE(error->isEqual(*Error::make(u"D"_s, 2, u"text"_s)));
  EXPECT_FALSE(error->isEqual(*Error::make(u"D"_s, 1, u"other"_s)));
  EXPECT_FALSE(error->isEqual(*Error::make(u"D"_s, 1, u"text"_s, QUrl(u"http://a/"_s))));
  EXPECT_FALSE(error->isEqual(Object()));
}
