// The settings by name: one table serves the file, the command and the window.
#pragma once

#include "app/commands/OptionTable.h"
#include "app/settings/Settings.h"

#include <QtCore/QJsonValue>

#include <vector>

namespace zq::app {

struct SettingSpec {
  // How its value stands in the file.
  enum class Kind { Text, Number, Switch, List };

  QString name;
  QString values; // what it may be, for people: "left|right|up|down"
  QString help;
  Kind kind;
  // Takes the values of `option`, a list's behind those that are there. UsageError for what cannot
  // be, by the rules of the command line's options.
  void (*take)(Settings& settings, const ParsedOption& option);
  // The values as `take` reads them; "automatic" or "primary" for what is left to the program.
  QStringList (*valuesOf)(const Settings& settings);
};

// In the order in which they are listed.
const std::vector<SettingSpec>& settingTable();

// UsageError where there is none.
const SettingSpec& settingNamed(const QString& name);

// Replaces a setting, or leaves it at its default where `values` is empty. UsageError for wrong
// values, and for more than one where the setting is no list.
void setSetting(Settings& settings, const SettingSpec& spec, const QStringList& values);

// The value in the file; undefined for what is left to the program, which is not written.
QJsonValue jsonOfSetting(const SettingSpec& spec, const Settings& settings);

// Reads a value of the file into `settings`. What is wrong keeps its default: returns a line for
// each. Of a list the right elements are taken.
QStringList readSetting(Settings& settings, const SettingSpec& spec, const QJsonValue& value);

// The shortest text that is read as the same number.
QString textOfNumber(double number);

// Whether the setting stands in the file.
bool isInFile(const SettingSpec& spec);

} // namespace zq::app
