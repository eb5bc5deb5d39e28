// Builds binary property lists.
#pragma once

#include "zqticker/platform/archiving/PropertyList.h"

#include <QtCore/QByteArrayView>

#include <span>
#include <vector>

namespace zq::platform {

// Collects values, each under an index, and writes them as one binary list. Equal strings, numbers,
// dates, booleans and UIDs become one value; data and containers stay as they are. A container
// takes values that were added before, so that none can contain itself.
class PropertyListWriter {
 public:
  using Index = PropertyList::Index;

  PropertyListWriter();
  ~PropertyListWriter();

  Index addBoolean(bool value);
  Index addInteger(std::int64_t value);
  // Numbers from 2^63 on take 16 bytes.
  Index addUnsigned(std::uint64_t value);
  Index addReal(double value);
  Index addSingle(float value);
  // Seconds since 2001-01-01 00:00 UTC.
  Index addDate(double seconds);
  Index addUid(std::uint32_t value);
  Index addString(QStringView text);
  // `text` must be ASCII.
  Index addAscii(QLatin1StringView text);
  // Bytes beyond ASCII are decoded.
  Index addUtf8(QByteArrayView text);
  Index addData(const QByteArray& bytes);
  Index addArray(std::span<const Index> elements);
  Index addDictionary(std::span<const Index> keys, std::span<const Index> values);

  // How many values have been added.
  std::uint32_t size() const { return std::uint32_t(nodes_.size()); }

  // The list whose outermost value is `top`, its values in the order in which they are met from
  // there, containers before their contents and keys before values. Raises ArchiveException where
  // the file would be larger than PropertyList::MaximumSize.
  QByteArray finish(Index top) const;

 private:
  enum class Shape : std::uint8_t { Encoded, Data, Array, Dictionary };
  // Encoded: bytes of the arena. Data: an element of blobs_. Containers: elements of references_.
  struct Node {
    std::size_t start;
    std::uint32_t count;
    Shape shape;
  };

  void appendNumber(std::uint64_t value, unsigned size);
  void appendHeader(unsigned marker, std::uint64_t count);
  Index intern(std::size_t start);
  Index append(Node node);
  void grow();
  std::vector<Index> order(Index top, std::vector<Index>& numbers) const;

  std::vector<char> arena_;
  std::vector<QByteArray> blobs_;
  std::vector<Index> references_;
  std::vector<Node> nodes_;
  // Open hash table of the encoded values: index + 1, 0 for a free place, with the hash beside it.
  struct Slot {
    std::uint32_t hash;
    Index indexPlusOne;
  };
  std::vector<Slot> table_;
  std::size_t encodedCount_ = 0;
};

} // namespace zq::platform
