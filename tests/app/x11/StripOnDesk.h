// The strip among other windows, on a real X server with a window manager.
#pragma once

#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/x11/Desk.h"

#include <QtCore/QProcessEnvironment>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace zq::app::testing {

// A screen for a strip that is alone or has another program's window beside it, zqticker-window-
// probe. The settings are in a folder of the test's own.
class StripOnDesk : public ::testing::Test {
 protected:
  explicit StripOnDesk(QSize screen, XServer::Manager manager = XServer::Manager::Installed)
      : screen_(screen), manager_(manager) {}

  void SetUp() override {
    if (!Desk::isInstalled())
      GTEST_SKIP() << "Xvfb or a tool is not installed";
    server_.emplace(screen_.width(), screen_.height(), manager_);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    environment_ = server_->environment();
    environment_.insert(QStringLiteral("XDG_CONFIG_HOME"), folder_.path());
    desk_.emplace(environment_);
  }
  void TearDown() override { endOther(); }

  // The arguments of a strip of one colour, #123456, on which there is next to nothing.
  static QStringList strip(const QStringList& more = {}) {
    return QStringList{QStringLiteral("--separate"), QStringLiteral("--text"),
                       QStringLiteral(" . "), QStringLiteral("--background"),
                       QStringLiteral("#123456")} +
           more;
  }
  void set(const QString& name, const QString& value) const {
    const Outcome outcome = runZqticker(
        {QStringLiteral("settings"), QStringLiteral("set"), name, value}, {}, environment_);
    ASSERT_EQ(outcome.status, 0) << outcome.errors.constData();
  }

  // Whether the only strip comes to stand there.
  bool stripIsAt(const QRect& rect) const {
    return waitUntil([&] { return desk_->strip() == rect; });
  }
  bool roomIs(const QString& values) const {
    return waitUntil([&] { return desk_->stripRoom() == values; });
  }
  // The window of the only strip, once there is one; empty if none comes.
  QString awaitStrip() const { return awaitOnly(QStringLiteral("zqticker")); }
  QString awaitOther() const { return awaitOnly(QStringLiteral("other")); }

  // The arguments are those of zqticker-window-probe.
  void startOther(const QStringList& arguments) {
    other_ = std::make_unique<QProcess>();
    other_->setProcessEnvironment(environment_);
    other_->start(QStringLiteral(ZQTICKER_WINDOW_PROBE), arguments);
  }
  // A window of another program at the lower edge that reserves its room.
  void startPanel(int depth) {
    startOther({QStringLiteral("panel"), QStringLiteral("0"),
                QString::number(screen_.height() - depth), QString::number(screen_.width()),
                QString::number(depth)});
    const QString panel = awaitOther();
    ASSERT_FALSE(panel.isEmpty());
    const QString room = QStringLiteral("_NET_WM_STRUT_PARTIAL");
    desk_->ask(QStringLiteral("xprop"),
               {QStringLiteral("-id"), panel, QStringLiteral("-f"), room, QStringLiteral("32c"),
                QStringLiteral("-set"), room,
                QStringLiteral("0,0,0,%1,0,0,0,0,0,0,0,%2").arg(depth).arg(screen_.width() - 1)});
  }
  void endOther() {
    if (!other_)
      return;
    other_->kill();
    other_->waitForFinished();
    other_.reset();
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  QProcessEnvironment environment_;
  std::optional<Desk> desk_;
  std::unique_ptr<QProcess> other_;

 private:
  QString awaitOnly(const QString& title) const {
    QString window;
    waitUntil([&] {
      const QStringList found = desk_->windows(title);
      window = found.size() == 1 ? found.first() : QString();
      return !window.isEmpty();
    });
    return window;
  }

  const QSize screen_;
  const XServer::Manager manager_;
};

} // namespace zq::app::testing
