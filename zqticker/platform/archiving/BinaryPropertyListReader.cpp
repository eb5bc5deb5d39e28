#include "zqticker/platform/archiving/BinaryPropertyListReader_p.h"

#include "zqticker/platform/objects/Exception.h"

#include <bit>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr unsigned HeaderSize = 8;
constexpr unsigned TrailerSize = 32;

[[noreturn]] void fail(const QString& reason) {
  throw ArchiveException(u"not a binary property list: "_s + reason);
}

bool fitsIn(std::uint64_t value, unsigned bytes) {
  return bytes >= 8 || value >> (8 * bytes) == 0;
}

} // namespace

PropertyList PropertyList::fromBinary(const QByteArray& data) {
  return BinaryPropertyListReader(data).read();
}

BinaryPropertyListReader::BinaryPropertyListReader(const QByteArray& data) {
  list_.bytes_ = data;
  list_.sourceSize_ = data.size();
}

PropertyList BinaryPropertyListReader::read() {
  readTrailer();
  readNodes();
  checkContainers();
  return std::move(list_);
}

std::uint64_t BinaryPropertyListReader::number(std::uint64_t offset, unsigned size) const {
  const unsigned char* at = list_.bytesAt(offset);
  std::uint64_t value = 0;
  for (unsigned i = 0; i < size; ++i)
    value = value << 8 | at[i];
  return value;
}

void BinaryPropertyListReader::readTrailer() {
  const std::uint64_t size = std::uint64_t(list_.bytes_.size());
  if (!list_.bytes_.startsWith("bplist0"))
    fail(u"it does not begin with bplist0"_s);
  if (size < HeaderSize + 1 + TrailerSize)
    fail(u"it is cut off"_s);
  if (size > std::uint64_t(PropertyList::MaximumSize))
    fail(u"it is larger than 4 GiB"_s);

  const std::uint64_t trailer = size - TrailerSize;
  offsetSize_ = unsigned(number(trailer + 6, 1));
  const unsigned referenceSize = unsigned(number(trailer + 7, 1));
  objectCount_ = number(trailer + 8, 8);
  const std::uint64_t top = number(trailer + 16, 8);
  tableOffset_ = number(trailer + 24, 8);

  if (objectCount_ == 0)
    fail(u"it holds no object"_s);
  if (top >= objectCount_)
    fail(u"its top object is outside the table"_s);
  if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize < 1 || referenceSize > 8)
    fail(u"a size in its trailer is not from 1 to 8"_s);
  if (tableOffset_ < HeaderSize + 1 || tableOffset_ > trailer)
    fail(u"its offset table is outside the file"_s);
  // Dividing keeps the product from overflowing.
  if ((trailer - tableOffset_) / offsetSize_ != objectCount_ ||
      (trailer - tableOffset_) % offsetSize_ != 0)
    fail(u"its length does not agree with its offset table"_s);
  if (!fitsIn(objectCount_ - 1, referenceSize))
    fail(u"its references are too short for its objects"_s);
  if (!fitsIn(tableOffset_, offsetSize_))
    fail(u"its offsets are too short for its length"_s);

  list_.top_ = PropertyList::Index(top);
  list_.referenceSize_ = std::uint8_t(referenceSize);
}

void BinaryPropertyListReader::readNodes() {
  list_.nodes_.reserve(objectCount_);
  for (std::uint64_t i = 0; i < objectCount_; ++i) {
    const std::uint64_t offset = number(tableOffset_ + i * offsetSize_, offsetSize_);
    if (offset < HeaderSize || offset >= tableOffset_)
      fail(u"an object lies outside the object table"_s);
    list_.nodes_.push_back(readNode(offset));
  }
}

void BinaryPropertyListReader::requireBody(std::uint64_t offset, std::uint64_t count,
                                           unsigned unitSize) {
  if (offset > tableOffset_ || count > (tableOffset_ - offset) / unitSize)
    fail(u"an object runs past the end of the object table"_s);
  bodyBytes_ += count * unitSize;
  if (bodyBytes_ > std::uint64_t(list_.sourceSize_) * PropertyList::MaximumOverlap)
    fail(u"its objects lie on top of one another"_s);
}

// The count of a marker: its low nibble, or the integer object after it, which `offset` skips.
std::uint64_t BinaryPropertyListReader::readCount(std::uint64_t& offset, unsigned nibble) {
  if (nibble != 0xF)
    return nibble;
  requireBody(offset, 1, 1);
  const unsigned marker = unsigned(number(offset, 1));
  if (marker >> 4 != 1 || (marker & 0xF) > 3)
    fail(u"a count is not an integer of up to 8 bytes"_s);
  const unsigned size = 1U << (marker & 0xF);
  requireBody(offset + 1, 1, size);
  const std::uint64_t count = number(offset + 1, size);
  offset += 1 + size;
  return count;
}

PropertyList::Node BinaryPropertyListReader::readNode(std::uint64_t offset) {
  using Kind = PropertyList::Kind;
  using Form = PropertyList::Form;
  const unsigned marker = unsigned(number(offset, 1));
  const unsigned nibble = marker & 0xF;
  std::uint64_t body = offset + 1;

  const auto sized = [&](Kind kind, Form form, unsigned unitSize, unsigned unitsPerEntry) {
    const std::uint64_t count = readCount(body, nibble);
    if (count > std::numeric_limits<std::uint32_t>::max())
      fail(u"an object runs past the end of the object table"_s);
    requireBody(body, count * unitsPerEntry, unitSize);
    return PropertyList::Node{body, std::uint32_t(count), kind, form};
  };

  switch (marker >> 4) {
  case 0x0:
    if (marker == 0x08 || marker == 0x09)
      return {marker & 1, 0, Kind::Boolean, Form::Plain};
    break;
  case 0x1: {
    if (nibble > 4)
      fail(u"an integer is longer than 16 bytes"_s);
    const unsigned size = 1U << nibble;
    requireBody(body, 1, size);
    if (size < 16)
      return {number(body, size), 0, Kind::Integer, Form::Plain};
    // Of 16 bytes the last 8 carry the value. Those before are zero, or ones before a negative
    // number.
    const std::uint64_t low = number(body + 8, 8);
    const bool isNegative = *list_.bytesAt(body) & 0x80;
    return {low, 0, Kind::Integer, low >> 63 && !isNegative ? Form::Unsigned : Form::Plain};
  }
  case 0x2: {
    if (nibble != 2 && nibble != 3)
      fail(u"a real has neither 4 nor 8 bytes"_s);
    requireBody(body, 1, 1U << nibble);
    if (nibble == 3)
      return {number(body, 8), 0, Kind::Real, Form::Plain};
    const double widened = std::bit_cast<float>(std::uint32_t(number(body, 4)));
    return {std::bit_cast<std::uint64_t>(widened), 0, Kind::Real, Form::Single};
  }
  case 0x3:
    if (nibble != 3)
      fail(u"a date has not 8 bytes"_s);
    requireBody(body, 1, 8);
    return {number(body, 8), 0, Kind::Date, Form::Plain};
  case 0x4:
    return sized(Kind::Data, Form::Plain, 1, 1);
  case 0x5:
    return sized(Kind::String, Form::Plain, 1, 1);
  case 0x6:
    return sized(Kind::String, Form::Utf16, 2, 1);
  case 0x7:
    return sized(Kind::String, Form::Utf8, 1, 1);
  case 0x8: {
    const unsigned size = nibble + 1;
    requireBody(body, 1, size);
    for (unsigned i = 0; i + 4 < size; ++i)
      if (*list_.bytesAt(body + i) != 0)
        fail(u"a UID is larger than 32 bits"_s);
    return {number(body, size), 0, Kind::Uid, Form::Plain};
  }
  case 0xA:
    return sized(Kind::Array, Form::Plain, list_.referenceSize_, 1);
  case 0xB:
  case 0xC:
    return sized(Kind::Set, Form::Plain, list_.referenceSize_, 1);
  case 0xD:
    return sized(Kind::Dictionary, Form::Plain, list_.referenceSize_, 2);
  }
  fail(u"an object has the unknown marker 0x%1"_s.arg(marker, 2, 16, '0'_L1));
}

PropertyList::Index BinaryPropertyListReader::checkedReference(const PropertyList::Node& container,
                                                               std::uint64_t position) const {
  const unsigned size = list_.referenceSize_;
  const std::uint64_t index = size <= 4 ? list_.reference(container.value, position)
                                        : number(container.value + position * size, size);
  if (index >= objectCount_)
    fail(u"a reference leads outside the object table"_s);
  return PropertyList::Index(index);
}

// Walks all containers with a stack of its own: checks each reference, that dictionary keys are
// strings, that nothing contains itself, and the depth.
void BinaryPropertyListReader::checkContainers() {
  using Kind = PropertyList::Kind;
  constexpr std::uint16_t Unseen = 0;
  constexpr std::uint16_t Open = 0xFFFF;
  struct Frame {
    PropertyList::Index index;
    std::uint64_t position;
    std::uint16_t heightOfContents;
  };
  const auto& nodes = list_.nodes_;
  // By container: how deep it is, itself included.
  std::vector<std::uint16_t> heights(nodes.size(), Unseen);
  std::vector<Frame> path;
  // Frames stay where they are: the path never grows beyond the depth limit.
  path.reserve(PropertyList::MaximumDepth);

  for (PropertyList::Index start = 0; start < nodes.size(); ++start) {
    if (!list_.isContainer(start) || heights[start] != Unseen)
      continue;
    heights[start] = Open;
    path.push_back({start, 0, 0});
    while (!path.empty()) {
      Frame& frame = path.back();
      const PropertyList::Node& node = nodes[frame.index];
      const std::uint64_t keys = node.kind == Kind::Dictionary ? node.count : 0;
      const std::uint64_t references = keys + node.count;
      bool entered = false;
      while (!entered && frame.position < references) {
        const std::uint64_t position = frame.position++;
        const PropertyList::Index child = checkedReference(node, position);
        if (position < keys && nodes[child].kind != Kind::String)
          fail(u"a dictionary key is not a string"_s);
        if (!list_.isContainer(child))
          continue;
        if (heights[child] == Open)
          fail(u"a container contains itself"_s);
        if (path.size() + std::max<std::uint16_t>(heights[child], 1) > PropertyList::MaximumDepth)
          fail(u"it is nested too deeply"_s);
        if (heights[child] == Unseen) {
          heights[child] = Open;
          path.push_back({child, 0, 0});
          entered = true;
        } else {
          frame.heightOfContents = std::max(frame.heightOfContents, heights[child]);
        }
      }
      if (entered)
        continue;
      const std::uint16_t height = path.back().heightOfContents + 1;
      heights[path.back().index] = height;
      path.pop_back();
      if (!path.empty())
        path.back().heightOfContents = std::max(path.back().heightOfContents, height);
    }
  }
}

} // namespace zq::platform
