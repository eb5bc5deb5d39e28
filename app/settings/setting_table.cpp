#include "app/settings/setting_table.h"

#include "app/commands/failures.h"
#include "app/commands/strip_values.h"

#include <QtCore/QJsonArray>
#include <QtCore/QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
using Kind = SettingSpec::Kind;

const QString Automatic = u"automatic"_s;
const QString Primary = u"primary"_s;
const QString Off = u"off"_s; // of a number, which is 0 then
const QString AutostartName = u"autostart"_s;

bool isAutomatic(const ParsedOption& option) {
  return option.values.first() == Automatic;
}

// What is taken as if it were an option, and is named without dashes.
ParsedOption settingOf(const QString& name, const QStringList& values) {
  ParsedOption option;
  option.name = name;
  option.values = values;
  option.dashes.clear();
  return option;
}

QStringList valuesOf(const std::optional<double>& number) {
  return {number ? textOfNumber(*number) : Automatic};
}

QStringList valuesOf(const QColor& color) {
  return {color.name(color.alpha() < 255 ? QColor::HexArgb : QColor::HexRgb)};
}

QStringList valuesOf(bool isOn) {
  return {isOn ? u"on"_s : u"off"_s};
}

QString wordOf(Edge edge) {
  switch (edge) {
  case Edge::Top:
    return u"top"_s;
  case Edge::Bottom:
    return u"bottom"_s;
  case Edge::Left:
    return u"left"_s;
  case Edge::Right:
    return u"right"_s;
  case Edge::Floating:
    return u"floating"_s;
  case Edge::Automatic:
    break;
  }
  return Automatic;
}

// Whether it is one of `words`; false for automatic. UsageError for anything else.
bool isOneOf(const QStringList& words, const ParsedOption& option) {
  return wordOf(option, words + QStringList{Automatic}) != Automatic;
}

template <class Value, class Read>
std::optional<Value> unlessAutomatic(const ParsedOption& option, Read read) {
  return isAutomatic(option) ? std::nullopt : std::optional<Value>(read(option));
}

std::vector<SettingSpec> makeTable() {
  using Option = const ParsedOption&;
  return {
      {u"direction"_s, u"left|right|up|down"_s,
       u"Which way signs scroll; horizontal is taken for left, vertical for up."_s, Kind::Text,
       [](Settings& s, Option o) { s.direction = directionOf(o); },
       [](const Settings& s) { return QStringList{wordOf(s.direction)}; }},
      {u"speed"_s, u"POINTS"_s, u"Points per second."_s, Kind::Number,
       [](Settings& s, Option o) { s.speed = speedOf(o); },
       [](const Settings& s) { return QStringList{textOfNumber(s.speed)}; }},
      {u"font"_s, u"FONT"_s,
       u"The font of texts, with or without a size in points: \"DejaVu Sans 18\"; automatic for "
       u"the desktop's font, as large as the strip."_s,
       Kind::Text, [](Settings& s, Option o) { s.font = unlessAutomatic<FontRequest>(o, fontOf); },
       [](const Settings& s) { return QStringList{s.font ? s.font->text : Automatic}; }},
      {u"color"_s, u"COLOR"_s,
       u"The color of texts: a name such as navy, or #rrggbb, or #aarrggbb; automatic for black."_s,
       Kind::Text, [](Settings& s, Option o) { s.color = unlessAutomatic<QColor>(o, colorOf); },
       [](const Settings& s) { return s.color ? valuesOf(*s.color) : QStringList{Automatic}; }},
      {u"background"_s, u"COLOR"_s, u"The color of the strip."_s, Kind::Text,
       [](Settings& s, Option o) { s.background = colorOf(o); },
       [](const Settings& s) { return valuesOf(s.background); }},
      {u"position"_s, u"top|bottom|left|right|floating"_s,
       u"The edge of the screen: top or bottom, of a vertical strip left or right; or floating, a "
       u"small strip that can be moved. automatic, and an edge that does not fit the direction, is "
       u"bottom or right."_s,
       Kind::Text,
       [](Settings& s, Option o) {
         s.position = isOneOf(wordsOf(edgeWords()), o) ? edgeOf(o) : Edge::Automatic;
       },
       [](const Settings& s) { return QStringList{wordOf(s.position)}; }},
      {u"screen"_s, u"NAME"_s,
       u"The screen by its name, or primary, which also stands in for one that is not there."_s,
       Kind::Text, [](Settings& s, Option o) { s.screen = screenOf(o); },
       [](const Settings& s) { return QStringList{s.screen.isEmpty() ? Primary : s.screen}; }},
      {u"height"_s, u"POINTS"_s,
       u"Height of the strip; automatic for 24, more where the font is larger, and all of the "
       u"screen's for a vertical strip."_s,
       Kind::Number, [](Settings& s, Option o) { s.height = unlessAutomatic<double>(o, sideOf); },
       [](const Settings& s) { return valuesOf(s.height); }},
      {u"width"_s, u"POINTS"_s,
       u"Width of the strip; automatic for the screen's, and 240 for a vertical strip."_s,
       Kind::Number, [](Settings& s, Option o) { s.width = unlessAutomatic<double>(o, sideOf); },
       [](const Settings& s) { return valuesOf(s.width); }},
      {u"autoscale"_s, u"on|off"_s,
       u"Whether texts are scaled to the height of the strip (horizontal strips)."_s, Kind::Switch,
       [](Settings& s, Option o) { s.autoscale = isOnOf(o); },
       [](const Settings& s) { return valuesOf(s.autoscale); }},
      {u"fade"_s, u"off|POINTS"_s,
       u"Over how many points signs fade in and out at the ends of the strip."_s, Kind::Number,
       [](Settings& s, Option o) { s.fade = fadeOf(o); },
       [](const Settings& s) { return QStringList{textOfFade(s.fade)}; }},
      {u"control-bar"_s, u"on|off"_s,
       u"Whether buttons appear while the pointer rests on the strip."_s, Kind::Switch,
       [](Settings& s, Option o) { s.showsControlBar = isOnOf(o); },
       [](const Settings& s) { return valuesOf(s.showsControlBar); }},
      {u"pause-on-hover"_s, u"on|off"_s,
       u"Whether the strip stands still while the pointer rests on it."_s, Kind::Switch,
       [](Settings& s, Option o) { s.pausesOnHover = isOnOf(o); },
       [](const Settings& s) { return valuesOf(s.pausesOnHover); }},
      {u"reduced-motion"_s, u"on|off"_s,
       u"Whether signs change page by page instead of scrolling; automatic for as the desktop's "
       u"settings wish."_s,
       Kind::Switch,
       [](Settings& s, Option o) {
         const bool isGiven = isOneOf({u"on"_s, u"off"_s}, o);
         s.reducesMotion = isGiven ? std::optional(isOnOf(o)) : std::nullopt;
       },
       [](const Settings& s) {
         return s.reducesMotion ? valuesOf(*s.reducesMotion) : QStringList{Automatic};
       }},
      {u"feeds"_s, u"URL..."_s,
       u"The addresses of feeds, shown by a ticker whose command line names nothing to show."_s,
       Kind::List,
       [](Settings& s, Option o) {
         for (const QString& value : o.values)
           s.feeds.feeds.push_back(feedOf(settingOf(o.name, {value}), s.feeds.feeds));
       },
       [](const Settings& s) {
         QStringList urls;
         for (const QUrl& url : s.feeds.feeds)
           urls.append(url.toString(QUrl::FullyEncoded));
         return urls;
       }},
      {u"feed-items"_s, u"COUNT"_s, u"The most items of each feed."_s, Kind::Number,
       [](Settings& s, Option o) { s.feeds.itemsPerFeed = feedItemsOf(o); },
       [](const Settings& s) { return QStringList{QString::number(s.feeds.itemsPerFeed)}; }},
      {u"feed-interval"_s, u"MINUTES"_s,
       u"How long to wait before a feed is asked again; automatic for 30."_s, Kind::Number,
       [](Settings& s, Option o) {
         s.feeds.intervalMinutes = unlessAutomatic<double>(o, feedIntervalOf);
       },
       [](const Settings& s) { return valuesOf(s.feeds.intervalMinutes); }},
      {AutostartName, u"on|off"_s, u"Whether the ticker starts with the desktop session."_s,
       Kind::Switch, [](Settings& s, Option o) { s.startsWithSession = isOnOf(o); },
       [](const Settings& s) { return valuesOf(s.startsWithSession); }},
  };
}

// A value of the file as the command line would have it; nothing for one of another type.
std::optional<QString> textOf(const SettingSpec& spec, const QJsonValue& value) {
  if (value.isString() &&
      (spec.kind == Kind::Text || value.toString() == Automatic || value.toString() == Off))
    return value.toString();
  if (value.isDouble() && spec.kind == Kind::Number)
    return textOfNumber(value.toDouble());
  if (value.isBool() && spec.kind == Kind::Switch)
    return valuesOf(value.toBool()).first();
  return std::nullopt;
}

QString kindName(Kind kind) {
  switch (kind) {
  case Kind::Number:
    return u"a number"_s;
  case Kind::Switch:
    return u"true or false"_s;
  case Kind::List:
    return u"a list"_s;
  case Kind::Text:
    break;
  }
  return u"a text"_s;
}
} // namespace

const std::vector<SettingSpec>& settingTable() {
  static const std::vector<SettingSpec> table = makeTable();
  return table;
}

const SettingSpec& settingNamed(const QString& name) {
  const auto& table = settingTable();
  const auto found = std::find_if(table.begin(), table.end(),
                                  [&](const SettingSpec& spec) { return spec.name == name; });
  if (found == table.end())
    throw UsageError(quotedForMessage(name) +
                     u": no such setting (see zqticker settings --help)"_s);
  return *found;
}

void setSetting(Settings& settings, const SettingSpec& spec, const QStringList& values) {
  // A list begins anew.
  Settings changed = settings;
  if (spec.kind == Kind::List)
    changed.feeds.feeds.clear();
  if (values.isEmpty() && spec.kind != Kind::List)
    return setSetting(settings, spec, spec.valuesOf(Settings()));
  if (values.size() > 1 && spec.kind != Kind::List)
    throw UsageError(spec.name + u": takes one value, not "_s + QString::number(values.size()));
  spec.take(changed, settingOf(spec.name, values));
  settings = changed;
}

QJsonValue jsonOfSetting(const SettingSpec& spec, const Settings& settings) {
  const QStringList values = spec.valuesOf(settings);
  if (spec.kind == Kind::List)
    return QJsonArray::fromStringList(values);
  const QString& value = values.first();
  if (value == Automatic || value == Primary)
    return QJsonValue(QJsonValue::Undefined);
  if (spec.kind == Kind::Number)
    return value.toDouble();
  if (spec.kind == Kind::Switch)
    return value == "on"_L1;
  return value;
}

QStringList readSetting(Settings& settings, const SettingSpec& spec, const QJsonValue& value) {
  QStringList complaints;
  const auto take = [&](const std::optional<QString>& text) {
    if (!text) {
      complaints.append(spec.name + u": must be "_s + kindName(spec.kind));
      return;
    }
    try {
      spec.take(settings, settingOf(spec.name, {*text}));
    } catch (const UsageError& error) {
      complaints.append(error.message());
    }
  };
  if (value.isNull())
    return {};
  if (spec.kind != Kind::List)
    take(textOf(spec, value));
  else if (!value.isArray())
    take(std::nullopt);
  else
    for (const QJsonValue& element : value.toArray())
      take(element.isString() ? std::optional(element.toString()) : std::nullopt);
  return complaints;
}

QString textOfNumber(double number) {
  return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

bool isInFile(const SettingSpec& spec) {
  return spec.name != AutostartName;
}

} // namespace zq::app
