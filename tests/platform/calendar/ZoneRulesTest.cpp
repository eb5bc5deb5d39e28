#include "zqticker/platform/calendar/ZoneRules_p.h"

#include <gtest/gtest.h>

#include <QtCore/QByteArray>
#include <QtCore/qendian.h>

#include <vector>

using zq::platform::ZoneRules;

namespace {

struct Change {
  qint64 moment;
  char type;
};

template <class T>
void append(QByteArray& data, T value) {
  char bytes[sizeof(T)];
  qToBigEndian(value, bytes);
  data.append(bytes, sizeof(T));
}

QByteArray header(char version, quint32 leapSeconds, quint32 changes, quint32 types) {
  QByteArray data("TZif");
  data.append(version).append(15, '\0');
  for (const quint32 count : {0U, 0U, leapSeconds, changes, types, 4U})
    append(data, count);
  return data;
}

// A file of the database; its first block has nothing but one type.
QByteArray file(const std::vector<qint32>& offsets, const std::vector<Change>& changes,
                const QByteArray& rule, quint32 leapSeconds = 0) {
  QByteArray data = header('2', 0, 0, 1);
  data.append(6 + 4, '\0');
  data += header('2', leapSeconds, static_cast<quint32>(changes.size()),
                 static_cast<quint32>(offsets.size()));
  for (const Change& change : changes)
    append(data, change.moment);
  for (const Change& change : changes)
    data.append(change.type);
  for (const qint32 offset : offsets) {
    append(data, offset);
    data.append(2, '\0');
  }
  data.append(4, 'A').append(static_cast<int>(leapSeconds) * 12, '\0');
  return data + '\n' + rule + '\n';
}

} // namespace

TEST(ZoneRules, HaveTheFirstTypeBeforeAllChanges) {
  const ZoneRules rules = ZoneRules::read(file({100, 200}, {{1000, 1}, {2000, 0}}, "")).value();
  EXPECT_EQ(rules.offsetAt(std::numeric_limits<qint64>::min()), 100);
  EXPECT_EQ(rules.offsetAt(999), 100);
  EXPECT_EQ(rules.offsetAt(1000), 200);
  EXPECT_EQ(rules.offsetAt(1999), 200);
  EXPECT_EQ(rules.offsetAt(2000), 100);
  EXPECT_EQ(rules.offsetAt(std::numeric_limits<qint64>::max()), 100);
}

TEST(ZoneRules, GoOnByTheRuleAfterTheLastChange) {
  const ZoneRules rules = ZoneRules::read(file({100, 200}, {{1000, 1}}, "AAA-2")).value();
  EXPECT_EQ(rules.offsetAt(999), 100);
  EXPECT_EQ(rules.offsetAt(1000), 7200);
  EXPECT_EQ(ZoneRules::read(file({100}, {}, "AAA-2")).value().offsetAt(0), 7200);
}

TEST(ZoneRules, FindTheOffsetOfATimeOnTheClock) {
  // An hour is skipped at 100,000 and comes twice at 500,000.
  const ZoneRules rules =
      ZoneRules::read(file({0, 3600}, {{100'000, 1}, {500'000, 0}}, "")).value();
  EXPECT_EQ(rules.offsetOfLocal(99'999), 0);
  EXPECT_EQ(rules.offsetOfLocal(100'000), 0);
  EXPECT_EQ(rules.offsetOfLocal(103'599), 0);
  EXPECT_EQ(rules.offsetOfLocal(103'600), 3600);
  EXPECT_EQ(rules.offsetOfLocal(499'999), 3600);
  EXPECT_EQ(rules.offsetOfLocal(500'000), 0);
  EXPECT_EQ(rules.offsetOfLocal(503'600), 0);
}

TEST(ZoneRules, AreNotReadFromABrokenFile) {
  const QByteArray whole = file({100, 200}, {{1000, 1}, {2000, 0}}, "AAA-2");
  ASSERT_TRUE(ZoneRules::read(whole));
  const qsizetype ruleStart = whole.lastIndexOf("\nAAA");
  for (qsizetype size = 0; size < ruleStart; ++size)
    EXPECT_FALSE(ZoneRules::read(whole.first(size))) << size;
  QByteArray old = whole;
  old[4] = '\0';
  EXPECT_FALSE(ZoneRules::read(old));
  QByteArray other = whole;
  other[0] = 'X';
  EXPECT_FALSE(ZoneRules::read(other));
  EXPECT_FALSE(ZoneRules::read(file({}, {}, "")));
  EXPECT_FALSE(ZoneRules::read(file({100}, {{1000, 1}}, "")));           // no such type
  EXPECT_FALSE(ZoneRules::read(file({100, 200}, {{2, 1}, {1, 0}}, ""))); // not in order
  EXPECT_FALSE(ZoneRules::read(file({100'000}, {}, "")));                // more than a day
  EXPECT_FALSE(ZoneRules::read(file({std::numeric_limits<qint32>::min()}, {}, "")));
  EXPECT_FALSE(ZoneRules::read(file({100}, {}, "nonsense")));
  EXPECT_FALSE(ZoneRules::read(file({100}, {}, "", 1))); // counts leap seconds
}

TEST(ZoneRules, SurviveFilesWithWrongCounts) {
  const QByteArray whole = file({100, 200}, {{1000, 1}, {2000, 0}}, "AAA-2");
  for (qsizetype index = 0; index < whole.size(); ++index)
    for (const char byte : {'\0', '\x7f', '\xff'}) {
      QByteArray changed = whole;
      changed[index] = byte;
      if (const std::optional<ZoneRules> rules = ZoneRules::read(changed)) {
        EXPECT_LT(std::abs(rules->offsetAt(1500)), 100'000);
      }
    }
}
