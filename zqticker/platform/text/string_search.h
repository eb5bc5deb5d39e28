// Searching for one string in another, in linear time whatever they hold.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QStringView>

namespace zq::platform {

// The first index from `from` on at which the code units of `string` stand in `text`; -1 where
// there is none, and for an empty string, which stands nowhere. Takes time in proportion to the
// length of both, never to their product.
ZQTICKER_EXPORT qsizetype indexOfString(QStringView text, QStringView string, qsizetype from = 0);

} // namespace zq::platform
