// Settings by name.
#include "app/settings/setting_table.h"

#include "app/commands/failures.h"
#include "app/commands/strip_values.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
Settings withSetting(const QString& name, const QStringList& values) {
  Settings settings;
  setSetting(settings, settingNamed(name), values);
  return settings;
}

std::string failure(const QString& name, const QStringList& values) {
  try {
    withSetting(name, values);
  } catch (const UsageError& error) {
    return error.message().toStdString();
  }
  return "none";
}

QStringList valuesOf(const QString& name, const Settings& settings) {
  return settingNamed(name).valuesOf(settings);
}

// What `value` in the file makes of a setting that was something else before.
QStringList complaintsAbout(const QString& name, const QJsonValue& value) {
  Settings settings;
  const QStringList complaints = readSetting(settings, settingNamed(name), value);
  EXPECT_EQ(settings, Settings());
  return complaints;
}

// A value of each setting that is not its default.
const std::vector<std::pair<QString, QStringList>> Chosen{
    {u"direction"_s, {u"down"_s}},
    {u"speed"_s, {u"12.5"_s}},
    {u"font"_s, {u"DejaVu Sans 18"_s}},
    {u"color"_s, {u"#000080"_s}},
    {u"background"_s, {u"#80ffffe0"_s}},
    {u"position"_s, {u"left"_s}},
    {u"screen"_s, {u"HDMI-1"_s}},
    {u"height"_s, {u"300"_s}},
    {u"width"_s, {u"200.5"_s}},
    {u"autoscale"_s, {u"on"_s}},
    {u"fade"_s, {u"32"_s}},
    {u"control-bar"_s, {u"off"_s}},
    {u"pause-on-hover"_s, {u"off"_s}},
    {u"reduced-motion"_s, {u"on"_s}},
    {u"feeds"_s, {u"https://example.org/a"_s, u"file:///tmp/b.xml"_s}},
    {u"feed-items"_s, {u"3"_s}},
    {u"feed-interval"_s, {u"7.5"_s}},
    {u"autostart"_s, {u"on"_s}}};
} // namespace

TEST(SettingTable, HasTheSettingsEachOnce) {
  QSet<QString> names;
  for (const SettingSpec& spec : settingTable())
    names.insert(spec.name);
  EXPECT_EQ(std::size_t(names.size()), settingTable().size());
  EXPECT_EQ(Chosen.size(), settingTable().size()) << "every setting is tested below";
}

TEST(SettingTable, GivesBackWhatItTook) {
  Settings all;
  for (const auto& [name, values] : Chosen) {
    const Settings settings = withSetting(name, values);
    EXPECT_NE(settings, Settings()) << name.toStdString();
    EXPECT_EQ(valuesOf(name, settings), values) << name.toStdString();
    setSetting(all, settingNamed(name), values);
  }
  for (const auto& [name, values] : Chosen)
    EXPECT_EQ(valuesOf(name, all), values) << name.toStdString() << " beside the others";
}

TEST(SettingTable, GivesBackWhatStandsInTheFile) {
  for (const auto& [name, values] : Chosen) {
    const SettingSpec& spec = settingNamed(name);
    const Settings settings = withSetting(name, values);
    Settings read;
    EXPECT_EQ(readSetting(read, spec, jsonOfSetting(spec, settings)), QStringList());
    EXPECT_EQ(read, settings) << name.toStdString();
  }
}

TEST(SettingTable, WritesValuesAsTheirTypes) {
  const auto json = [](const QString& name, const QStringList& values) {
    return jsonOfSetting(settingNamed(name), withSetting(name, values));
  };
  EXPECT_EQ(json(u"speed"_s, {u"12.5"_s}), QJsonValue(12.5));
  EXPECT_EQ(json(u"autoscale"_s, {u"on"_s}), QJsonValue(true));
  EXPECT_EQ(json(u"color"_s, {u"navy"_s}), QJsonValue(u"#000080"_s));
  EXPECT_EQ(json(u"feeds"_s, {u"https://a/"_s}), QJsonValue(QJsonArray{u"https://a/"_s}));
  EXPECT_TRUE(json(u"height"_s, {u"automatic"_s}).isUndefined());
  EXPECT_TRUE(json(u"screen"_s, {u"primary"_s}).isUndefined());
}

TEST(SettingTable, LeavesToTheProgramWhatIsAutomatic) {
  for (const QString& name :
       {u"font"_s, u"color"_s, u"position"_s, u"height"_s, u"width"_s, u"feed-interval"_s}) {
    EXPECT_EQ(withSetting(name, {u"automatic"_s}), Settings()) << name.toStdString();
    EXPECT_EQ(valuesOf(name, Settings()), QStringList{u"automatic"_s}) << name.toStdString();
  }
  EXPECT_EQ(valuesOf(u"screen"_s, Settings()), QStringList{u"primary"_s});
}

TEST(SettingTable, TakesNoValueAsTheDefault) {
  for (const auto& [name, values] : Chosen) {
    Settings settings = withSetting(name, values);
    setSetting(settings, settingNamed(name), {});
    EXPECT_EQ(settings, Settings()) << name.toStdString();
  }
}

TEST(SettingTable, ReplacesAList) {
  Settings settings = withSetting(u"feeds"_s, {u"https://a/"_s});
  setSetting(settings, settingNamed(u"feeds"_s), {u"https://b/"_s, u"https://a/"_s});
  EXPECT_EQ(settings.feeds.feeds,
            (std::vector<QUrl>{QUrl(u"https://b/"_s), QUrl(u"https://a/"_s)}));
}

TEST(SettingTable, RefusesWhatTheCommandLineRefuses) {
  EXPECT_EQ(failure(u"speed"_s, {u"fast"_s}), "speed fast: not a number");
  EXPECT_EQ(failure(u"speed"_s, {u"0"_s}), "speed 0: must be between 0.1 and 100000");
  EXPECT_EQ(failure(u"speed"_s, {u"nan"_s}), "speed nan: not a number");
  EXPECT_EQ(failure(u"direction"_s, {u"back"_s}),
            "direction back: must be left or right or up or down or horizontal or vertical");
  EXPECT_EQ(failure(u"position"_s, {u"middle"_s}),
            "position middle: must be top or bottom or left or right or floating or automatic");
  EXPECT_EQ(failure(u"reduced-motion"_s, {u"maybe"_s}),
            "reduced-motion maybe: must be on or off or automatic");
  EXPECT_EQ(failure(u"color"_s, {u"nocolor"_s}),
            "color nocolor: not a color (write a name such as navy, or #rrggbb, or #aarrggbb)");
  EXPECT_EQ(failure(u"background"_s, {u"automatic"_s}),
            "background automatic: not a color (write a name such as navy, or #rrggbb, or "
            "#aarrggbb)");
  EXPECT_EQ(failure(u"height"_s, {u"0"_s}), "height 0: must be between 1 and 16384");
  EXPECT_EQ(failure(u"font"_s, {u" "_s}), "font  : the font name is empty");
  EXPECT_EQ(failure(u"screen"_s, {u""_s}), "screen : the name of the screen is empty");
  EXPECT_EQ(failure(u"autoscale"_s, {u"true"_s}), "autoscale true: must be on or off");
  EXPECT_EQ(failure(u"feeds"_s, {u"https://a/"_s, u"feed.xml"_s}),
            "feeds feed.xml: not an address (write https://..., http://... or file:///...)");
  EXPECT_EQ(failure(u"feeds"_s, {u"https://a/"_s, u"https://a/"_s}),
            "feeds https://a/: given twice");
  EXPECT_EQ(failure(u"feed-items"_s, {u"1.5"_s}), "feed-items 1.5: not a whole number");
  EXPECT_EQ(failure(u"speed"_s, {u"1"_s, u"2"_s}), "speed: takes one value, not 2");
  EXPECT_EQ(failure(u"velocity"_s, {u"1"_s}),
            "velocity: no such setting (see zqticker settings --help)");
}

TEST(SettingTable, ChangesNothingWhereAValueIsWrong) {
  Settings settings = withSetting(u"feeds"_s, {u"https://a/"_s});
  const Settings before = settings;
  EXPECT_THROW(setSetting(settings, settingNamed(u"feeds"_s), {u"https://b/"_s, u"nonsense"_s}),
               UsageError);
  EXPECT_EQ(settings, before);
}

TEST(SettingTable, TakesTheOlderWordsForDirections) {
  EXPECT_EQ(withSetting(u"direction"_s, {u"horizontal"_s}).direction, ScrollDirection::Left);
  EXPECT_EQ(withSetting(u"direction"_s, {u"vertical"_s}).direction, ScrollDirection::Up);
  Settings settings;
  EXPECT_EQ(readSetting(settings, settingNamed(u"direction"_s), u"vertical"_s), QStringList());
  EXPECT_EQ(settings.direction, ScrollDirection::Up);
}

TEST(SettingTable, TellsWhatIsWrongInTheFile) {
  EXPECT_EQ(complaintsAbout(u"speed"_s, u"fast"_s), QStringList{u"speed: must be a number"_s});
  EXPECT_EQ(complaintsAbout(u"speed"_s, -1),
            QStringList{u"speed -1: must be between 0.1 and 100000"_s});
  EXPECT_EQ(complaintsAbout(u"autoscale"_s, u"on"_s),
            QStringList{u"autoscale: must be true or false"_s});
  EXPECT_EQ(complaintsAbout(u"font"_s, 12), QStringList{u"font: must be a text"_s});
  EXPECT_EQ(complaintsAbout(u"feeds"_s, u"https://a/"_s), QStringList{u"feeds: must be a list"_s});
  EXPECT_EQ(complaintsAbout(u"direction"_s, QJsonObject()),
            QStringList{u"direction: must be a text"_s});
  EXPECT_EQ(complaintsAbout(u"speed"_s, QJsonValue::Null), QStringList());
}

TEST(SettingTable, TakesTheRightElementsOfAList) {
  Settings settings;
  EXPECT_EQ(readSetting(settings, settingNamed(u"feeds"_s),
                        QJsonArray{u"https://a/"_s, 3, u"nonsense"_s, u"https://b/"_s}),
            (QStringList{u"feeds: must be a list"_s,
                         u"feeds nonsense: not an address (write https://..., http://... or "
                         u"file:///...)"_s}));
  EXPECT_EQ(settings.feeds.feeds,
            (std::vector<QUrl>{QUrl(u"https://a/"_s), QUrl(u"https://b/"_s)}));
}

TEST(SettingTable, HasNoFadeForOff) {
  for (const QString& none : {u"off"_s, u"0"_s}) {
    const Settings settings = withSetting(u"fade"_s, {none});
    EXPECT_EQ(settings.fade, 0);
    EXPECT_EQ(valuesOf(u"fade"_s, settings), QStringList{u"off"_s});
  }
  Settings settings = withSetting(u"fade"_s, {u"30"_s});
  EXPECT_EQ(readSetting(settings, settingNamed(u"fade"_s), u"off"_s), QStringList());
  EXPECT_EQ(settings.fade, 0);
  EXPECT_EQ(failure(u"fade"_s, {u"long"_s}), "fade long: must be a number of points, or off");
}
