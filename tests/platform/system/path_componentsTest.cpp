#include "zqticker/platform/system/path_components.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(PathComponents, SplitAtTheLastSlash) {
  EXPECT_EQ(lastPathComponent(u"/tmp/a.txt"_s), u"a.txt");
  EXPECT_EQ(deletingLastPathComponent(u"/tmp/a.txt"_s), u"/tmp");
  EXPECT_EQ(lastPathComponent(u"a.txt"_s), u"a.txt");
  EXPECT_EQ(deletingLastPathComponent(u"a.txt"_s), u"");
  EXPECT_EQ(deletingLastPathComponent(u"/a.txt"_s), u"/");
}

TEST(PathComponents, DoNotCountSlashesAtTheEndAndRepeatedOnes) {
  EXPECT_EQ(lastPathComponent(u"/tmp/photos//"_s), u"photos");
  EXPECT_EQ(deletingLastPathComponent(u"/tmp//photos/"_s), u"/tmp");
}

TEST(PathComponents, KnowTheRootAndTheEmptyPath) {
  EXPECT_EQ(lastPathComponent(u"//"_s), u"/");
  EXPECT_EQ(deletingLastPathComponent(u"/"_s), u"/");
  EXPECT_EQ(lastPathComponent(u""_s), u"");
  EXPECT_EQ(deletingLastPathComponent(u""_s), u"");
}

TEST(PathComponents, AreJoinedByOneSlash) {
  EXPECT_EQ(appendingPathComponent(u"/tmp"_s, u"a"_s), u"/tmp/a");
  EXPECT_EQ(appendingPathComponent(u"/"_s, u"a"_s), u"/a");
  EXPECT_EQ(appendingPathComponent(u""_s, u"a"_s), u"a");
  EXPECT_EQ(appendingPathComponent(u"/tmp"_s, u""_s), u"/tmp");
}

TEST(PathExtension, FollowsTheLastPoint) {
  EXPECT_EQ(pathExtension(u"archive.tar.gz"_s), u"gz");
  EXPECT_EQ(deletingPathExtension(u"archive.tar.gz"_s), u"archive.tar");
  EXPECT_EQ(appendingPathExtension(u"archive.tar"_s, u"gz"_s), u"archive.tar.gz");
}

TEST(PathExtension, IsMissingWithoutAPointAndAfterLeadingPointsOnly) {
  for (const QString& name : {u"photos"_s, u".profile"_s, u"."_s, u".."_s, u"..x"_s, u""_s}) {
    EXPECT_EQ(pathExtension(name), u"") << name.toStdString();
    EXPECT_EQ(deletingPathExtension(name), name) << name.toStdString();
  }
  EXPECT_EQ(pathExtension(u".a.txt"_s), u"txt");
}

TEST(PathExtension, CanBeEmptyAndIsNotAppendedThen) {
  EXPECT_EQ(pathExtension(u"photos."_s), u"");
  EXPECT_EQ(deletingPathExtension(u"photos."_s), u"photos");
  EXPECT_EQ(appendingPathExtension(u"photos"_s, u""_s), u"photos");
}
