// Changes of a display's queue by identifier, with 20 and with 100,000 signs waiting. The strip
// moves on by a thousandth of a second before each, as with 1,000 changes a second.
//
//   QueueInsert…    a sign is added and the one added before it removed
//   QueueReplace…   a sign takes over from one of those that wait
//   QueueRemove…    a sign that waits is removed and added again
//   QueueMove…      a sign is moved before another one
//   QueueArrange…   the order of 20 arranged signs is turned round
//   QueueFrame…     the strip moves on by 1/60 s and its frame is made
//   QueueMemory     100,000 signs with texts of 40 characters and identifiers are queued: resident
//                   bytes of each, of all together (megabytes), and those of all that the process
//                   has grown by; the time is that of adding them
//   QueueMemoryShown    the same once every one of them has been on the strip
//   QueueMemoryFloor    their texts and identifiers alone, as strings
//   QueueFont       the default font changes while they wait
#include "app/display/TickerDisplay.h"
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QFile>
#include <QtGui/QImage>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace zq::app;
using namespace zq::platform;

namespace {

constexpr int Few = 20;
constexpr int Many = 100'000;

// A display over whose strip signs run, with `waiting` more of them in its queue.
struct LongQueue {
  explicit LongQueue(int waiting) : count(waiting) {
    QImage pixels(40, 24, QImage::Format_RGB32);
    pixels.fill(Qt::red);
    picture = Image::fromQImage(pixels);
    display.setSize(QSizeF(1920, 24), 0);
    display.setDefaultFont(Font::fontWithName(QStringLiteral("DejaVu Sans"), 16));
    display.setSpeed(60, 0);
    for (int i = 0; i < 60; ++i)
      display.addSign(sign(-1 - i), 0);
    display.advanceTo(time = 40);
    identifiers.reserve(std::size_t(waiting));
    for (int i = 0; i < waiting; ++i) {
      identifiers.push_back(QStringLiteral("sign-%1").arg(i));
      entries.push_back(display.addSign(sign(i), time));
    }
  }

  Ref<ZQTickerSign> sign(int number) {
    const auto made = ZQImageTickerSign::make(picture);
    made->setIdentifier(number < 0 ? QStringLiteral("running-%1").arg(-number)
                                   : identifiers[std::size_t(number)]);
    made->setLoopCount(ZQEndlessLoopCount);
    made->setContinuousScrolling(true);
    return made;
  }

  int any() { return int(random() % unsigned(count)); }
  void moveOn() { display.advanceTo(time += 0.001); }

  int count;
  Ref<Image> picture;
  TickerDisplay display;
  double time = 0;
  std::vector<QString> identifiers;
  std::vector<TickerDisplay::Entry> entries;
  std::mt19937 random{1};
};

void insertSigns(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  int number = 0;
  QString last;
  for (auto _ : state) {
    queue.moveOn();
    const auto made = queue.sign(0);
    const QString identifier = QStringLiteral("new-%1").arg(++number);
    made->setIdentifier(identifier);
    queue.display.addSign(made, queue.time);
    if (number > 1)
      queue.display.removeSign(last, queue.time);
    last = identifier;
  }
}

void replaceSigns(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  for (auto _ : state) {
    queue.moveOn();
    queue.display.replaceSign(queue.sign(queue.any()), queue.time);
  }
}

void removeSigns(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  for (auto _ : state) {
    queue.moveOn();
    const int number = queue.any();
    queue.display.removeSign(queue.identifiers[std::size_t(number)], queue.time);
    queue.display.addSign(queue.sign(number), queue.time);
  }
}

void moveSigns(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  for (auto _ : state) {
    queue.moveOn();
    queue.display.moveEntry(queue.entries[std::size_t(queue.any())],
                            queue.entries[std::size_t(queue.any())], queue.time);
  }
}

void arrangeSigns(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  QStringList order;
  for (int i = 0; i < Few; ++i) {
    const auto made = queue.sign(0);
    order.append(QStringLiteral("arranged-%1").arg(i));
    made->setIdentifier(order.back());
    queue.display.addArrangedSign(made, queue.time);
  }
  for (auto _ : state) {
    queue.moveOn();
    std::reverse(order.begin(), order.end());
    queue.display.arrangeSigns(order, queue.time);
  }
}

void makeFrames(benchmark::State& state, int waiting) {
  LongQueue queue(waiting);
  for (auto _ : state)
    queue.display.advanceTo(queue.time += 1.0 / 60);
}

double residentBytes() {
  QFile file(QStringLiteral("/proc/self/statm"));
  if (!file.open(QIODevice::ReadOnly))
    return 0;
  return file.readAll().split(' ').at(1).toDouble() * double(sysconf(_SC_PAGESIZE));
}

QString headline(int number) {
  return QStringLiteral("A headline of forty characters: %1").arg(number, 8);
}

QString nameOf(int number) {
  return QStringLiteral("sign-%1").arg(number);
}

void fill(TickerDisplay& display, int waiting) {
  display.setSize(QSizeF(1920, 24), 0);
  display.setDefaultFont(Font::fontWithName(QStringLiteral("DejaVu Sans"), 16));
  for (int i = 0; i < waiting; ++i) {
    const auto sign = display.makeTextSign(headline(i));
    sign->setIdentifier(nameOf(i));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    display.addSign(sign, 0);
  }
}

// What the process grows by, measured from when fonts and caches have been used.
class Growth {
 public:
  Growth() {
    TickerDisplay display;
    fill(display, Few);
    display.setSpeed(60, 0);
    display.advanceTo(10);
    malloc_trim(0);
    before_ = residentBytes();
  }

  void report(benchmark::State& state, int count) const {
    const double bytes = residentBytes() - before_;
    state.counters["bytes_each"] = bytes / count;
    state.counters["megabytes"] = bytes / 1e6;
  }

 private:
  double before_;
};

void QueueMemory(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const Growth growth;
    TickerDisplay display;
    state.ResumeTiming();
    fill(display, Many);
    state.PauseTiming();
    growth.report(state, Many);
    state.ResumeTiming();
  }
}

void QueueMemoryShown(benchmark::State& state) {
  for (auto _ : state) {
    const Growth growth;
    TickerDisplay display;
    fill(display, Many);
    constexpr double speed = 100'000;
    display.setSpeed(speed, 0);
    for (double time = 0; display.strip().runs().empty() ||
                          display.strip().runs().back().number < std::uint64_t(Many);)
      display.advanceTo(time += 1000 / speed);
    growth.report(state, Many);
  }
}

void QueueMemoryFloor(benchmark::State& state) {
  for (auto _ : state) {
    const Growth growth;
    std::vector<std::pair<QString, QString>> strings;
    strings.reserve(Many);
    for (int i = 0; i < Many; ++i)
      strings.emplace_back(headline(i), nameOf(i));
    growth.report(state, Many);
    benchmark::DoNotOptimize(strings.data());
  }
}

void QueueFont(benchmark::State& state) {
  TickerDisplay display;
  fill(display, Many);
  double size = 16;
  for (auto _ : state)
    display.setDefaultFont(Font::fontWithName(QStringLiteral("DejaVu Sans"), size += 0.001));
}

#define QUEUE_BENCHMARK(name, function)                                                            \
  void name##Few(benchmark::State& state) {                                                        \
    function(state, Few);                                                                          \
  }                                                                                                \
  BENCHMARK(name##Few);                                                                            \
  void name##Many(benchmark::State& state) {                                                       \
    function(state, Many);                                                                         \
  }                                                                                                \
  BENCHMARK(name##Many)

QUEUE_BENCHMARK(QueueInsert, insertSigns);
QUEUE_BENCHMARK(QueueReplace, replaceSigns);
QUEUE_BENCHMARK(QueueRemove, removeSigns);
QUEUE_BENCHMARK(QueueMove, moveSigns);
QUEUE_BENCHMARK(QueueArrange, arrangeSigns);
QUEUE_BENCHMARK(QueueFrame, makeFrames);

BENCHMARK(QueueMemory)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(QueueMemoryShown)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(QueueMemoryFloor)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(QueueFont)->Iterations(20)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"QueueInsertMany", "QueueInsertFew"},
                        {"QueueReplaceMany", "QueueReplaceFew"},
                        {"QueueRemoveMany", "QueueRemoveFew"},
                        {"QueueMoveMany", "QueueMoveFew"},
                        {"QueueArrangeMany", "QueueArrangeFew"},
                        {"QueueFrameMany", "QueueFrameFew"},
                        {"QueueMemory", "QueueMemoryFloor"},
                        {"QueueMemoryShown", "QueueMemoryFloor"}},
                       {"bytes_each"});
}
