// Sets of indices.
#pragma once

#include "zqticker/platform/objects/Range.h"

#include <QtCore/QList>

namespace zq::platform {

// The indices of some ranges, in ascending order, none touching another.
struct IndexSet {
  QList<Range> ranges;

  friend bool operator==(const IndexSet&, const IndexSet&) = default;
};

} // namespace zq::platform

Q_DECLARE_METATYPE(zq::platform::IndexSet)
