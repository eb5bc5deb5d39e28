// What the signs of other programs take while they are queued.
#pragma once

#include "app/intake/SenderLimits.h"
#include "zqticker/platform/objects/Object.h"

#include <QtCore/QString>

#include <memory>
#include <optional>
#include <vector>

class ZQTickerSign;

namespace zq::app {

// Counts the signs that were handed to the display, for as long as it keeps them, and what they
// take. It does not keep them itself.
//
// Thread: the one of the signs.
class HeldSigns {
 public:
  // Why another sign of `sender` that takes `memory` bytes may not come in; nothing where it may.
  // One that has the identifier of a sign already held takes its place and counts for both.
  std::optional<SenderLimits::Refusal> refusal(const SenderKey& sender, const QString& identifier,
                                               qint64 memory);
  // Counts `sign` from now on.
  void add(const platform::Ref<ZQTickerSign>& sign, const SenderKey& sender, qint64 memory);

  std::size_t count();

 private:
  struct Held {
    std::weak_ptr<ZQTickerSign> sign;
    SenderKey sender;
    qint64 memory;
  };

  std::vector<Held> held_;
};

// About how many bytes `sign` takes while it is queued: its pixels, and its text with its layout.
qint64 memoryOf(const ZQTickerSign& sign);

} // namespace zq::app
