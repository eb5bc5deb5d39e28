// A real X server with a window manager, for tests of windows.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <functional>
#include <memory>

namespace zq::app::testing {

// Xvfb on a free display number, and openbox on it where that is installed and wanted. Ends with
// the object.
class XServer {
 public:
  enum class Manager { Installed, None };

  XServer(int width, int height, Manager manager = Manager::Installed);
  ~XServer();

  // Whether Xvfb is installed at all; a test that needs it is skipped otherwise.
  static bool isInstalled();
  static bool hasProgram(const QString& name);

  qint64 processId() const { return server_.processId(); }
  // Empty where the server did not start.
  const QByteArray& display() const { return display_; }
  // The environment of a program on this server.
  QProcessEnvironment environment() const;

  // Starts openbox, which must be installed, and waits until it manages windows.
  void startManager();

  // What the screen shows now.
  QImage screenshot() const;

 private:
  QByteArray framebuffer() const;

  QTemporaryDir folder_;
  QProcess server_;
  std::unique_ptr<QProcess> windowManager_;
  QByteArray display_;
};

// Looks again and again, running the event loop between, until `condition` holds. False after a
// generous time.
bool waitUntil(const std::function<bool()>& condition);

} // namespace zq::app::testing
