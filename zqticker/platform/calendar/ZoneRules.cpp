#include "zqticker/platform/calendar/ZoneRules_p.h"

#include "zqticker/platform/calendar/gregorian_days_p.h"

#include <QtCore/qendian.h>

#include <algorithm>

namespace zq::platform {

namespace {
// More than any clock is ever set off from UTC.
constexpr qint64 LargestOffset = 26 * 3600;

// The header of each of a file's two blocks.
struct BlockHeader {
  static constexpr qsizetype Size = 44;

  quint32 utcFlags, standardFlags, leapSeconds, changes, types, characters;

  static std::optional<BlockHeader> read(QByteArrayView data) {
    if (data.size() < Size || !data.startsWith("TZif") || data[4] < '2')
      return std::nullopt;
    const auto count = [&](int index) {
      return qFromBigEndian<quint32>(data.data() + 20 + 4 * index);
    };
    return BlockHeader{count(0), count(1), count(2), count(3), count(4), count(5)};
  }

  // Bytes after the header, times being of `timeSize` bytes.
  quint64 bodySize(quint64 timeSize) const {
    return changes * (timeSize + 1) + quint64(types) * 6 + characters +
           leapSeconds * (timeSize + 4) + standardFlags + utcFlags;
  }
};
} // namespace

std::optional<ZoneRules> ZoneRules::read(QByteArrayView file) {
  // The first block has times of 32 bits, for programs older than 1996.
  const auto oldHeader = BlockHeader::read(file);
  if (!oldHeader || quint64(file.size() - BlockHeader::Size) < oldHeader->bodySize(4))
    return std::nullopt;
  const QByteArrayView block =
      file.sliced(BlockHeader::Size + static_cast<qsizetype>(oldHeader->bodySize(4)));
  const auto header = BlockHeader::read(block);
  if (!header || quint64(block.size() - BlockHeader::Size) < header->bodySize(8) ||
      header->types == 0 || header->leapSeconds != 0)
    return std::nullopt;

  const char* const times = block.data() + BlockHeader::Size;
  const char* const indexes = times + 8 * std::size_t(header->changes);
  const char* const types = indexes + header->changes;
  const auto offsetOfType = [&](quint32 type) { return qFromBigEndian<qint32>(types + 6 * type); };
  for (quint32 type = 0; type < header->types; ++type)
    if (std::abs(qint64(offsetOfType(type))) >= LargestOffset)
      return std::nullopt;

  ZoneRules rules(offsetOfType(0));
  rules.changes_.reserve(header->changes);
  for (quint32 index = 0; index < header->changes; ++index) {
    const auto moment = qFromBigEndian<qint64>(times + 8 * std::size_t(index));
    const auto type = static_cast<quint8>(indexes[index]);
    if (type >= header->types ||
        (!rules.changes_.empty() && moment <= rules.changes_.back().moment))
      return std::nullopt;
    rules.changes_.push_back({moment, offsetOfType(type)});
  }

  QByteArrayView rule =
      block.sliced(BlockHeader::Size + static_cast<qsizetype>(header->bodySize(8)));
  if (rule.size() > 2 && rule.front() == '\n' && rule.back() == '\n') {
    rules.rule_ = PosixZoneRule::parse(rule.sliced(1).chopped(1));
    if (!rules.rule_)
      return std::nullopt;
  }
  return rules;
}

qint32 ZoneRules::offsetAt(qint64 seconds) const {
  if (rule_ && (changes_.empty() || seconds >= changes_.back().moment))
    return rule_->offsetAt(seconds);
  const auto next =
      std::upper_bound(changes_.begin(), changes_.end(), seconds,
                       [](qint64 moment, const Change& change) { return moment < change.moment; });
  return next == changes_.begin() ? first_ : std::prev(next)->offset;
}

qint32 ZoneRules::offsetOfLocal(qint64 localSeconds) const {
  const qint32 before = offsetAt(localSeconds - LargestOffset);
  const qint32 after = offsetAt(localSeconds + LargestOffset);
  if (before == after || offsetAt(localSeconds - after) == after)
    return after;
  return before;
}

} // namespace zq::platform
