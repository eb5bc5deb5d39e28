// A session bus of a test's own.
#pragma once

#include "tests/app/Program.h"

#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

namespace zq::app::testing {

// A dbus-daemon on an address in a temporary folder. Ends with the object, and with the test's
// process.
class PrivateBus {
 public:
  enum class Activation {
    None,
    Ticker, // the bus starts the built program for calls to its name
  };

  // Programs that the bus starts get `environment`, with this bus as theirs.
  explicit PrivateBus(Activation activation = Activation::None,
                      const QProcessEnvironment& environment = plainEnvironment());
  // One that starts what the service files in `serviceFolder` say.
  explicit PrivateBus(const QString& serviceFolder,
                      const QProcessEnvironment& environment = plainEnvironment());
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;

  // Whether dbus-daemon is installed; a test that needs it is skipped otherwise.
  static bool isInstalled();

  bool isRunning() const { return daemon_.state() == QProcess::Running; }
  QString address() const;
  // `environment` for programs on this bus.
  QProcessEnvironment environment(QProcessEnvironment environment = plainEnvironment()) const;

  // Ends the bus at once, as one that crashes; then starts it again at the same address.
  void stop();
  void start();

 private:
  QTemporaryDir folder_;
  QProcessEnvironment environment_;
  QProcess daemon_;
};

} // namespace zq::app::testing
