// What the queue window shows and changes.
#pragma once

#include "app/display/QueuedSign.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <cstdint>
#include <optional>
#include <vector>

class ZQTickerSign;

namespace zq::app {

// A queue of signs. What the changes below refuse, they leave as it is, and answer false or null.
//
// Thread: main.
class QueueSource {
 public:
  virtual ~QueueSource();

  // Another number whenever rows() would give something else; takes constant time.
  virtual std::uint64_t revision() const = 0;
  // What is on the strip, the oldest first, then what waits, in the order of showing.
  virtual std::vector<QueuedSign> rows() = 0;

  // Adds a sign before the waiting one `before`, at the end where that is null or has gone. A sign
  // with the identifier of another one takes the place of that.
  virtual Strip::Entry add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin,
                           const Strip::Entry& before) = 0;
  // Takes out one that waits; what is on the strip leaves it as it would have.
  virtual bool remove(const Strip::Entry& entry) = 0;
  // Moves one that waits before another, to the end where `before` is null.
  virtual bool move(const Strip::Entry& entry, const Strip::Entry& before) = 0;
  // Puts `sign` into the place of one that waits, with `loopsLeft` further showings, negative for
  // without end; with those that the other had left where nothing is said. The entry of the new
  // one.
  virtual Strip::Entry replace(const Strip::Entry& entry, platform::Ref<ZQTickerSign> sign,
                               std::optional<std::int64_t> loopsLeft) = 0;

  // A sign of this text as the strip shows plain lines.
  virtual platform::Ref<ZQTickerSign> makeTextSign(const QString& text) = 0;
  // The size in points above which a picture does not fit the strip; 0 where a side is free.
  virtual QSizeF pictureRoom() const = 0;
};

} // namespace zq::app
