#include "app/commands/RunCommand.h"

#include "app/access/DesktopWishes.h"
#include "app/bus/TickerOnBus.h"
#include "app/bus/TickerService.h"
#include "app/bus/bus_address.h"
#include "app/bus/hand_over.h"
#include "app/commands/RenderCommand.h"
#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "app/commands/strip_setup.h"
#include "app/settings/SettingsStore.h"
#include "app/settings/run_settings.h"
#include "app/sight/SessionSight.h"
#include "app/ticker/Ticker.h"
#include "app/trace/StripTrace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>

#include <cmath>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// What a session without a display gets.
constexpr double RenderedSeconds = 10;
constexpr double RenderedRate = 10;
constexpr double PatienceSeconds = 5;
constexpr QSizeF RenderedRoom(1280, 720);

const QString TraceOption = u"--trace"_s;
const QString NoBusMessage = u"no session bus: messages from other programs cannot be received"_s;
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
  SettingsStore settings;
  RunOptions options = readRunOptionsOver(settings.settings(), arguments);
  requireScreen(options);
  Interrupts interrupts;
  TickerService service(options.isSeparate ? std::nullopt : sessionBusAddress());
  const int standardInput = options.strip.readsStandardInput ? STDIN_FILENO : -1;
  const RunClaim claim = claimTicker(service, arguments, standardInput);
  if (claim == RunClaim::IsHandedOver) {
    if (!options.trace.isEmpty())
      throw RunTimeError(TraceOption + u' ' + quotedForMessage(options.trace) +
                         u": not written: a ticker that runs already shows this; --separate opens "
                         u"a strip of its own"_s);
    return Success;
  }
  if (claim == RunClaim::IsAlone) {
    requireSomethingToShow(options.strip, u"run"_s);
    if (!options.isSeparate && !isSessionBusSwitchedOff())
      printError(NoBusMessage);
  }
  leaveOutUnknownFont(options);
  const DesktopWishes wishes;
  Ticker ticker(options);
  std::optional<StripTrace> trace;
  if (!options.trace.isEmpty()) {
    trace.emplace(TraceOption, options.trace);
    trace->follow(ticker.widget().player(), ticker.display());
  }
  const SessionSight session(sessionBusAddress(), systemBusAddress());
  QObject::connect(&session, &SessionSight::changed, &ticker.widget().sight(),
                   &StripSight::setScreenInSight);
  ticker.widget().sight().setScreenInSight(session.isInSight());
  if (options.showsOwn())
    ticker.add(options.strip, QDBusUnixFileDescriptor(STDIN_FILENO));
  ticker.follow(settings);
  ticker.heed(wishes);
  // Nobody could bring another one back.
  ticker.widget().menu().hideStrip().setVisible(claim == RunClaim::IsTicker);
  // Somebody who starts a ticker without anything to show wants to see that it is there.
  if (claim == RunClaim::IsTicker && options.opensWindow && !options.showsAnything())
    ticker.showQueue();
  TickerOnBus receiver(ticker, [] { QCoreApplication::quit(); });
  service.setReceiver(&receiver);
  QObject::connect(&ticker, &Ticker::finished, qApp, &QCoreApplication::quit);
  QObject::connect(&interrupts, &Interrupts::interrupted, qApp, &QCoreApplication::quit);
  QCoreApplication::exec();
  service.setReceiver(nullptr);
  return !trace || trace->finish() ? Success : RunTimeFailure;
}

int runWithoutDisplay(const QStringList& arguments, const QString& reason) {
  const SettingsStore settings;
  RunOptions options = readRunOptionsOver(settings.settings(), arguments);
  requireSomethingToShow(options.strip, u"run"_s);
  if (!options.trace.isEmpty())
    throw RunTimeError(TraceOption + u' ' + quotedForMessage(options.trace) + u": not written: "_s +
                       reason);
  leaveOutUnknownFont(options);
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
