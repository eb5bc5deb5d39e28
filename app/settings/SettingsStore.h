// The settings as they are kept, and news of their changes.
#pragma once

#include "app/settings/Settings.h"
#include "app/settings/SettingsFile.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <memory>
#include <utility>
#include <vector>

namespace zq::app {

class PathWatch;

// Reads the settings when it is made. What is wrong with them is told in one line each (category
// zqticker.settings): a value that cannot be keeps its default; a file that is no JSON object is
// kept aside under another name, and all settings have their defaults.
//
// Thread: main.
class SettingsStore : public QObject {
  Q_OBJECT

 public:
  // A setting's name and its new values, see setSetting(); without values its default.
  using Change = std::pair<QString, QStringList>;

  // "zqticker/settings.json" in the folder of the user's settings, $XDG_CONFIG_HOME.
  static QString usualFile();
  // "autostart/org.zqticker.Ticker.desktop" there.
  static QString usualAutostartFile();

  explicit SettingsStore(const QString& file = usualFile(),
                         const QString& autostartFile = usualAutostartFile());
  ~SettingsStore() override;

  // The settings in a file, without a word about what is wrong with them and without a change to
  // it.
  static Settings peek(const QString& file = usualFile());

  const Settings& settings() const { return settings_; }
  QString path() const { return file_.path(); }

  // Changes settings, in the file too, where others' changes are kept. UsageError for an unknown
  // name or a wrong value: nothing is changed then. RunTimeError where they cannot be written.
  void change(const std::vector<Change>& changes);
  // Gives all settings, or those named, their defaults; what else is in the file stays.
  void reset(const QStringList& names = {});

  // Follows the file from now on: changes by other programs, or by hand, are taken at once. What
  // cannot be read then leaves the settings as they are.
  void watch();
  // Reads the file and takes what has changed.
  void readAgain() { read(Reading::Again); }
  // They are others than before.
  Q_SIGNAL void changed();

 private:
  enum class Reading { First, Again };

  void read(Reading reading);
  void write(const std::vector<Change>& changes);
  void complain(const QStringList& complaints);

  SettingsFile file_;
  QString autostartFile_;
  Settings settings_;
  QStringList complaints_; // told already
  std::unique_ptr<PathWatch> watch_;
  QTimer settling_; // while the file may be about to be written further
};

} // namespace zq::app
