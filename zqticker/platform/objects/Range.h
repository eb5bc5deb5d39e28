// A part of a sequence, as text and data count it.
#pragma once

#include <QtCore/QMetaType>

namespace zq::platform {

// `length` elements from `location` on; for text both count UTF-16 code units.
struct Range {
  qsizetype location = 0;
  qsizetype length = 0;

  // The index after the last element.
  qsizetype end() const { return location + length; }
  bool contains(qsizetype index) const { return index >= location && index - location < length; }

  friend bool operator==(const Range&, const Range&) = default;
};

} // namespace zq::platform

Q_DECLARE_METATYPE(zq::platform::Range)
