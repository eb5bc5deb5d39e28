#include "app/commands/RunCommand.h"

#include "app/commands/RenderCommand.h"
#include "app/commands/failures.h"
#include "app/commands/file_following.h"
#include "app/commands/interrupts.h"
#include "app/commands/sign_loading.h"
#include "app/commands/strip_setup.h"
#include "app/controls/ControlBar.h"
#include "app/controls/ControlBarButton.h"
#include "app/display/StripWidget.h"
#include "app/intake/LineReader.h"
#include "app/services/ClockService.h"
#include "app/services/FeedService.h"
#include "app/services/FeedSigns.h"
#include "app/services/FeedSubscription.h"
#include "app/services/FileSigns.h"
#include "app/services/loading_setup.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <cmath>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// What a session without a display gets.
constexpr double RenderedSeconds = 10;
constexpr double RenderedRate = 10;
constexpr double PatienceSeconds = 5;
constexpr QSizeF RenderedRoom(1280, 720);

QRect windowGeometry(const RunOptions& options, const StripLook& look, const QRect& room) {
  QRect geometry(0, 0, static_cast<int>(std::ceil(look.size.width())),
                 static_cast<int>(std::ceil(look.size.height())));
  geometry.moveTopLeft(room.topLeft());
  switch (options.edge) {
  case Edge::Top:
  case Edge::Left:
    break;
  case Edge::Bottom:
    geometry.moveBottom(room.bottom());
    break;
  case Edge::Right:
    geometry.moveRight(room.right());
    break;
  case Edge::Automatic:
    if (options.strip.isHorizontal)
      geometry.moveBottom(room.bottom());
    else
      geometry.moveRight(room.right());
    break;
  }
  return geometry;
}

bool isOpen(int descriptor) {
  return ::fcntl(descriptor, F_GETFD) != -1;
}

// Puts the control bar on the strip. A strip without one can be used all the same.
void addControlBar(StripWidget& widget, bool isHorizontal) {
  try {
    if (ControlBarButton::hasLook())
      new ControlBar(&widget, isHorizontal, widget.menu());
    else
      printError(u"no control bar: its look, ControlBarButton.button, is missing"_s);
  } catch (const std::exception& exception) {
    printError(u"no control bar: its look, ControlBarButton.button, cannot be read: "_s +
               QString::fromUtf8(exception.what()));
  }
}
} // namespace

bool hasDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  if (platform.startsWith("offscreen") || platform.startsWith("minimal"))
    return false;
  return !qgetenv("DISPLAY").isEmpty() || !qgetenv("WAYLAND_DISPLAY").isEmpty() ||
         platform.startsWith("linuxfb") || platform.startsWith("eglfs") ||
         platform.startsWith("vnc");
}

int runCommand(const QStringList& arguments) {
  const RunOptions options = readRunOptions(arguments);
  Interrupts interrupts;
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (!screen)
    throw RunTimeError(u"the display has no screen"_s);
  const QRect room = screen->availableGeometry();
  const StripLook look = lookOf(options.strip, room.size());

  TickerDisplay display(FrameClock::now());
  fillDisplay(display, options.strip, look, FrameClock::now());
  StripWidget widget(display, options.strip.background);
  widget.place(windowGeometry(options, look, room));
  if (options.showsControlBar)
    addControlBar(widget, options.strip.isHorizontal);

  const LoopRule lineRule = lineRuleOf(options.strip);
  FileSigns fileSigns(display, lineRule);
  const std::unique_ptr<FileService> files = followFiles(
      options.strip, {[&](const QString& line) { display.addLine(line, widget.time(), lineRule); },
                      [&](const FileReport& report) { fileSigns.show(report, widget.time()); },
                      [&] { return display.waitingLineCount() >= TickerDisplay::MostLines; }});
  if (files)
    QObject::connect(files.get(), &FileService::received, &widget, &StripWidget::displayChanged);

  std::unique_ptr<LineReader> reader;
  FeedSigns feedSigns(display, feedRuleOf(options.strip));
  std::unique_ptr<FeedService> feeds;
  if (!options.strip.feeds.feeds.empty()) {
    prepareLoading();
    feeds = std::make_unique<FeedService>(
        options.strip.feeds, pictureRoomOf(options.strip, look, screen->devicePixelRatio()),
        [&](const std::vector<ShownItem>& items) {
          feedSigns.show(items, widget.time());
          widget.displayChanged();
        });
    feeds->start();
  }
  std::unique_ptr<ClockService> clock;
  if (const std::optional<ClockText> text = clockTextOf(options.strip)) {
    clock = std::make_unique<ClockService>(*text, [&](const QString& now) {
      const bool isShown = display.changeText(ClockIdentifier, now, widget.time());
      widget.displayChanged();
      return isShown;
    });
    clock->start();
  }
  // Feeds and files may always bring something new.
  const auto quitWhenDone = [&] {
    if (widget.isFinished() && !feeds && !files && (!reader || reader->hasEnded()))
      QCoreApplication::quit();
  };
  if (options.strip.readsStandardInput && isOpen(STDIN_FILENO)) {
    reader = std::make_unique<LineReader>(
        STDIN_FILENO, [&](const QString& line) { display.addLine(line, widget.time(), lineRule); });
    QObject::connect(reader.get(), &LineReader::received, &widget, [&] {
      reader->setUnhurried(display.waitingLineCount() >= TickerDisplay::MostLines);
      widget.displayChanged();
    });
    QObject::connect(reader.get(), &LineReader::ended, &widget, [&] {
      widget.displayChanged();
      quitWhenDone();
    });
  }
  QObject::connect(&widget, &StripWidget::finished, &widget, quitWhenDone, Qt::QueuedConnection);
  QObject::connect(&interrupts, &Interrupts::interrupted, &widget,
                   [] { QCoreApplication::quit(); });
  widget.show();
  QCoreApplication::exec();
  return Success;
}

int runWithoutDisplay(const QStringList& arguments, const QString& reason) {
  const RunOptions options = readRunOptions(arguments);
  Interrupts interrupts;
  QTemporaryDir folder;
  if (!folder.isValid())
    throw RunTimeError(reason + u", and no temporary folder for pictures: "_s +
                       folder.errorString());
  RenderOptions rendered;
  rendered.strip = options.strip;
  const StripLook look = lookOf(options.strip, RenderedRoom);
  rendered.strip.width = look.size.width();
  rendered.strip.height = look.size.height();
  rendered.frames = static_cast<int>(std::lround(RenderedSeconds * RenderedRate));
  rendered.framesPerSecond = RenderedRate;
  rendered.output = folder.path();
  render(rendered, {PatienceSeconds, PatienceSeconds, FeedFailure::IsTold}, interrupts);
  folder.setAutoRemove(false);
  printError(reason + u": rendered %1 frames into %2"_s.arg(rendered.frames).arg(folder.path()));
  return Success;
}

} // namespace zq::app
