// "zqticker settings" as a process, without a display and without a bus.
#include "tests/app/Program.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
class SettingsCommand : public ::testing::Test {
 protected:
  SettingsCommand() : environment_(plainEnvironment()) {
    environment_.insert(u"XDG_CONFIG_HOME"_s, folder_.path());
    environment_.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
  }

  Outcome run(const QStringList& arguments) {
    return runZqticker(QStringList{u"settings"_s} + arguments, {}, environment_);
  }
  QByteArray output(const QStringList& arguments) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    return outcome.output;
  }
  QString path() const { return folder_.filePath(u"zqticker/settings.json"_s); }

  QTemporaryDir folder_;
  QProcessEnvironment environment_;
};
} // namespace

TEST_F(SettingsCommand, GetsWhatItSet) {
  EXPECT_EQ(output({u"get"_s, u"speed"_s}), "60\n");
  EXPECT_EQ(output({u"set"_s, u"speed"_s, u"12.5"_s}), "");
  EXPECT_EQ(output({u"get"_s, u"speed"_s}), "12.5\n");
  output({u"set"_s, u"feeds"_s, u"https://a/"_s, u"https://b/"_s});
  EXPECT_EQ(output({u"get"_s, u"feeds"_s}), "https://a/\nhttps://b/\n");
  EXPECT_EQ(output({u"get"_s, u"speed"_s}), "12.5\n") << "kept";
  output({u"reset"_s, u"speed"_s});
  EXPECT_EQ(output({u"get"_s, u"speed"_s}), "60\n");
  output({u"reset"_s});
  EXPECT_EQ(output({u"get"_s, u"feeds"_s}), "");
}

TEST_F(SettingsCommand, ListsAllSettings) {
  output({u"set"_s, u"color"_s, u"navy"_s});
  const QByteArray lines = output({u"list"_s});
  EXPECT_TRUE(lines.startsWith("direction       left\nspeed           60\n")) << lines.constData();
  EXPECT_TRUE(lines.contains("\ncolor           #000080\n"));
  EXPECT_TRUE(lines.endsWith("\nautostart       off\n"));
  const QJsonObject json = QJsonDocument::fromJson(output({u"list"_s, u"--json"_s})).object();
  EXPECT_EQ(json[u"speed"_s], QJsonValue(60));
  EXPECT_EQ(json[u"color"_s], QJsonValue(u"#000080"_s));
  EXPECT_TRUE(json[u"height"_s].isNull());
  EXPECT_TRUE(json.contains(u"height"_s));
}

TEST_F(SettingsCommand, RefusesWhatIsWrong) {
  const auto failure = [&](const QStringList& arguments) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    return outcome.errors;
  };
  EXPECT_EQ(failure({u"set"_s, u"speed"_s, u"fast"_s}), "zqticker: speed fast: not a number\n");
  EXPECT_EQ(failure({u"set"_s, u"speed"_s}),
            "zqticker: VALUE: missing (see zqticker settings set --help)\n");
  EXPECT_EQ(failure({u"set"_s, u"velocity"_s, u"1"_s}),
            "zqticker: velocity: no such setting (see zqticker settings --help)\n");
  EXPECT_EQ(failure({u"get"_s}), "zqticker: NAME: missing (see zqticker settings get --help)\n");
  EXPECT_EQ(failure({u"change"_s}),
            "zqticker: change: unexpected argument (see zqticker settings --help)\n");
  EXPECT_EQ(failure({u"list"_s, u"all"_s}),
            "zqticker: all: unexpected argument (see zqticker settings list --help)\n");
  EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(SettingsCommand, RefusesAFontThatIsNotThere) {
  const Outcome outcome = run({u"set"_s, u"font"_s, u"No Such Font 12"_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: font No Such Font 12: unknown font\n");
  output({u"set"_s, u"font"_s, u"DejaVu Sans 18"_s});
  EXPECT_EQ(output({u"get"_s, u"font"_s}), "DejaVu Sans 18\n");
}

TEST_F(SettingsCommand, KeepsGarbageAsideAndSaysSoOnce) {
  ASSERT_TRUE(QDir(folder_.path()).mkdir(u"zqticker"_s));
  QFile file(path());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("garbage");
  file.close();
  const Outcome outcome = run({u"get"_s, u"speed"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "60\n");
  EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
  EXPECT_TRUE(outcome.errors.contains("the default settings are used, the file is kept as "));
  EXPECT_EQ(output({u"get"_s, u"speed"_s}), "60\n") << "and is quiet then";
}

TEST_F(SettingsCommand, OpensNoWindowWithoutADisplay) {
  const Outcome outcome = run({});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: no display: the settings window needs one (see zqticker "
                            "settings set --help)\n");
}

TEST_F(SettingsCommand, SwitchesAutostart) {
  const QString entry = folder_.filePath(u"autostart/org.zqticker.Ticker.desktop"_s);
  output({u"set"_s, u"autostart"_s, u"on"_s});
  EXPECT_TRUE(QFile::exists(entry));
  EXPECT_EQ(output({u"get"_s, u"autostart"_s}), "on\n");
  output({u"set"_s, u"autostart"_s, u"off"_s});
  EXPECT_FALSE(QFile::exists(entry));
}

TEST_F(SettingsCommand, HelpsWithEveryAction) {
  for (const QString& action : {u"list"_s, u"get"_s, u"set"_s, u"reset"_s}) {
    const QByteArray help = output({action, u"--help"_s});
    EXPECT_TRUE(QString::fromUtf8(help).startsWith(u"Usage: zqticker settings "_s + action));
  }
  EXPECT_TRUE(output({u"--help"_s}).contains("settings reset"));
  const QByteArray names = output({u"list"_s, u"--help"_s});
  EXPECT_TRUE(names.contains("feed-interval")) << names.constData();
}
