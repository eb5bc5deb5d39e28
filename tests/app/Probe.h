// A program of tests/app/probe_program.h while it runs, and the pointer of its screen.
#pragma once

#include "tests/app/XServer.h"

#include <QtCore/QPoint>
#include <QtCore/QProcess>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <optional>

#include <sys/types.h>

namespace zq::app::testing {

class Probe {
 public:
  Probe(const QString& program, const QStringList& arguments, const XServer& server) {
    process_.setProcessEnvironment(server.environment());
    process_.start(program, arguments);
  }
  ~Probe() {
    process_.kill();
    process_.waitForFinished();
  }

  // A line on its standard input.
  void tell(const QString& line) { process_.write(line.toUtf8() + '\n'); }
  void interrupt(int signal) { ::kill(static_cast<pid_t>(process_.processId()), signal); }

  // All that it has said so far.
  const QStringList& lines() {
    while (process_.canReadLine())
      lines_.append(QString::fromUtf8(process_.readLine().trimmed()));
    return lines_;
  }
  bool hasSaid(const QString& line) { return lines().contains(line); }
  bool hasSaidStart(const QString& start) { return !lines().filter(start).isEmpty(); }
  // The last line that begins so, without the beginning.
  QString last(const QString& start) {
    const QStringList said = lines().filter(start);
    return said.isEmpty() ? QString() : said.last().mid(start.size());
  }
  void forget() {
    lines();
    lines_.clear();
  }
  // How often it has logged `text`.
  qsizetype logged(const QByteArray& text) {
    errors_ += process_.readAllStandardError();
    return errors_.count(text);
  }

  // Where the window called `name` is on the screen, once it is shown.
  std::optional<QPoint> awaitWindow(const QString& name) {
    const QString start = name + QStringLiteral(" shown ");
    if (!waitUntil([&] { return hasSaidStart(start); }))
      return std::nullopt;
    const QStringList words = lines().filter(start).first().split(u' ');
    return QPoint(words[2].toInt(), words[3].toInt());
  }

 private:
  QProcess process_;
  QStringList lines_;
  QByteArray errors_;
};

// Moves and clicks by xdotool, which must be installed.
class Pointer {
 public:
  explicit Pointer(const XServer& server) : server_(server) {}

  // xdotool with these arguments.
  void tell(const QStringList& what) {
    QProcess tool;
    tool.setProcessEnvironment(server_.environment());
    tool.start(QStringLiteral("xdotool"), what);
    ASSERT_TRUE(tool.waitForFinished());
    ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().constData();
  }
  void moveTo(QPoint point) {
    tell({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())});
  }
  // Moves about `point` until `condition` holds: what moves while the other side has not answered
  // yet is not told. Now and then on a busy machine the dragging side waits for an answer that does
  // not come; it asks anew when the pointer comes in anew.
  bool moveUntil(QPoint point, const std::function<bool()>& condition) {
    constexpr int MovesPerVisit = 200;
    int step = 0;
    return waitUntil([&] {
      if (condition())
        return true;
      if (++step % MovesPerVisit == 0)
        moveTo(QPoint(0, 0));
      moveTo(point + QPoint(step % 2, 0));
      return false;
    });
  }

 private:
  const XServer& server_;
};

} // namespace zq::app::testing
