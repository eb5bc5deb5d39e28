#include "zqticker/platform/system/system_version_p.h"

#include <gtest/gtest.h>

#include <QtCore/QString>

#include <limits>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
using Numbers = std::tuple<int, int, int>;

Numbers numbers(const std::optional<SystemVersion>& version) {
  return version ? Numbers(version->majorNumber, version->minorNumber, version->bugFixNumber)
                 : Numbers(-1, -1, -1);
}
} // namespace

TEST(SystemVersion, IsWhatAReleaseBeginsWith) {
  EXPECT_EQ(numbers(versionInRelease("6.1.0-18-amd64")), Numbers(6, 1, 0));
  EXPECT_EQ(numbers(versionInRelease("5.10.213.4")), Numbers(5, 10, 213));
}

TEST(SystemVersion, HasZerosForWhatIsMissing) {
  EXPECT_EQ(numbers(versionInRelease("6.8-rc1")), Numbers(6, 8, 0));
  EXPECT_EQ(numbers(versionInRelease("12")), Numbers(12, 0, 0));
  EXPECT_EQ(numbers(versionInRelease("3.")), Numbers(3, 0, 0));
}

TEST(SystemVersion, IsMissingWithoutANumberInFront) {
  EXPECT_EQ(versionInRelease("rolling 1.2").has_value(), false);
  EXPECT_EQ(versionInRelease("").has_value(), false);
  EXPECT_EQ(versionInRelease(".5").has_value(), false);
}

TEST(SystemVersion, LimitsNumbers) {
  EXPECT_EQ(numbers(versionInRelease("99999999999999999999.2")),
            Numbers(std::numeric_limits<int>::max(), 2, 0));
}

TEST(SystemVersion, ReadsTheDistributionsNumberToo) {
  EXPECT_EQ(versionIdIn("NAME=\"x\"\nVERSION_ID=\"12\"\nVERSION=\"13\"\n"), "12");
  EXPECT_EQ(versionIdIn("VERSION_ID=22.04"), "22.04");
  EXPECT_EQ(versionIdIn("VERSION_ID='7'\n"), "7");
  EXPECT_EQ(versionIdIn("NAME=rolling\n"), "");
}
