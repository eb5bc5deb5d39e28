// Property lists: trees of simple values, kept as the indexed table that they have in a file.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QLatin1StringView>
#include <QtCore/QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace zq::platform {

// A checked property list. Values are looked at where they lie in the file; a value that several
// containers share stays one value, so that a small file never becomes a large tree.
//
// Every index that top, element, key, value and find return is a valid one. An accessor may be
// called only for a value of its kind.
//
// Thread: a list does not change; any thread may read it.
class ZQTICKER_EXPORT PropertyList {
 public:
  // The place of a value in the table of the list.
  using Index = std::uint32_t;

  enum class Kind : std::uint8_t {
    Boolean,
    Integer,
    Real,
    Date,
    Data,
    String,
    Uid,
    Array,
    Set,
    Dictionary
  };

  // Containers may stand in containers to this depth.
  static constexpr int MaximumDepth = 512;
  // The largest file, in bytes.
  static constexpr qint64 MaximumSize = 0xFFFFFFFF;
  // The bodies of all values may take together this many times the size of the file: more means
  // that they lie on top of one another.
  static constexpr int MaximumOverlap = 8;

  // Reads a binary or an XML property list, told apart by content. Raises ArchiveException where
  // the data is neither, or breaks a rule of its encoding.
  static PropertyList fromData(const QByteArray& data);
  // Reads a binary list, version 00. The data is shared, not copied.
  static PropertyList fromBinary(const QByteArray& data);
  // Reads an XML list. No DTD is loaded and no entity expanded beyond the predefined ones. A
  // dictionary of the single key CF$UID is a UID.
  static PropertyList fromXml(const QByteArray& data);

  PropertyList(PropertyList&&) noexcept;
  PropertyList& operator=(PropertyList&&) noexcept;
  PropertyList(const PropertyList&);
  PropertyList& operator=(const PropertyList&);
  ~PropertyList();

  // The outermost value.
  Index top() const { return top_; }
  // How many values the table holds.
  std::uint32_t size() const { return std::uint32_t(nodes_.size()); }
  // The size of the file that was read, in bytes.
  qint64 sourceSize() const { return sourceSize_; }

  Kind kind(Index index) const { return nodes_[index].kind; }
  bool isContainer(Index index) const { return kind(index) >= Kind::Array; }

  bool boolean(Index index) const { return nodes_[index].value != 0; }
  // The integer; where isUnsigned, the bits of a number from 2^63 on.
  std::int64_t integer(Index index) const { return std::int64_t(nodes_[index].value); }
  bool isUnsigned(Index index) const { return nodes_[index].form == Form::Unsigned; }
  // The number of a Real, or the seconds since 2001-01-01 00:00 UTC of a Date.
  double real(Index index) const;
  // Whether a Real is written in single precision.
  bool isSinglePrecision(Index index) const { return nodes_[index].form == Form::Single; }
  std::uint32_t uid(Index index) const { return std::uint32_t(nodes_[index].value); }

  QString string(Index index) const;
  // A copy of the bytes of a Data.
  QByteArray data(Index index) const;
  // The bytes that a String or a Data takes in the file.
  std::uint64_t byteCount(Index index) const;
  // Whether a String is exactly the ASCII text `text`.
  bool isString(Index index, QLatin1StringView text) const;
  // The characters of a String that is kept as ASCII; nothing for other strings.
  std::optional<QLatin1StringView> asciiString(Index index) const;

  // The elements of an Array or a Set, the pairs of a Dictionary.
  std::uint32_t count(Index index) const { return nodes_[index].count; }
  Index element(Index array, std::uint32_t position) const {
    return reference(nodes_[array].value, position);
  }
  Index key(Index dictionary, std::uint32_t position) const {
    return reference(nodes_[dictionary].value, position);
  }
  Index value(Index dictionary, std::uint32_t position) const {
    return reference(nodes_[dictionary].value, nodes_[dictionary].count + position);
  }
  // The position of the pair with the ASCII key `key`. The search starts at `from` and goes once
  // round, so that keys asked for in their order are found at the first look.
  std::optional<std::uint32_t> position(Index dictionary, QLatin1StringView key,
                                        std::uint32_t from = 0) const;
  // The same for any key.
  std::optional<std::uint32_t> position(Index dictionary, QStringView key) const;
  // The value under the ASCII key `key`, or nothing.
  std::optional<Index> find(Index dictionary, QLatin1StringView key) const;

 private:
  friend class BinaryPropertyListReader;
  enum class Form : std::uint8_t { Plain, Unsigned, Single, Utf16, Utf8 };
  // A value: its number, or the offset of its body in the file with the count of characters,
  // bytes, elements or pairs there.
  struct Node {
    std::uint64_t value;
    std::uint32_t count;
    Kind kind;
    Form form;
  };

  PropertyList();
  Index reference(std::uint64_t body, std::uint64_t position) const;
  const unsigned char* bytesAt(std::uint64_t offset) const {
    return reinterpret_cast<const unsigned char*>(bytes_.constData()) + offset;
  }

  QByteArray bytes_;
  std::vector<Node> nodes_;
  qint64 sourceSize_ = 0;
  Index top_ = 0;
  std::uint8_t referenceSize_ = 1;
};

inline PropertyList::Index PropertyList::reference(std::uint64_t body,
                                                   std::uint64_t position) const {
  const unsigned char* at = bytesAt(body + position * referenceSize_);
  switch (referenceSize_) {
  case 1:
    return at[0];
  case 2:
    return Index(at[0]) << 8 | at[1];
  case 3:
    return Index(at[0]) << 16 | Index(at[1]) << 8 | at[2];
  default:
    // Wider references are checked to have zeros in front.
    at += referenceSize_ - 4;
    return Index(at[0]) << 24 | Index(at[1]) << 16 | Index(at[2]) << 8 | at[3];
  }
}

} // namespace zq::platform
