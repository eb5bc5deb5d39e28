#include "zqticker/platform/system/inotify_limits_p.h"

#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

TEST(InotifyLimits, AreNamedWithTheCommandThatRaisesThem) {
  expectLog(u"\"sysctl fs.inotify.max_user_watches=1048576\""_s);
  EXPECT_TRUE(logInotifyLimit(ENOSPC));
  expectLog(u"\"sysctl fs.inotify.max_user_instances=1024\""_s);
  EXPECT_TRUE(logInotifyLimit(EMFILE));
  expectLog(u"\"sysctl fs.file-max=1048576\""_s);
  EXPECT_TRUE(logInotifyLimit(ENFILE));
}

TEST(InotifyLimits, AreToldFromThatOfOpenFiles) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const int next = ::dup(0);
  ::close(next);
  const rlimit full{rlim_t(next), before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &full), 0);
  expectLog(u"the limit of open files is %1. Raise it with \"ulimit -n"_s.arg(next));
  EXPECT_TRUE(logInotifyLimit(EMFILE));
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
}

TEST(InotifyLimits, AreNoOtherErrors) {
  for (const int error : {0, ENOENT, EACCES, ENOTDIR, ENOMEM})
    EXPECT_FALSE(logInotifyLimit(error)) << error;
}
