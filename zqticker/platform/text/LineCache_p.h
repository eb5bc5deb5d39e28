// The layouts that are at hand.
#pragma once

#include <QtCore/qglobal.h>

#include <list>
#include <memory>
#include <optional>

namespace zq::platform {

class TextLine;

// What the cache knows of one line.
struct LineCacheEntry {
  std::shared_ptr<const TextLine> line;
  qsizetype cost = 0;
};
// Where a line stands in it; nothing for one that does not.
using LineCachePlace = std::optional<std::list<LineCacheEntry>::iterator>;

// Keeps the lines that were used last, so that a text near the screen is laid out once, while a
// hundred thousand that wait take no more than their characters. Lines that somebody else holds as
// well lose only their glyphs when they have to go.
//
// Thread: main.
class LineCache {
 public:
  // What all lines may cost together: a line costs the characters whose glyphs are at hand, and
  // LineCost. Several screens full.
  static constexpr qsizetype MaximumCost = qsizetype(1) << 17;
  static constexpr qsizetype LineCost = 64;

  static LineCache& shared();

  // The line was measured or drawn.
  void use(const std::shared_ptr<const TextLine>& line);

  qsizetype cost() const { return cost_; }

 private:
  std::list<LineCacheEntry> lines_; // most recently used first
  qsizetype cost_ = 0;
};

} // namespace zq::platform
