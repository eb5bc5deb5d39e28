#include "app/settings/SettingsStore.h"

#include "app/commands/failures.h"
#include "app/services/PathWatch.h"
#include "app/settings/autostart.h"
#include "app/settings/setting_table.h"

#include <QtCore/QLoggingCategory>
#include <QtCore/QStandardPaths>

#include <chrono>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(settingsLog, "zqticker.settings")

// Programs that write a file in place leave it half written for a moment.
constexpr std::chrono::milliseconds SettleTime(50);

QString configFile(const QString& name) {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + name;
}

// Adds what is wrong to `complaints`.
Settings settingsOf(const QJsonObject& object, QStringList& complaints) {
  Settings settings;
  for (const SettingSpec& spec : settingTable()) {
    const auto found = object.constFind(spec.name);
    if (!isInFile(spec) || found == object.constEnd())
      continue;
    for (const QString& complaint : readSetting(settings, spec, *found))
      complaints.append(u"settings: "_s + complaint + u"; left out"_s);
  }
  return settings;
}
} // namespace

QString SettingsStore::usualFile() {
  return configFile(u"zqticker/settings.json"_s);
}

QString SettingsStore::usualAutostartFile() {
  return configFile(u"autostart/org.zqticker.Ticker.desktop"_s);
}

Settings SettingsStore::peek(const QString& file) {
  QStringList complaints;
  return settingsOf(SettingsFile(file).read().object, complaints);
}

SettingsStore::SettingsStore(const QString& file, const QString& autostartFile)
    : file_(file), autostartFile_(autostartFile) {
  settling_.setSingleShot(true);
  settling_.setInterval(SettleTime);
  connect(&settling_, &QTimer::timeout, this, [this] { read(Reading::Again); });
  read(Reading::First);
}

SettingsStore::~SettingsStore() = default;

void SettingsStore::change(const std::vector<Change>& changes) {
  Settings checked = settings_;
  for (const auto& [name, values] : changes)
    setSetting(checked, settingNamed(name), values);
  write(changes);
}

void SettingsStore::reset(const QStringList& names) {
  std::vector<Change> changes;
  for (const QString& name : names)
    changes.emplace_back(settingNamed(name).name, QStringList());
  if (names.isEmpty())
    for (const SettingSpec& spec : settingTable())
      changes.emplace_back(spec.name, QStringList());
  write(changes);
}

// Changes that have been checked.
void SettingsStore::write(const std::vector<Change>& changes) {
  bool changesFile = false;
  for (const auto& [name, values] : changes)
    changesFile = changesFile || isInFile(settingNamed(name));
  if (changesFile)
    file_.change([&](QJsonObject& object) {
      for (const auto& [name, values] : changes) {
        const SettingSpec& spec = settingNamed(name);
        Settings changed;
        setSetting(changed, spec, values);
        const QJsonValue value = jsonOfSetting(spec, changed);
        if (!isInFile(spec) || value.isUndefined() || values.isEmpty())
          object.remove(name);
        else
          object.insert(name, value);
      }
    });
  for (const auto& [name, values] : changes) {
    const SettingSpec& spec = settingNamed(name);
    if (isInFile(spec))
      continue;
    Settings changed;
    setSetting(changed, spec, values);
    setStartsWithSession(autostartFile_, changed.startsWithSession);
  }
  read(Reading::Again);
}

void SettingsStore::watch() {
  if (watch_)
    return;
  const auto touched = [this] { settling_.start(); };
  watch_ = std::make_unique<PathWatch>([touched](const QString&, const QString&) { touched(); },
                                       [touched](const QString&) { touched(); });
  watch_->addPath(file_.path());
  // What came between the first reading and the watch.
  read(Reading::Again);
}

void SettingsStore::read(Reading reading) {
  const SettingsFile::Contents contents = file_.read();
  if (!contents.problem.isEmpty()) {
    const QString name = quotedForMessage(file_.path()) + u": "_s + contents.problem;
    if (reading == Reading::Again) {
      complain({name + u"; the settings stay as they were"_s});
      return;
    }
    const QString aside = contents.isBroken ? file_.keepAside() : QString();
    complain({aside.isEmpty()
                  ? QString(name + u"; the default settings are used"_s)
                  : QString(name + u"; the default settings are used, the file is kept as "_s +
                            quotedForMessage(aside))});
  }
  QStringList complaints;
  Settings settings = settingsOf(contents.object, complaints);
  if (contents.problem.isEmpty())
    complain(complaints);
  settings.startsWithSession = startsWithSession(autostartFile_);
  if (settings == settings_)
    return;
  settings_ = settings;
  if (reading == Reading::Again)
    Q_EMIT changed();
}

// Tells what has not been told of the file as it was read before.
void SettingsStore::complain(const QStringList& complaints) {
  for (const QString& complaint : complaints)
    if (!complaints_.contains(complaint))
      qCWarning(settingsLog).noquote() << complaint;
  complaints_ = complaints;
}

} // namespace zq::app
