// A frame of a 1920 × 24 strip on which 20 signs are in sight, painted into a raster image.
//
//   StripFrame            the display moves on by 1/60 s and its frame is painted
//   StripFramePlain       the same finished pictures at the same places, with plain QPainter calls
//   StripFrameAfresh      the same texts at the same places, laid out and drawn anew in every frame
//   StripFrameLongQueue   StripFrame with 100,000 more signs waiting
//   StripFrameUnchanged   the display moves on by less than a pixel; nothing is painted
#include "app/display/TickerDisplay.h"
#include "benchmarks/ratio_main.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QPainter>

#include <cmath>

using namespace zq::app;
using namespace zq::platform;

namespace {

constexpr QSize StripSize(1920, 24);
constexpr int SignsInSight = 20;
constexpr double Speed = 60;
constexpr double FrameSeconds = 1.0 / 60;

// A display whose strip is full, with `waiting` more signs behind it, and the time of its frame.
struct FullStrip {
  explicit FullStrip(int waiting) {
    display.setSize(StripSize, 0);
    display.setDefaultFont(Font::fontWithName(QStringLiteral("DejaVu Sans"), 16));
    display.setSpeed(Speed, 0);
    for (int i = 0; i < 2 * SignsInSight + waiting; ++i)
      add(i);
    time = StripSize.width() / Speed + 1;
    display.advanceTo(time);
  }

  void add(int number) {
    const auto sign = display.makeTextSign(QStringLiteral("Signal %1").arg(100 + number % 900));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    display.addSign(sign, 0);
  }

  // Moves the display on by one frame and paints it.
  void paintNext(QPainter& painter) {
    time += FrameSeconds;
    display.advanceTo(time);
    paintFrame(painter, display.frame(), Qt::white);
  }

  TickerDisplay display;
  double time = 0;
};

void measureFrames(benchmark::State& state, int waiting) {
  FullStrip strip(waiting);
  QImage canvas(StripSize, QImage::Format_RGB32);
  QPainter painter(&canvas);
  const auto drawnBefore = strip.display.tiles().drawn();
  double inSight = 0;
  for (auto _ : state) {
    strip.paintNext(painter);
    inSight += double(strip.display.frame().pieces.size());
  }
  state.counters["in_sight"] = inSight / double(state.iterations());
  state.counters["tiles_drawn_per_frame"] =
      double(strip.display.tiles().drawn() - drawnBefore) / double(state.iterations());
}
void StripFrame(benchmark::State& state) {
  measureFrames(state, 0);
}
BENCHMARK(StripFrame);

void StripFrameLongQueue(benchmark::State& state) {
  measureFrames(state, 100'000);
}
BENCHMARK(StripFrameLongQueue);

void StripFramePlain(benchmark::State& state) {
  FullStrip strip(0);
  QImage canvas(StripSize, QImage::Format_RGB32);
  QPainter painter(&canvas);
  const auto pieces = strip.display.frame().pieces;
  double travel = 0;
  for (auto _ : state) {
    travel += Speed * FrameSeconds;
    // Within one sign's length, so that as many are in sight as on the strip.
    const int shift = int(std::lround(travel)) % (StripSize.width() / SignsInSight);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(QRect(QPoint(0, 0), StripSize), Qt::white);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    for (const auto& piece : pieces)
      painter.drawImage(piece.target - QPoint(shift, 0), piece.picture, piece.source);
  }
  state.counters["in_sight"] = double(pieces.size());
}
BENCHMARK(StripFramePlain);

void StripFrameAfresh(benchmark::State& state) {
  FullStrip strip(0);
  QImage canvas(StripSize, QImage::Format_RGB32);
  QPainter painter(&canvas);
  const auto pieces = strip.display.frame().pieces;
  double travel = 0;
  for (auto _ : state) {
    travel += Speed * FrameSeconds;
    const int shift = int(std::lround(travel)) % (StripSize.width() / SignsInSight);
    painter.fillRect(QRect(QPoint(0, 0), StripSize), Qt::white);
    GraphicsContext context(&painter, StripSize);
    for (std::size_t i = 0; i < pieces.size(); ++i)
      strip.display.makeTextSign(QStringLiteral("Signal %1").arg(100 + i))
          ->drawAtPoint(QPointF(pieces[i].target.x() - shift, 0));
  }
  state.counters["in_sight"] = double(pieces.size());
}
BENCHMARK(StripFrameAfresh);

void StripFrameUnchanged(benchmark::State& state) {
  FullStrip strip(0);
  std::int64_t painted = 0;
  for (auto _ : state) {
    // A million frames pass a pixel.
    strip.time += 1e-6 / Speed;
    painted += strip.display.advanceTo(strip.time);
  }
  state.counters["painted"] = double(painted) / double(state.iterations());
}
BENCHMARK(StripFrameUnchanged);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"StripFrame", "StripFramePlain"},
                        {"StripFrame", "StripFrameAfresh"},
                        {"StripFrameLongQueue", "StripFrame"}});
}
