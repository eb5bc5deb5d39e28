#include "zqticker/platform/system/HTTPCacheStore_p.h"

#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::allowLog;
using zq::testing::expectLog;

// A damaged count may ask for more memory than there is: a sanitizer is to answer as the system
// does.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __tsan_default_options() {
  return "allocator_may_return_null=1";
}

namespace {

const QUrl key(u"https://example.org/feed?a=1"_s);

QStringList filesIn(const QString& directory) {
  QStringList files;
  QDirIterator found(directory, QDir::Files, QDirIterator::Subdirectories);
  while (found.hasNext())
    files.append(found.next());
  return files;
}

qint64 sizeOf(const QString& directory) {
  qint64 size = 0;
  for (const QString& file : filesIn(directory))
    size += QFileInfo(file).size();
  return size;
}

QUrl numbered(int i) {
  return QUrl(u"https://example.org/"_s + QString::number(i));
}

class HTTPCacheStoreTest : public ::testing::Test {
 protected:
  QTemporaryDir folder_;
  QString path_ = folder_.filePath(u"a/b"_s);
  HTTPCacheStore store_{path_, 1'000'000};

  QByteArray onlyFile() {
    const QStringList files = filesIn(path_);
    QFile file(files.value(0));
    return files.size() == 1 && file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
  }

  void replaceOnlyFile(const QByteArray& bytes) {
    QFile file(filesIn(path_).value(0));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(bytes);
  }
};

} // namespace

TEST_F(HTTPCacheStoreTest, GivesBackWhatWasWritten) {
  EXPECT_EQ(store_.read(key), std::nullopt);
  EXPECT_TRUE(store_.write(key, {"ab", QByteArrayView("\0c", 2)}));
  EXPECT_EQ(store_.read(key), QByteArray("ab\0c", 4));
  EXPECT_TRUE(store_.write(key, {"new"}));
  EXPECT_EQ(store_.read(key), "new");
  EXPECT_EQ(filesIn(path_).size(), 1);
}

TEST_F(HTTPCacheStoreTest, KeepsAnEmptyValue) {
  EXPECT_TRUE(store_.write(key, {}));
  EXPECT_EQ(store_.read(key), QByteArray());
}

TEST_F(HTTPCacheStoreTest, LeavesTheFragmentOfAKeyAside) {
  store_.write(QUrl(u"https://example.org/a#b"_s), {"value"});
  EXPECT_EQ(store_.read(QUrl(u"https://example.org/a"_s)), "value");
  EXPECT_EQ(store_.read(QUrl(u"https://example.org/a#c"_s)), "value");
}

TEST_F(HTTPCacheStoreTest, RemovesOneOrAll) {
  store_.write(numbered(1), {"1"});
  store_.write(numbered(2), {"2"});
  store_.remove(numbered(1));
  EXPECT_EQ(store_.read(numbered(1)), std::nullopt);
  EXPECT_EQ(store_.read(numbered(2)), "2");
  store_.removeAll();
  EXPECT_EQ(store_.read(numbered(2)), std::nullopt);
  EXPECT_TRUE(filesIn(path_).isEmpty());
}

TEST_F(HTTPCacheStoreTest, OutlivesItsObject) {
  store_.write(key, {"value"});
  HTTPCacheStore later(path_, 1'000'000);
  EXPECT_EQ(later.read(key), "value");
}

TEST_F(HTTPCacheStoreTest, SeesWhatAnotherStoreOnTheFolderDoes) {
  HTTPCacheStore other(path_, 1'000'000);
  store_.write(key, {"one"});
  EXPECT_EQ(other.read(key), "one");
  other.write(key, {"two"});
  EXPECT_EQ(store_.read(key), "two");
  other.remove(key);
  EXPECT_EQ(store_.read(key), std::nullopt);
}

TEST_F(HTTPCacheStoreTest, StaysWithinItsLimitAndKeepsTheNewest) {
  const QByteArray value(30'000, 'v');
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(store_.write(numbered(i), {value}));
    ASSERT_LE(sizeOf(path_), 1'000'000 + 31'000);
  }
  EXPECT_EQ(store_.read(numbered(99)), value);
  EXPECT_EQ(store_.read(numbered(0)), std::nullopt);
}

TEST_F(HTTPCacheStoreTest, CountsTheFilesThatItFindsInItsFolder) {
  store_.write(numbered(0), {QByteArray(500'000, 'v')});
  HTTPCacheStore smaller(path_, 100'000);
  smaller.write(numbered(1), {"small"});
  smaller.write(numbered(2), {"small"});
  EXPECT_LE(sizeOf(path_), 100'000);
}

TEST_F(HTTPCacheStoreTest, DeletesNoFileOfOthersToMakeRoom) {
  QFile other(path_ + u"/program.d"_s);
  ASSERT_TRUE(other.open(QFile::WriteOnly));
  other.write("other");
  other.close();
  for (int i = 0; i < 50; ++i)
    store_.write(numbered(i), {QByteArray(30'000, 'v')});
  store_.removeAll();
  EXPECT_TRUE(other.exists());
}

TEST_F(HTTPCacheStoreTest, AFileThatWasCutOffAnywhereIsAMiss) {
  store_.write(key, {"value"});
  const QByteArray whole = onlyFile();
  ASSERT_FALSE(whole.isEmpty());
  for (qsizetype length = 0; length < whole.size(); ++length) {
    store_.write(key, {"value"});
    replaceOnlyFile(whole.first(length));
    EXPECT_EQ(store_.read(key), std::nullopt) << length;
  }
}

TEST_F(HTTPCacheStoreTest, AFileWithAChangedByteIsAMissOrUnchanged) {
  store_.write(key, {"value"});
  const QByteArray whole = onlyFile();
  ASSERT_FALSE(whole.isEmpty());
  // What Qt says of fields that it cannot read.
  allowLog(u"Trying to construct an instance of an invalid type"_s);
  allowLog(u"qUncompress: Input data is corrupted"_s);
  int misses = 0;
  for (qsizetype i = 0; i < whole.size(); ++i) {
    store_.write(key, {"value"});
    QByteArray changed = whole;
    changed[i] = char(changed[i] ^ 0xFF);
    replaceOnlyFile(changed);
    // The disk cache's own fields hold bytes that decide nothing.
    const auto read = store_.read(key);
    EXPECT_TRUE(!read || *read == "value") << i;
    misses += read ? 0 : 1;
  }
  EXPECT_GT(misses, 25); // the digest and the value at least
}

TEST_F(HTTPCacheStoreTest, AFileUnderAnotherKeysNameIsAMiss) {
  store_.write(numbered(1), {"one"});
  const QByteArray one = onlyFile();
  store_.removeAll();
  store_.write(numbered(2), {"two"});
  replaceOnlyFile(one);
  EXPECT_EQ(store_.read(numbered(2)), std::nullopt);
}

TEST_F(HTTPCacheStoreTest, AFolderInThePlaceOfAFileIsAMiss) {
  store_.write(key, {"value"});
  const QString file = filesIn(path_).value(0);
  QFile::remove(file);
  QDir().mkpath(file + u"/x"_s);
  EXPECT_EQ(store_.read(key), std::nullopt);
}

TEST_F(HTTPCacheStoreTest, GoesOnWhenItsFolderWasDeleted) {
  store_.write(key, {"value"});
  QDir(path_).removeRecursively();
  EXPECT_EQ(store_.read(key), std::nullopt);
  EXPECT_TRUE(store_.write(key, {"again"}));
  EXPECT_EQ(store_.read(key), "again");
}

TEST_F(HTTPCacheStoreTest, LogsOnceThatItsFolderCannotBeWritten) {
  QFile file(folder_.filePath(u"file"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  expectLog(u"zqticker.net: The cache folder"_s);
  HTTPCacheStore store(folder_.filePath(u"file/below"_s), 1'000'000);
  EXPECT_FALSE(store.write(key, {"value"}));
  EXPECT_FALSE(store.write(key, {"value"}));
  EXPECT_EQ(store.read(key), std::nullopt);
  store.remove(key);
  store.removeAll();
}

namespace {

// Writes, reads and removes the same few keys in every thread; thread i uses store i of `stores`.
void hammer(const std::vector<HTTPCacheStore*>& stores) {
  const auto use = [](HTTPCacheStore& store, size_t first) {
    for (size_t i = 0; i < 100; ++i) {
      const QUrl shared = numbered(int(i % 7));
      const QByteArray value = QByteArray::number(i % 7) + QByteArray(2000, 'v');
      if ((i + first) % 5 == 0)
        store.remove(shared);
      store.write(shared, {value});
      const auto read = store.read(shared);
      EXPECT_TRUE(!read || *read == value);
    }
  };
  std::vector<std::thread> threads;
  for (size_t i = 0; i < stores.size(); ++i)
    threads.emplace_back(use, std::ref(*stores[i]), i);
  for (std::thread& thread : threads)
    thread.join();
}

} // namespace

TEST_F(HTTPCacheStoreTest, IsUsedFromSeveralThreads) {
  hammer({&store_, &store_, &store_, &store_});
}

TEST_F(HTTPCacheStoreTest, SharesItsFolderWithStoresOfOtherProcesses) {
  // The disk cache's own words when both replace a file at the same moment.
  allowLog(u"couldn't remove the cache file"_s);
  HTTPCacheStore other(path_, 1'000'000);
  hammer({&store_, &other, &store_, &other});
  store_.write(numbered(1), {"in the end"});
  EXPECT_EQ(other.read(numbered(1)), "in the end");
}
