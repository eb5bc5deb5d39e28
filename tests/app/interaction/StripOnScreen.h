// The program's strip on a screen, used with a real pointer and real keys.
#pragma once

#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace zq::app::testing {

// A screen of 640 by 400 with a strip of 24 points at its lower edge. What opens addresses there is
// a script that writes them down.
class StripOnScreen : public ::testing::Test {
 protected:
  static constexpr int Width = 640;
  static constexpr int Height = 400;
  static constexpr int Top = Height - 24; // of the strip
  static constexpr int Middle = Height - 12;
  static constexpr QRgb Ground = 0x123456;

  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    if (!XServer::hasProgram(QStringLiteral("xdotool")))
      GTEST_SKIP() << "xdotool is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    QFile script(folder_.filePath(QStringLiteral("xdg-open")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nfor address; do echo \"$address\" >> '" + opened().toLocal8Bit() +
                 "'; done\n");
    ASSERT_TRUE(script.setPermissions(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser));
  }

  // That of the program.
  virtual QProcessEnvironment environment() const {
    QProcessEnvironment environment = server_->environment();
    environment.insert(QStringLiteral("PATH"), QString(folder_.path() + QLatin1Char(':') +
                                                       environment.value(QStringLiteral("PATH"))));
    return environment;
  }
  // Runs the program, and awaits its strip.
  void run(const QStringList& arguments) {
    program_.emplace(QStringList{QStringLiteral("--continuous"), QStringLiteral("--background"),
                                 QStringLiteral("#123456"), QStringLiteral("--no-control-bar")} +
                         arguments,
                     environment());
    ASSERT_TRUE(waitUntil([&] { return isFull(); }));
  }
  // Whether signs have come to the far edge of the strip.
  bool isFull() {
    const QImage strip = picture();
    int signs = 0;
    for (int x = 0; x < 60; ++x)
      for (int y = 0; y < 24; ++y)
        signs += (strip.pixel(x, y) & 0xffffff) != Ground;
    // Before the program paints, all of it is of another colour.
    return signs > 0 && signs < 60 * 24;
  }
  // The archive of a text sign with a location, by the program itself.
  QString signFile(const QString& location, const QString& text = QString(50, QLatin1Char('x'))) {
    const QString file = folder_.filePath(QStringLiteral("a.sign"));
    const Outcome outcome = runZqticker(
        {QStringLiteral("sign"), QStringLiteral("--text"), text, QStringLiteral("--action"),
         location, QStringLiteral("--loop"), QStringLiteral("forever"),
         QStringLiteral("--continuous"), QStringLiteral("--output"), file});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    return file;
  }
  // A picture of a colour, as a file.
  QString pictureFile(int width, QRgb color, const QString& name) {
    QImage image(width, 24, QImage::Format_RGB32);
    image.fill(color);
    const QString file = folder_.filePath(name);
    EXPECT_TRUE(image.save(file));
    return file;
  }
  // The addresses that were opened, a line each.
  QByteArray addresses() const {
    QFile file(opened());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  void tell(const QStringList& what) {
    QProcess tool;
    tool.setProcessEnvironment(server_->environment());
    tool.start(QStringLiteral("xdotool"), what);
    ASSERT_TRUE(tool.waitForFinished());
    ASSERT_EQ(tool.exitCode(), 0);
  }
  void moveTo(int x, int y = Middle) {
    tell({QStringLiteral("mousemove"), QString::number(x), QString::number(y)});
  }
  void button(const char* what, int number) {
    tell({QString::fromLatin1(what), QString::number(number)});
  }

  QImage picture() { return server_->screenshot().copy(0, Top, Width, 24); }
  // The first column from the left that shows `color`; -1 for none.
  int columnOf(QRgb color) {
    const QImage strip = picture();
    for (int x = 0; x < Width; ++x)
      if ((strip.pixel(x, 12) & 0xffffff) == (color & 0xffffff))
        return x;
    return -1;
  }
  // Whether the strip stands still for longer than the last pixel of a step takes.
  bool stands() {
    const QImage before = picture();
    QElapsedTimer watched;
    watched.start();
    while (watched.elapsed() < 200)
      if (picture() != before)
        return false;
    return true;
  }

  QString opened() const { return folder_.filePath(QStringLiteral("opened")); }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  std::optional<RunningProgram> program_;
};

} // namespace zq::app::testing
