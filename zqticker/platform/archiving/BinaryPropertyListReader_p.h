// Reads and checks binary property lists, version 00.
#pragma once

#include "zqticker/platform/archiving/PropertyList.h"

namespace zq::platform {

// Checks a file once, front to back, and leaves a list whose every index, size and reference is
// good. Memory and time are bounded by the size of the file: no count is believed before the bytes
// that it stands for have been found.
class BinaryPropertyListReader {
 public:
  explicit BinaryPropertyListReader(const QByteArray& data);

  // Raises ArchiveException where the file breaks a rule.
  PropertyList read();

 private:
  void readTrailer();
  void readNodes();
  void checkContainers();
  PropertyList::Node readNode(std::uint64_t offset);
  std::uint64_t readCount(std::uint64_t& offset, unsigned nibble);
  std::uint64_t number(std::uint64_t offset, unsigned size) const;
  void requireBody(std::uint64_t offset, std::uint64_t count, unsigned unitSize);
  PropertyList::Index checkedReference(const PropertyList::Node& container,
                                       std::uint64_t position) const;

  PropertyList list_;
  std::uint64_t objectCount_ = 0;
  std::uint64_t tableOffset_ = 0;
  std::uint64_t bodyBytes_ = 0;
  unsigned offsetSize_ = 0;
};

} // namespace zq::platform
