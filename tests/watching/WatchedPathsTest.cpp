#include "zqticker/watching/WatchedPaths_p.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>

using namespace Qt::StringLiterals;

TEST(WatchedPaths, KeepsTheOrderInWhichTheyWereAdded) {
  WatchedPaths watched;
  EXPECT_TRUE(watched.paths().isEmpty());
  watched.append(u"b"_s, 1);
  watched.append(u"a"_s, 2);
  watched.append(u"b"_s, 3);
  EXPECT_EQ(watched.paths(), QStringList({u"b"_s, u"a"_s, u"b"_s}));
  EXPECT_EQ(watched.takeAll(), std::vector<int>({1, 2, 3}));
  EXPECT_TRUE(watched.paths().isEmpty());
  EXPECT_TRUE(watched.takeAll().empty());
}

TEST(WatchedPaths, GivesTheDescriptorOfTheFirstOfEqualPaths) {
  WatchedPaths watched;
  for (int i = 0; i < 4; ++i)
    watched.append(u"same"_s, i);
  watched.append(u"other"_s, 4);
  EXPECT_EQ(watched.takeFirst(u"missing"_s), std::nullopt);
  EXPECT_EQ(watched.takeFirst(u"same"_s), 0);
  EXPECT_EQ(watched.takeFirst(u"same"_s), 1);
  watched.append(u"same"_s, 5);
  EXPECT_EQ(watched.paths(), QStringList({u"same"_s, u"same"_s, u"other"_s, u"same"_s}));
  EXPECT_EQ(watched.takeFirst(u"same"_s), 2);
  EXPECT_EQ(watched.takeFirst(u"same"_s), 3);
  EXPECT_EQ(watched.takeFirst(u"same"_s), 5);
  EXPECT_EQ(watched.takeFirst(u"same"_s), std::nullopt);
  EXPECT_EQ(watched.takeAll(), std::vector<int>({4}));
}

TEST(WatchedPaths, TellsPathsApartWhoseHashesAreEqual) {
  QHash<quint32, QString> byHash;
  QString a = u"0"_s;
  QString b;
  // Among some hundred thousand there are such pairs.
  for (int i = 1; b.isEmpty(); ++i) {
    QString& known = byHash[quint32(qHash(a))];
    if (known.isEmpty())
      known = std::exchange(a, QString::number(i));
    else
      b = known;
  }
  ASSERT_NE(a, b);
  WatchedPaths watched;
  watched.append(a, 1);
  watched.append(b, 2);
  watched.append(a, 3);
  watched.append(b, 4);
  watched.append(u"other"_s, 5);
  EXPECT_EQ(watched.takeFirst(b), 2); // between others
  EXPECT_EQ(watched.takeFirst(b), 4); // the last
  EXPECT_EQ(watched.takeFirst(b), std::nullopt);
  watched.append(b, 6);
  EXPECT_EQ(watched.paths(), QStringList({a, a, u"other"_s, b}));
  EXPECT_EQ(watched.takeFirst(a), 1); // the first
  EXPECT_EQ(watched.takeFirst(a), 3);
  EXPECT_EQ(watched.takeFirst(a), std::nullopt);
  EXPECT_EQ(watched.takeAll(), std::vector<int>({5, 6}));
}

// The same changes to two plain arrays of the same length.
TEST(WatchedPaths, BehavesLikeTwoParallelArrays) {
  WatchedPaths watched;
  QStringList paths;
  std::vector<int> descriptors;
  std::mt19937 random(1);
  for (int i = 0; i < 20'000; ++i) {
    const QString path = QString::number(random() % 50);
    // Grows, then shrinks, over and over.
    if (random() % 10 < (i / 1000 % 2 ? 3u : 7u)) {
      watched.append(path, i);
      paths.append(path);
      descriptors.push_back(i);
      continue;
    }
    const qsizetype index = paths.indexOf(path);
    const std::optional<int> taken = watched.takeFirst(path);
    if (index < 0) {
      EXPECT_EQ(taken, std::nullopt);
      continue;
    }
    EXPECT_EQ(taken, descriptors.at(std::size_t(index)));
    paths.removeAt(index);
    descriptors.erase(descriptors.begin() + index);
    if (i % 100 != 0)
      continue;
    EXPECT_EQ(watched.paths(), paths);
  }
  EXPECT_EQ(watched.paths(), paths);
  EXPECT_EQ(watched.takeAll(), descriptors);
}
