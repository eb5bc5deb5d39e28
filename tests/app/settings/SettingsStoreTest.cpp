// Settings as a program has them, and how it learns of their changes.
#include "app/settings/SettingsStore.h"

#include "app/commands/failures.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::testing;

namespace {
class StoredSettings : public ::testing::Test {
 protected:
  QString path() const { return folder_.filePath(u"zqticker/settings.json"_s); }
  QString autostartPath() const { return folder_.filePath(u"autostart/ticker.desktop"_s); }
  SettingsStore* makeStore() {
    store_ = std::make_unique<SettingsStore>(path(), autostartPath());
    QObject::connect(store_.get(), &SettingsStore::changed, store_.get(), [this] { ++changes_; });
    return store_.get();
  }
  void write(const QByteArray& bytes) const {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path()).path()));
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  // As editors and other programs do.
  void writeAndRename(const QByteArray& bytes) const {
    const QString other = path() + u".new"_s;
    QFile file(other);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    ASSERT_EQ(
        std::rename(QFile::encodeName(other).constData(), QFile::encodeName(path()).constData()),
        0);
  }
  QStringList filesBeside() const { return QFileInfo(path()).dir().entryList(QDir::Files); }

  QTemporaryDir folder_;
  std::unique_ptr<SettingsStore> store_;
  int changes_ = 0;
};
} // namespace

TEST(SettingsStore, LiesWhereDesktopSettingsLie) {
  const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME");
  EXPECT_EQ(SettingsStore::usualFile(), folder + u"/zqticker/settings.json"_s);
  EXPECT_EQ(SettingsStore::usualAutostartFile(),
            folder + u"/autostart/org.zqticker.Ticker.desktop"_s);
}

TEST_F(StoredSettings, AreTheDefaultsWithoutAFile) {
  EXPECT_EQ(makeStore()->settings(), Settings());
  EXPECT_FALSE(QFile::exists(QFileInfo(path()).path()));
}

TEST_F(StoredSettings, AreThereForTheNextProgram) {
  makeStore()->change({{u"speed"_s, {u"90"_s}}, {u"direction"_s, {u"vertical"_s}}});
  EXPECT_EQ(store_->settings().speed, 90);
  EXPECT_EQ(changes_, 1);
  makeStore();
  EXPECT_EQ(store_->settings().speed, 90);
  EXPECT_EQ(store_->settings().direction, ScrollDirection::Up);
}

TEST_F(StoredSettings, KeepTheChangesOfOthers) {
  SettingsStore other(path(), autostartPath());
  makeStore()->change({{u"speed"_s, {u"90"_s}}});
  other.change({{u"height"_s, {u"40"_s}}});
  EXPECT_EQ(other.settings().speed, 90);
  EXPECT_EQ(makeStore()->settings().height, 40);
}

TEST_F(StoredSettings, ChangeAllOrNothing) {
  makeStore();
  EXPECT_THROW(store_->change({{u"speed"_s, {u"90"_s}}, {u"height"_s, {u"high"_s}}}), UsageError);
  EXPECT_THROW(store_->change({{u"speed"_s, {u"90"_s}}, {u"velocity"_s, {u"1"_s}}}), UsageError);
  EXPECT_THROW(store_->reset({u"velocity"_s}), UsageError);
  EXPECT_EQ(store_->settings(), Settings());
  EXPECT_FALSE(QFile::exists(path()));
  EXPECT_EQ(changes_, 0);
}

TEST_F(StoredSettings, AreReset) {
  write(R"({"speed": 90, "height": 40, "of another version": 1})");
  makeStore()->reset({u"speed"_s});
  EXPECT_EQ(store_->settings().speed, 60);
  EXPECT_EQ(store_->settings().height, 40);
  store_->reset();
  EXPECT_EQ(store_->settings(), Settings());
  EXPECT_EQ(SettingsFile(path()).read().object.keys(), QStringList{u"of another version"_s});
}

TEST_F(StoredSettings, LeaveOutSingleWrongValues) {
  write(R"({"speed": -1, "height": "high", "width": 100})");
  expectLog(u"settings: speed -1: must be between 0.1 and 100000; left out"_s);
  expectLog(u"settings: height: must be a number; left out"_s);
  makeStore();
  EXPECT_EQ(store_->settings().speed, 60);
  EXPECT_EQ(store_->settings().height, std::nullopt);
  EXPECT_EQ(store_->settings().width, 100);
  // Told once, also where another value is changed.
  store_->change({{u"width"_s, {u"200"_s}}});
  EXPECT_EQ(SettingsFile(path()).read().object[u"height"_s], QJsonValue(u"high"_s));
}

TEST_F(StoredSettings, AreTheDefaultsWhereTheFileIsGarbage) {
  write("garbage");
  expectLog(u"the default settings are used, the file is kept as "_s + path() + u".broken-"_s);
  EXPECT_EQ(makeStore()->settings(), Settings());
  ASSERT_EQ(filesBeside().size(), 1);
  EXPECT_TRUE(filesBeside().first().startsWith(u"settings.json.broken-"_s));
}

TEST_F(StoredSettings, AreTheDefaultsWhereTheFileCannotBeRead) {
  ASSERT_TRUE(QDir().mkpath(path()));
  expectLog(u"cannot read: not a file; the default settings are used"_s);
  EXPECT_EQ(makeStore()->settings(), Settings());
  EXPECT_THROW(store_->change({{u"speed"_s, {u"90"_s}}}), RunTimeError);
}

TEST_F(StoredSettings, FollowTheirFile) {
  makeStore()->watch();
  SettingsStore(path(), autostartPath()).change({{u"speed"_s, {u"90"_s}}});
  EXPECT_TRUE(waitFor([&] { return store_->settings().speed == 90; })) << "made";
  writeAndRename(R"({"speed": 100})");
  EXPECT_TRUE(waitFor([&] { return store_->settings().speed == 100; })) << "replaced";
  write(R"({"speed": 110})");
  EXPECT_TRUE(waitFor([&] { return store_->settings().speed == 110; })) << "written in place";
  SettingsStore(path(), autostartPath()).reset();
  EXPECT_TRUE(waitFor([&] { return store_->settings() == Settings(); }));
  QFile::remove(path());
  write(R"({"speed": 120})");
  EXPECT_TRUE(waitFor([&] { return store_->settings().speed == 120; })) << "removed, made anew";
  EXPECT_EQ(changes_, 5);
}

TEST_F(StoredSettings, StayWhileTheirFileIsBroken) {
  write(R"({"speed": 90})");
  makeStore()->watch();
  expectLog(u"not JSON: invalid termination by number; the settings stay as they were"_s);
  write(R"({"speed": 100)");
  // Reads the file, and finds it broken.
  store_->readAgain();
  EXPECT_EQ(store_->settings().speed, 90);
  EXPECT_EQ(filesBeside(), QStringList{u"settings.json"_s}) << "its owner is still at it";
  write(R"({"speed": 100})");
  EXPECT_TRUE(waitFor([&] { return store_->settings().speed == 100; }));
}

TEST_F(StoredSettings, KeepAutostartInTheSessionsFolder) {
  makeStore()->change({{u"autostart"_s, {u"on"_s}}});
  EXPECT_TRUE(store_->settings().startsWithSession);
  EXPECT_TRUE(QFile::exists(autostartPath()));
  EXPECT_FALSE(QFile::exists(path())) << "and only there";
  EXPECT_TRUE(makeStore()->settings().startsWithSession);
  store_->reset();
  EXPECT_FALSE(makeStore()->settings().startsWithSession);
  EXPECT_FALSE(QFile::exists(autostartPath()));
}
