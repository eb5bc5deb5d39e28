// Rollover buttons on a real X server with a window manager, under a real pointer.
#pragma once

#include "tests/app/XServer.h"

#include <QtCore/QProcess>
#include <QtCore/QRect>
#include <QtCore/QStringList>
#include <QtGui/QColor>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zq::testing {

// A zqticker-button-probe; see ButtonProbe.cpp for its commands and answers. Ends with the object.
class ButtonProbeProcess {
 public:
  explicit ButtonProbeProcess(const QProcessEnvironment& environment);
  ~ButtonProbeProcess();

  void tell(const QString& command);
  // Waits until the probe has said `line`; false where it does not.
  bool awaits(const QString& line);
  // Waits until all input has been dealt with, and returns what happened since the last call, as
  // "play entered, play pressed".
  std::string happened();
  // What holds of the button of that name now, such as "over highlighted".
  std::string stateOf(const QString& button);
  // In pixels of the screen.
  QRectF placeOf(const QString& widget);
  QRectF placeOfItem(const QString& button, int number);
  bool isRunning() const { return process_.state() != QProcess::NotRunning; }
  // Whether it ends by itself, and well, when there are no more commands.
  bool endsWell();

 private:
  void dealWithInput();
  // The rest of the answer that starts with `start`.
  QString answer(const QString& command, const QString& start);
  QRectF rectAnswer(const QString& command, const QString& name);
  void read();

  QProcess process_;
  // Not yet given out, without the comments.
  QStringList lines_;
  // All that was not waited for.
  QStringList heard_;
};

// A window "window" at (40, 60), 320 × 200 points, with the button "play", 100 × 22 at (20, 20).
class ButtonScreen : public ::testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();

  void SetUp() override;
  // Starts the probe at a scale other than 1, in the place of the first one.
  void start(double scale);

  void tell(const QString& command) { probe_->tell(command); }
  bool awaits(const QString& line) { return probe_->awaits(line); }
  std::string happened() { return probe_->happened(); }
  std::string state(const QString& button = QStringLiteral("play")) {
    return probe_->stateOf(button);
  }
  // Whether `line` is among what happened since the last call of either.
  bool didHappen(const std::string& line) { return happened().find(line) != std::string::npos; }

  // Real input, by the words of xdotool.
  void input(const QStringList& words);
  // Moves the pointer to a pixel of the screen.
  void moveTo(QPointF pixel);
  // Moves the pointer to a point of a widget, in points from its upper left corner.
  void point(const QString& widget, double x, double y);
  void pointInside() { point(QStringLiteral("play"), 10, 10); }
  // Into the window, but off its buttons.
  void pointOutside() { point(QStringLiteral("window"), 200, 150); }
  // Into the middle of an item of the open menu.
  void pointAtItem(int number);
  void press();
  void release();
  // Press and release, when the press has arrived.
  void click();

  // Whether the body of the button comes to show this colour.
  bool shows(const QColor& color, const QString& button = QStringLiteral("play"));
  QImage picture(const QString& widget);

  // A second program on the same screen.
  ButtonProbeProcess& otherProgram();

  static std::unique_ptr<app::testing::XServer> server_;
  std::unique_ptr<ButtonProbeProcess> probe_;
  std::unique_ptr<ButtonProbeProcess> other_;
  double scale_ = 1;
};

} // namespace zq::testing
