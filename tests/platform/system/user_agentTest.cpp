#include "zqticker/platform/system/user_agent_p.h"

#include "zqticker/version.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class UserAgent : public ::testing::Test {
 protected:
  void TearDown() override {
    QCoreApplication::setApplicationName(name);
    QCoreApplication::setApplicationVersion(version);
  }
  QString name = QCoreApplication::applicationName();
  QString version = QCoreApplication::applicationVersion();
};
} // namespace

TEST_F(UserAgent, NamesTheLibraryWhereTheApplicationHasNoName) {
  EXPECT_EQ(userAgent(), "libzqticker/" ZQTICKER_VERSION);
}

TEST_F(UserAgent, NamesTheApplicationAndItsVersion) {
  QCoreApplication::setApplicationName(u"newsreader"_s);
  QCoreApplication::setApplicationVersion(u"2.1"_s);
  EXPECT_EQ(userAgent(), "newsreader/2.1");
}

TEST_F(UserAgent, NamesAnApplicationWithoutAVersion) {
  QCoreApplication::setApplicationName(u"newsreader"_s);
  EXPECT_EQ(userAgent(), "newsreader");
}

TEST_F(UserAgent, IsOneTokenWithoutControlCharacters) {
  QCoreApplication::setApplicationName(u"News\r\nX: y ü"_s);
  QCoreApplication::setApplicationVersion(u"2"_s);
  EXPECT_EQ(userAgent(), "News--X--y---/2");
}
