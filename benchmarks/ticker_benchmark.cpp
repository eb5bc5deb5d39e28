// The whole program on a screen of 1920 pixels at 60 Hz, beside the distribution's ticker of feeds.
//
//   ticker_benchmark [--seconds N]        what processes take, each for N seconds (30) after a
//                                         warm-up; five minutes by default
//   ticker_benchmark --trace-minutes N    runs zqticker for N minutes with --trace and prints what
//                                         `zqticker trace check` says of it; its exit status
//
// Both tickers show the same 40 lines of some 70 characters over the whole width, one after the
// other on the same Xvfb with openbox. tickr runs with its own speed, font and size; the speed is
// measured on the screen and given to zqticker, which runs with its own font and size too.
//
//   process      processor time of the ticker, in percent of one core
//   X server     the same of Xvfb, the time that it takes by itself included; "alone" is that
//   wake-ups     how often a second a thread of the ticker was woken
//   PSS, RSS     memory in MiB; PSS divides what is shared among those who share it
//
//   running      at the measured speed
//   paused       by `zqticker pause`
//   hidden       by `zqticker hide`
//   covered      by a window over the whole screen
//   locked       a screen saver tells that it is active
//   empty        standard input open, and nothing to show
#include "benchmarks/process_usage.h"
#include "benchmarks/ticker_desktop.h"
#include "benchmarks/ticker_programs.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr int LineCount = 40;
// Until the strip is full, at the speed of either.
constexpr double WarmUpSeconds = 30;
constexpr double SettleSeconds = 3;
constexpr int SpeedMeasurements = 3;
constexpr double UsualSpeed = 84;
// Rows within the strips that have letters on them: tickr's at the upper edge, ours at the lower.
constexpr int TickrFirstRow = 4;
constexpr int TickrLastRow = 15;
constexpr int OurFirstRow = TickerDesktop::Height - 20;
constexpr int OurLastRow = TickerDesktop::Height - 5;

constexpr double MostProcessPercent = 1.5;
constexpr double MostSumPercent = 5;
constexpr double MostIdleWakeUps = 1;

struct Row {
  QString name;
  ProcessUsage process;
  ProcessUsage server;
  ProcessMemory memory;
  std::optional<double> speed; // pixels a second, where it moves

  double sum() const { return process.processorPercent + server.processorPercent; }
};

class TickerBenchmark {
 public:
  TickerBenchmark(const TickerDesktop& desktop, double seconds)
      : desktop_(desktop), seconds_(seconds) {}

  Row measure(const QString& name, qint64 process) const {
    const ProcessReading first = ProcessReading::of(process);
    const ProcessReading firstOfServer = ProcessReading::of(desktop_.server());
    pass(seconds_);
    Row row{name,
            ProcessUsage::between(first, ProcessReading::of(process)),
            ProcessUsage::between(firstOfServer, ProcessReading::of(desktop_.server())),
            ProcessMemory::of(process),
            {}};
    print(row);
    return row;
  }

  static void printHead() {
    std::printf("%-18s %9s %9s %9s %10s %8s %8s\n", "", "process", "X server", "sum", "wake-ups",
                "PSS", "RSS");
    std::fflush(stdout);
  }

 private:
  static void print(const Row& row) {
    std::printf("%-18s %7.2f %% %7.2f %% %7.2f %% %8.1f/s %8.1f %8.1f\n", qPrintable(row.name),
                row.process.processorPercent, row.server.processorPercent, row.sum(),
                row.process.wakeUps, row.memory.proportional, row.memory.resident);
    std::fflush(stdout);
  }

  const TickerDesktop& desktop_;
  const double seconds_;
};

// The median of several measurements.
std::optional<double> speedOf(const TickerDesktop& desktop, int firstRow, int lastRow) {
  std::vector<double> speeds;
  for (int i = 0; i < SpeedMeasurements; ++i)
    if (const std::optional<double> speed = desktop.speedOf(firstRow, lastRow))
      speeds.push_back(*speed);
  if (speeds.empty())
    return std::nullopt;
  std::sort(speeds.begin(), speeds.end());
  return speeds[speeds.size() / 2];
}

std::optional<Row> measureTickr(const TickerDesktop& desktop, const TickerBenchmark& benchmark,
                                const QStringList& lines) {
  const QTemporaryDir folder;
  const QString feed = folder.filePath(u"news.rss"_s);
  if (!writeFeed(feed, lines))
    return std::nullopt;
  const std::unique_ptr<Tickr> tickr = Tickr::start(feed, desktop.environment());
  if (!tickr) {
    std::printf("tickr: not installed, or files of its instance 99 are in the way\n");
    return std::nullopt;
  }
  pass(WarmUpSeconds);
  const std::optional<double> speed = speedOf(desktop, TickrFirstRow, TickrLastRow);
  if (!tickr->isRunning() || !speed) {
    std::printf("tickr: shows nothing that moves\n");
    return std::nullopt;
  }
  Row row = benchmark.measure(u"tickr"_s, tickr->process());
  row.speed = speed;
  return row;
}

// States in which nothing moves, and what brings them about and ends them; each says whether it
// could.
struct IdleState {
  QString name;
  std::function<bool()> begin;
  std::function<void()> end;
};

std::vector<IdleState> idleStates(TickerDesktop& desktop, const QProcessEnvironment& environment) {
  const auto command = [environment](const QString& name) {
    return [=] { return zqticker::run({name}, environment); };
  };
  return {{u"paused"_s, command(u"pause"_s), command(u"resume"_s)},
          {u"hidden"_s, command(u"hide"_s), command(u"show"_s)},
          {u"covered"_s,
           [&] {
             desktop.setCovered(true);
             return true;
           },
           [&] { desktop.setCovered(false); }},
          {u"locked"_s,
           [&] {
             desktop.setLocked(true);
             return true;
           },
           [&] { desktop.setLocked(false); }}};
}

void printRatios(const Row& tickr, const Row& ours) {
  const auto ratio = [](double peer, double own) { return own > 0 ? peer / own : 0; };
  std::printf("\ntickr : zqticker     process %.2f, X server %.2f, sum %.2f, wake-ups %.2f, PSS "
              "%.2f, RSS %.2f\n",
              ratio(tickr.process.processorPercent, ours.process.processorPercent),
              ratio(tickr.server.processorPercent, ours.server.processorPercent),
              ratio(tickr.sum(), ours.sum()), ratio(tickr.process.wakeUps, ours.process.wakeUps),
              ratio(tickr.memory.proportional, ours.memory.proportional),
              ratio(tickr.memory.resident, ours.memory.resident));
}

void printTarget(const char* name, double value, double most, const char* unit) {
  std::printf("%-34s %6.2f %s, at most %.1f: %s\n", name, value, unit, most,
              value <= most ? "met" : "missed");
}

// What the frames of so many seconds looked like; nothing where the program has no trace.
bool printTrace(const TickerDesktop& desktop, const QStringList& lines, double speed,
                double seconds) {
  const QProcessEnvironment environment = desktop.environment();
  const QTemporaryDir folder;
  const QString trace = folder.filePath(u"trace.csv"_s);
  {
    const auto program = zqticker::start(
        zqticker::stripArguments(lines, speed) << u"--trace"_s << trace, environment);
    pass(seconds);
    if (!program->isRunning()) {
      std::printf("zqticker --trace: has ended\n");
      return false;
    }
  }
  QByteArray summary;
  const bool isGood = zqticker::run({u"trace"_s, u"check"_s, trace}, environment, &summary);
  std::printf("%s", summary.constData());
  return isGood;
}

int measureAll(TickerDesktop& desktop, double seconds) {
  const QStringList lines = newsLines(LineCount);
  const TickerBenchmark benchmark(desktop, seconds);
  const QProcessEnvironment environment = desktop.environment();
  TickerBenchmark::printHead();
  pass(SettleSeconds);
  benchmark.measure(u"X server alone"_s, 0);
  const std::optional<Row> tickr = measureTickr(desktop, benchmark, lines);
  const double speed = tickr ? *tickr->speed : UsualSpeed;
  auto program = zqticker::start(zqticker::stripArguments(lines, speed), environment);
  pass(WarmUpSeconds);
  const std::optional<double> ownSpeed = speedOf(desktop, OurFirstRow, OurLastRow);
  const Row running = benchmark.measure(u"zqticker"_s, program->process());
  double wakeUps = 0;
  double idleProcess = 0;
  const auto measureIdle = [&](const QString& name) {
    pass(SettleSeconds);
    const Row row = benchmark.measure(u"zqticker "_s + name, program->process());
    wakeUps = std::max(wakeUps, row.process.wakeUps);
    idleProcess = std::max(idleProcess, row.process.processorPercent);
  };
  for (const IdleState& state : idleStates(desktop, environment)) {
    if (!state.begin()) {
      std::printf("zqticker %s: cannot be brought about\n", qPrintable(state.name));
      continue;
    }
    measureIdle(state.name);
    state.end();
  }
  program = nullptr;
  program = zqticker::start({u"run"_s, u"--no-window"_s, u"--stdin"_s}, environment);
  measureIdle(u"empty"_s);
  program = nullptr;

  if (tickr)
    printRatios(*tickr, running);
  std::printf("speed                %.1f pixels/s", speed);
  if (ownSpeed)
    std::printf(", measured of zqticker %.1f", *ownSpeed);
  std::printf("\n");
  printTarget("process while running", running.process.processorPercent, MostProcessPercent, "%");
  printTarget("process and X server", running.sum(), MostSumPercent, "%");
  printTarget("wake-ups while nothing moves", wakeUps, MostIdleWakeUps, "/s");
  if (zqticker::knowsOption(u"--trace"_s, environment)) {
    std::printf("\nframes of %.0f seconds:\n", seconds);
    printTrace(desktop, lines, speed, seconds);
  }
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  // A part of the X server's environment, and none of this program's windows.
  QCoreApplication application(argc, argv);
  const QStringList words = application.arguments().mid(1);
  const auto valueOf = [&](const QString& option) {
    const qsizetype at = words.indexOf(option);
    return at < 0 ? 0.0 : words.value(at + 1).toDouble();
  };
  const double minutes = valueOf(u"--trace-minutes"_s);
  const double seconds = valueOf(u"--seconds"_s);
  if (!words.isEmpty() && minutes <= 0 && seconds <= 0) {
    std::fprintf(stderr, "usage: ticker_benchmark [--seconds N | --trace-minutes N]\n");
    return 2;
  }
  TickerDesktop desktop;
  if (!desktop.isComplete()) {
    std::fprintf(stderr, "ticker_benchmark: needs Xvfb, openbox and dbus-daemon\n");
    return 1;
  }
  if (minutes > 0)
    return printTrace(desktop, newsLines(LineCount), UsualSpeed, minutes * 60) ? 0 : 1;
  return measureAll(desktop, seconds > 0 ? seconds : 30);
}
