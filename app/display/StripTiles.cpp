#include "app/display/StripTiles.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace zq::app {

namespace {
constexpr std::size_t MostSpares = 8;
// Pixels of a run that are told apart; a longer one shows nothing behind them.
constexpr double LongestRun = 1e15;

// `entered` and `remaining` are pixels: of the leading edge from where it entered, and of the
// trailing one to where it leaves; or the other way round.
double fadedOpacity(qint64 entered, qint64 remaining, double fadePixels) {
  const auto nearest = static_cast<double>(std::min(entered, remaining));
  return nearest < fadePixels ? std::max(nearest, 0.0) / fadePixels : 1;
}
// Of all strips, so that whoever keeps pictures may show another one.
std::uint64_t newSerial() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}
} // namespace

qint64 StripTiles::wholePixel(double pixels) {
  constexpr double RoundedAway = 1e-6;
  // What is farther away is as little in sight.
  const double near = std::isnan(pixels) ? 0 : std::clamp(pixels, -LongestRun, LongestRun);
  return std::llround(std::floor(near + 0.5 + RoundedAway));
}

StripTiles::StripTiles(Draw draw) : draw_(std::move(draw)) {}

void StripTiles::clear() {
  coming_ = {};
  tiles_.clear();
  spare_.clear();
}

void StripTiles::forget(std::uint64_t runNumber) {
  if (coming_.run == runNumber)
    coming_ = {};
  std::erase_if(tiles_, [=](const Tile& tile) { return tile.run == runNumber; });
}

StripTiles::Tile StripTiles::make(const Strip::Run& run, qint64 index, int pixels,
                                  const QSize& size) {
  Tile tile{run.number, index, newSerial(), QImage()};
  ++drawn_;
  if (!spare_.empty()) {
    tile.picture = std::move(spare_.back());
    spare_.pop_back();
  } else {
    tile.picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
  }
  tile.picture.fill(Qt::transparent);
  draw_({&run, index * TileLength, pixels}, tile.picture);
  return tile;
}

void StripTiles::fill(StripFrame& frame, const std::deque<Strip::Run>& runs, const View& view,
                      const std::function<Look(const Strip::Run&)>& lookOf) {
  // Before tiles are drawn again, so that no frame shares their pixels.
  frame.pieces.clear();
  const bool horizontal = isHorizontal(view.direction);
  const bool reversed = isReversed(view.direction);
  const double fadePixels = view.fadeLength * view.scale;
  const qint64 extent = horizontal ? frame.size.width() : frame.size.height();
  const QSize tileSize =
      horizontal ? QSize(TileLength, frame.size.height()) : QSize(frame.size.width(), TileLength);
  const auto recycle = [&](Tile& tile) {
    if (spare_.size() < MostSpares && tile.picture.size() == tileSize)
      spare_.push_back(std::move(tile.picture));
  };
  auto next = tiles_.begin();
  kept_.clear();
  coming_ = {};
  for (std::size_t i = 0; i < runs.size(); ++i) {
    // From the left or upper end on in every direction: neighbours may share a pixel.
    const Strip::Run& run = runs[reversed ? runs.size() - 1 - i : i];
    const Look look = lookOf(run);
    const qint64 length = std::llround(std::min(std::ceil(look.length * view.scale), LongestRun));
    // The run's left or upper end, in pixels from that of the strip.
    const double place = reversed ? -run.shownEnd() : run.start;
    const qint64 lead = extent - (view.offset - wholePixel(place * view.scale));
    const double opacity = look.fades ? fadedOpacity(extent - lead, lead + length, fadePixels) : 1;
    const qint64 firstPixel = std::max<qint64>(-lead, 0);
    const qint64 endPixel = std::min(extent - lead, length);
    const auto pixelsOf = [length](qint64 index) {
      return static_cast<int>(std::min<qint64>(length - index * TileLength, TileLength));
    };
    // They are wanted in the order of the last time, but for those of runs that have returned.
    const auto takeOld = [&](qint64 index) {
      const auto isWanted = [&](const Tile& tile) {
        return tile.run == run.number && tile.index == index;
      };
      auto found = std::find_if(next, tiles_.end(), isWanted);
      if (found == tiles_.end())
        found = std::find_if(tiles_.begin(), tiles_.end(), isWanted);
      if (found == tiles_.end())
        return false;
      next = found + 1;
      kept_.push_back(std::move(*found));
      found->run = 0;
      return true;
    };
    const qint64 first = firstPixel / TileLength;
    const qint64 end = endPixel > 0 ? (endPixel + TileLength - 1) / TileLength : 0;
    for (qint64 index = first; index < end; ++index) {
      const int pixels = pixelsOf(index);
      if (!takeOld(index))
        kept_.push_back(make(run, index, pixels, tileSize));
      const Tile& tile = kept_.back();
      const int at = static_cast<int>(lead + index * TileLength);
      frame.pieces.push_back({tile.serial, tile.picture,
                              horizontal ? QRect(0, 0, pixels, frame.size.height())
                                         : QRect(0, 0, frame.size.width(), pixels),
                              horizontal ? QPoint(at, 0) : QPoint(0, at), opacity});
    }
    // The next one of a run that has not entered wholly; those in front of it have.
    const qint64 ahead = reversed ? first - 1 : end;
    if (first < end && ahead >= 0 && ahead * TileLength < length && !takeOld(ahead))
      coming_ = {run.number, ahead, pixelsOf(ahead)};
  }
  for (Tile& tile : tiles_)
    if (tile.run != 0)
      recycle(tile);
  tiles_.swap(kept_);
}

void StripTiles::prepare(const StripFrame& frame, const std::deque<Strip::Run>& runs) {
  const Coming coming = std::exchange(coming_, {});
  const auto run = std::find_if(runs.begin(), runs.end(), [&](const Strip::Run& candidate) {
    return candidate.number == coming.run;
  });
  if (coming.run == 0 || run == runs.end())
    return;
  tiles_.push_back(make(*run, coming.index, coming.pixels,
                        frame.isHorizontal ? QSize(TileLength, frame.size.height())
                                           : QSize(frame.size.width(), TileLength)));
}

} // namespace zq::app
