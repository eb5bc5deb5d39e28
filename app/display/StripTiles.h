// Finished pictures of what is on the strip.
#pragma once

#include "app/display/ScrollDirection.h"
#include "app/display/Strip.h"
#include "app/display/StripFrame.h"

#include <QtGui/QImage>

#include <functional>
#include <vector>

namespace zq::app {

// Cuts what is on the strip into tiles along it and keeps their pixels as long as they are in
// sight. A tile is drawn once, when it comes into sight; its memory then serves another.
//
// Positions are whole device pixels: each run keeps its place relative to the others, all move by
// the same number of pixels.
class StripTiles {
 public:
  // Pixels of a tile along the strip.
  static constexpr int TileLength = 512;

  // A tile to be drawn: `pixels` along the strip, `first` pixels behind the left or upper end of
  // what the run shows, into a cleared picture that covers the strip's whole breadth.
  struct Request {
    const Strip::Run* run = nullptr;
    qint64 first = 0;
    int pixels = 0;
  };
  using Draw = std::function<void(const Request&, QImage&)>;
  // What a run shows: its drawn length in points, and whether it fades.
  struct Look {
    double length = 0;
    bool fades = false;
  };
  // From where the strip is seen.
  struct View {
    ScrollDirection direction = ScrollDirection::Left;
    // In device pixels: the travel, or how far it is from the extent where the direction is
    // reversed; so that a reversal leaves it as it is.
    qint64 offset = 0;
    double scale = 1;      // pixels per point
    double fadeLength = 0; // points over which a run fades in and out
  };

  // The nearest whole pixel. Halfway it is the next one, also where a sum was rounded down, so that
  // nothing jumps when the same place is reckoned in another way.
  static qint64 wholePixel(double pixels);

  explicit StripTiles(Draw draw);

  // Drops all tiles: size, direction, scale or content have changed.
  void clear();
  // Drops the tiles of one run.
  void forget(std::uint64_t runNumber);

  // Fills `frame` with what is in sight. A run that fades has one opacity all over: it grows from 0
  // while the leading edge goes the fade length from where it entered, and falls to 0 while the
  // trailing edge goes the last of it before it leaves.
  void fill(StripFrame& frame, const std::deque<Strip::Run>& runs, const View& view,
            const std::function<Look(const Strip::Run&)>& lookOf);

  // Draws the tile that comes into sight next, as far as it is known from the last frame; one that
  // was filled from these runs.
  void prepare(const StripFrame& frame, const std::deque<Strip::Run>& runs);

  std::size_t count() const { return tiles_.size(); }
  std::uint64_t drawn() const { return drawn_; }

 private:
  struct Tile {
    std::uint64_t run = 0; // 0 for one whose pixels have been taken
    qint64 index = 0;
    std::uint64_t serial = 0;
    QImage picture;
  };

  // A tile that is not in sight yet.
  struct Coming {
    std::uint64_t run = 0; // 0 for none
    qint64 index = 0;
    int pixels = 0;
  };

  Tile make(const Strip::Run& run, qint64 index, int pixels, const QSize& size);

  Draw draw_;
  std::vector<Tile> tiles_; // in the order along the strip
  std::vector<Tile> kept_;  // the next tiles_, while a frame is filled
  std::vector<QImage> spare_;
  Coming coming_;
  std::uint64_t drawn_ = 0;
};

} // namespace zq::app
