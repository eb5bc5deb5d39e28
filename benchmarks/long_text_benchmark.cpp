// One text of 1,000,000 characters: laid out at once, and in slices between the frames of a strip.
//
//   LongTextAtOnce…     the first size() of the text
//   LongTextSlices…     the same in slices of 1.5 ms: longest_ms, of the processor on this thread,
//                       and how many
//   LongTextFrames      frames of a strip at 100,000 points a second, from the text's entry to its
//                       far end; longest_ms, and how many
//   LongTextFramesFew   the same with a text that is repeated after 200 characters
#include "app/display/TickerDisplay.h"
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <time.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;

namespace {

constexpr qsizetype Length = 1'000'000;
constexpr qint64 SliceNanoseconds = 1'500'000;
constexpr double Speed = 100'000;
constexpr double FrameSeconds = 1.0 / 60;

const QString Words = u"Quotes up, rain by evening; a train is late again. "_s;
const QString Unbroken = u"AVAToffiWave"_s;
const QString Arabic = u"السلام عليكم ورحمة الله وبركاته "_s;
const QString Mixed = u"abc שלום (12.5 def) Съешь é👩‍👩‍👧‍👦 🇩🇪 "_s;
const QString Emoji = u"😀👍🏽👩‍👩‍👧‍👦"_s;
// Two thirds of a million stretches of their own.
const QString Alternating = u"a😀"_s;

QString longText(const QString& text) {
  return text.repeated(Length / text.size() + 1).left(Length);
}

Ref<AttributedString> styled(const QString& text) {
  return AttributedString::make(
      text, {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 16))}});
}

// The processor's time of this thread, which other programs do not add to.
class Stopwatch {
 public:
  double milliseconds() const { return now() - start_; }

 private:
  static double now() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
  }

  double start_ = now();
};

void atOnce(benchmark::State& state, const QString& text) {
  const QString characters = longText(text);
  for (auto _ : state)
    benchmark::DoNotOptimize(styled(characters)->size());
}

void slices(benchmark::State& state, const QString& text) {
  const QString characters = longText(text);
  double longest = 0;
  double count = 0;
  for (auto _ : state) {
    const auto string = styled(characters);
    for (bool isMeasured = false; !isMeasured; ++count) {
      const Stopwatch stopwatch;
      QDeadlineTimer deadline(0, Qt::PreciseTimer);
      deadline.setPreciseRemainingTime(0, SliceNanoseconds, Qt::PreciseTimer);
      isMeasured = string->measureUntil(deadline);
      longest = std::max(longest, stopwatch.milliseconds());
    }
  }
  state.counters["longest_ms"] = longest;
  state.counters["slices"] = count / double(state.iterations());
}

void frames(benchmark::State& state, const QString& text, int signs) {
  double longest = 0;
  double count = 0;
  for (auto _ : state) {
    state.PauseTiming();
    TickerDisplay display;
    display.setSize(QSizeF(1920, 24), 0);
    display.setDefaultFont(Font::fontWithName(u"DejaVu Sans"_s, 16));
    display.setSpeed(Speed, 0);
    for (int i = 0; i < signs; ++i)
      display.addSign(display.makeTextSign(text), 0);
    while (!display.prepareUntil(QDeadlineTimer(0)))
      ;
    state.ResumeTiming();
    double time = 0;
    while (!display.isFinished()) {
      const Stopwatch stopwatch;
      display.advanceTo(time += FrameSeconds);
      longest = std::max(longest, stopwatch.milliseconds());
      ++count;
    }
  }
  state.counters["longest_ms"] = longest;
  state.counters["frames"] = count / double(state.iterations());
}

void LongTextFrames(benchmark::State& state) {
  frames(state, longText(Words), 1);
}
BENCHMARK(LongTextFrames)->Unit(benchmark::kMillisecond)->Iterations(1);

void LongTextFramesFew(benchmark::State& state) {
  frames(state, longText(Words).left(200), int(Length / 200));
}
BENCHMARK(LongTextFramesFew)->Unit(benchmark::kMillisecond)->Iterations(1);

#define LONG_TEXT_BENCHMARK(name)                                                                  \
  void LongTextAtOnce##name(benchmark::State& state) {                                             \
    atOnce(state, name);                                                                           \
  }                                                                                                \
  BENCHMARK(LongTextAtOnce##name)->Unit(benchmark::kMillisecond)->Iterations(1);                   \
  void LongTextSlices##name(benchmark::State& state) {                                             \
    slices(state, name);                                                                           \
  }                                                                                                \
  BENCHMARK(LongTextSlices##name)->Unit(benchmark::kMillisecond)->Iterations(1)

LONG_TEXT_BENCHMARK(Words);
LONG_TEXT_BENCHMARK(Unbroken);
LONG_TEXT_BENCHMARK(Arabic);
LONG_TEXT_BENCHMARK(Mixed);
LONG_TEXT_BENCHMARK(Emoji);
LONG_TEXT_BENCHMARK(Alternating);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"LongTextFrames", "LongTextFramesFew"},
                        {"LongTextSlicesWords", "LongTextAtOnceWords"},
                        {"LongTextSlicesUnbroken", "LongTextAtOnceUnbroken"},
                        {"LongTextSlicesArabic", "LongTextAtOnceArabic"},
                        {"LongTextSlicesMixed", "LongTextAtOnceMixed"},
                        {"LongTextSlicesEmoji", "LongTextAtOnceEmoji"},
                        {"LongTextSlicesAlternating", "LongTextAtOnceAlternating"}});
}
