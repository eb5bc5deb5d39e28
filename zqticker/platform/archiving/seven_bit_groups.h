// Numbers in groups of 7 bits, as archives pack lists of small numbers.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <optional>

namespace zq::platform {

// Appends `number`, least significant group first, the top bit set on every byte but the last:
// 300 is AC 02.
ZQTICKER_EXPORT void appendSevenBitGroups(QByteArray& bytes, quint64 number);

// Reads the number at `position` and moves past it. Nothing where the bytes end in the middle of
// it, or where it is wider than 63 bits.
ZQTICKER_EXPORT std::optional<qint64> takeSevenBitGroups(QByteArrayView bytes, qsizetype& position);

} // namespace zq::platform
