#include "zqticker/platform/archiving/PropertyListWriter_p.h"

#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr PropertyListWriter::Index Unnumbered = 0xFFFFFFFF;

unsigned bytesFor(std::uint64_t value) {
  return value <= 0xFF ? 1 : value <= 0xFFFF ? 2 : value <= 0xFFFFFFFF ? 4 : 8;
}

// A count takes a nibble, or an integer object after the marker.
std::size_t headerSize(std::uint64_t count) {
  return count < 15 ? 1 : 2 + bytesFor(count);
}

char* putNumber(char* at, std::uint64_t value, unsigned size) {
  for (unsigned i = size; i-- > 0; value >>= 8)
    at[i] = char(value);
  return at + size;
}

char* putHeader(char* at, unsigned marker, std::uint64_t count) {
  if (count < 15) {
    *at++ = char(marker | count);
    return at;
  }
  const unsigned size = bytesFor(count);
  *at++ = char(marker | 0xF);
  *at++ = char(0x10 | std::countr_zero(size));
  return putNumber(at, count, size);
}

bool isAscii(QStringView text) {
  char16_t all = 0;
  for (const char16_t* at = text.utf16(); at != text.utf16() + text.size(); ++at)
    all |= *at;
  return all < 0x80;
}

} // namespace

PropertyListWriter::PropertyListWriter() : table_(1024, Slot{0, 0}) {}
PropertyListWriter::~PropertyListWriter() = default;

void PropertyListWriter::appendNumber(std::uint64_t value, unsigned size) {
  arena_.resize(arena_.size() + size);
  putNumber(arena_.data() + arena_.size() - size, value, size);
}

void PropertyListWriter::appendHeader(unsigned marker, std::uint64_t count) {
  const std::size_t start = arena_.size();
  arena_.resize(start + headerSize(count));
  putHeader(arena_.data() + start, marker, count);
}

PropertyListWriter::Index PropertyListWriter::append(Node node) {
  if (nodes_.size() >= Unnumbered)
    throw ArchiveException(u"too many values for a property list"_s);
  nodes_.push_back(node);
  return Index(nodes_.size() - 1);
}

void PropertyListWriter::grow() {
  std::vector<Slot> larger(table_.size() * 2, Slot{0, 0});
  const std::size_t mask = larger.size() - 1;
  for (const Slot& slot : table_) {
    if (!slot.indexPlusOne)
      continue;
    std::size_t place = slot.hash & mask;
    while (larger[place].indexPlusOne)
      place = (place + 1) & mask;
    larger[place] = slot;
  }
  table_ = std::move(larger);
}

// The index of the value whose encoding the arena holds from `start` on; an equal one from before
// takes its place.
PropertyListWriter::Index PropertyListWriter::intern(std::size_t start) {
  const std::size_t size = arena_.size() - start;
  if (size > Unnumbered)
    throw ArchiveException(u"a text is too long for a property list"_s);
  const char* bytes = arena_.data() + start;
  const auto hash = std::uint32_t(qHashBits(bytes, size, QHashSeed::globalSeed()));
  const std::size_t mask = table_.size() - 1;
  std::size_t place = hash & mask;
  for (; table_[place].indexPlusOne; place = (place + 1) & mask) {
    if (table_[place].hash != hash)
      continue;
    const Node& node = nodes_[table_[place].indexPlusOne - 1];
    if (node.count == size && std::memcmp(arena_.data() + node.start, bytes, size) == 0) {
      arena_.resize(start);
      return table_[place].indexPlusOne - 1;
    }
  }
  const Index index = append({start, std::uint32_t(size), Shape::Encoded});
  table_[place] = {hash, index + 1};
  if (++encodedCount_ * 2 > table_.size())
    grow();
  return index;
}

PropertyListWriter::Index PropertyListWriter::addBoolean(bool value) {
  const std::size_t start = arena_.size();
  appendNumber(value ? 0x09 : 0x08, 1);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addInteger(std::int64_t value) {
  const std::size_t start = arena_.size();
  // Only 8 bytes are signed.
  const unsigned size = value < 0 ? 8 : bytesFor(std::uint64_t(value));
  appendNumber(0x10 | unsigned(std::countr_zero(size)), 1);
  appendNumber(std::uint64_t(value), size);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addUnsigned(std::uint64_t value) {
  if (value >> 63 == 0)
    return addInteger(std::int64_t(value));
  const std::size_t start = arena_.size();
  appendNumber(0x14, 1);
  appendNumber(0, 8);
  appendNumber(value, 8);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addReal(double value) {
  const std::size_t start = arena_.size();
  appendNumber(0x23, 1);
  appendNumber(std::bit_cast<std::uint64_t>(value), 8);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addSingle(float value) {
  const std::size_t start = arena_.size();
  appendNumber(0x22, 1);
  appendNumber(std::bit_cast<std::uint32_t>(value), 4);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addDate(double seconds) {
  const std::size_t start = arena_.size();
  appendNumber(0x33, 1);
  appendNumber(std::bit_cast<std::uint64_t>(seconds), 8);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addUid(std::uint32_t value) {
  const std::size_t start = arena_.size();
  const unsigned size = bytesFor(value);
  appendNumber(0x80 | (size - 1), 1);
  appendNumber(value, size);
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addAscii(QLatin1StringView text) {
  const std::size_t start = arena_.size();
  appendHeader(0x50, std::uint64_t(text.size()));
  arena_.insert(arena_.end(), text.begin(), text.end());
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addString(QStringView text) {
  const std::size_t start = arena_.size();
  const bool ascii = isAscii(text);
  appendHeader(ascii ? 0x50 : 0x60, std::uint64_t(text.size()));
  const std::size_t body = arena_.size();
  if (ascii) {
    arena_.resize(body + std::size_t(text.size()));
    std::copy(text.utf16(), text.utf16() + text.size(), arena_.data() + body);
  } else {
    arena_.resize(body + 2 * std::size_t(text.size()));
    qToBigEndian<char16_t>(text.utf16(), text.size(), arena_.data() + body);
  }
  return intern(start);
}

PropertyListWriter::Index PropertyListWriter::addUtf8(QByteArrayView text) {
  const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
  return ascii ? addAscii(QLatin1StringView(text)) : addString(QString::fromUtf8(text));
}

PropertyListWriter::Index PropertyListWriter::addData(const QByteArray& bytes) {
  if (bytes.size() > PropertyList::MaximumSize)
    throw ArchiveException(u"data is too long for a property list"_s);
  blobs_.push_back(bytes);
  return append({blobs_.size() - 1, std::uint32_t(bytes.size()), Shape::Data});
}

PropertyListWriter::Index PropertyListWriter::addArray(std::span<const Index> elements) {
  const std::size_t start = references_.size();
  references_.insert(references_.end(), elements.begin(), elements.end());
  return append({start, std::uint32_t(elements.size()), Shape::Array});
}

PropertyListWriter::Index PropertyListWriter::addDictionary(std::span<const Index> keys,
                                                            std::span<const Index> values) {
  const std::size_t start = references_.size();
  references_.insert(references_.end(), keys.begin(), keys.end());
  references_.insert(references_.end(), values.begin(), values.end());
  return append({start, std::uint32_t(keys.size()), Shape::Dictionary});
}

std::vector<PropertyListWriter::Index>
PropertyListWriter::order(Index top, std::vector<Index>& numbers) const {
  std::vector<Index> met;
  met.reserve(nodes_.size());
  std::vector<Index> waiting{top};
  while (!waiting.empty()) {
    const Index index = waiting.back();
    waiting.pop_back();
    if (numbers[index] != Unnumbered)
      continue;
    numbers[index] = Index(met.size());
    met.push_back(index);
    const Node& node = nodes_[index];
    if (node.shape != Shape::Array && node.shape != Shape::Dictionary)
      continue;
    const std::size_t references = std::size_t(node.count) * (node.shape == Shape::Array ? 1 : 2);
    for (std::size_t i = references; i-- > 0;)
      if (const Index child = references_[node.start + i]; numbers[child] == Unnumbered)
        waiting.push_back(child);
  }
  return met;
}

QByteArray PropertyListWriter::finish(Index top) const {
  std::vector<Index> numbers(nodes_.size(), Unnumbered);
  const std::vector<Index> values = order(top, numbers);
  const unsigned referenceSize = bytesFor(values.size() - 1);

  std::uint64_t tableOffset = 8;
  for (const Index index : values) {
    const Node& node = nodes_[index];
    const std::uint64_t count = node.count;
    switch (node.shape) {
    case Shape::Encoded:
      tableOffset += count;
      break;
    case Shape::Data:
      tableOffset += headerSize(count) + count;
      break;
    case Shape::Array:
      tableOffset += headerSize(count) + count * referenceSize;
      break;
    case Shape::Dictionary:
      tableOffset += headerSize(count) + 2 * count * referenceSize;
      break;
    }
  }
  const unsigned offsetSize = bytesFor(tableOffset);
  const std::uint64_t size = tableOffset + values.size() * offsetSize + 32;
  if (size > std::uint64_t(PropertyList::MaximumSize))
    throw ArchiveException(u"the archive would be larger than 4 GiB"_s);

  QByteArray file(qsizetype(size), Qt::Uninitialized);
  char* const begin = file.data();
  std::memcpy(begin, "bplist00", 8);
  char* at = begin + 8;
  char* offsets = begin + tableOffset;
  for (const Index index : values) {
    offsets = putNumber(offsets, std::uint64_t(at - begin), offsetSize);
    const Node& node = nodes_[index];
    if (node.shape == Shape::Encoded) {
      std::memcpy(at, arena_.data() + node.start, node.count);
      at += node.count;
    } else if (node.shape == Shape::Data) {
      at = putHeader(at, 0x40, node.count);
      const QByteArray& bytes = blobs_[node.start];
      at = std::copy(bytes.begin(), bytes.end(), at);
    } else {
      const bool isArray = node.shape == Shape::Array;
      at = putHeader(at, isArray ? 0xA0 : 0xD0, node.count);
      const std::size_t references = std::size_t(node.count) * (isArray ? 1 : 2);
      for (std::size_t i = 0; i < references; ++i)
        at = putNumber(at, numbers[references_[node.start + i]], referenceSize);
    }
  }
  std::memset(offsets, 0, 6);
  offsets = putNumber(offsets + 6, offsetSize, 1);
  offsets = putNumber(offsets, referenceSize, 1);
  offsets = putNumber(offsets, values.size(), 8);
  offsets = putNumber(offsets, 0, 8);
  putNumber(offsets, tableOffset, 8);
  return file;
}

} // namespace zq::platform
