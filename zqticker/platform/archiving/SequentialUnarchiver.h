// Reads values in order, without keys.
#pragma once

#include "zqticker/platform/archiving/Coder.h"

#include <memory>

namespace zq::platform {

class SequentialUnarchiverState;

// A coder that reads what a SequentialArchiver has written, in the same order. Integers read as
// qlonglong or qulonglong, dates in UTC; the same object of the archive is the same Ref.
//
// Archives are untrusted: only registered classes are made, and the memory of all values is bounded
// by the size of the data. Every failure is an ArchiveException, reading past the last value of an
// object included.
//
// Thread: an unarchiver belongs to one thread.
class ZQTICKER_EXPORT SequentialUnarchiver : public Coder {
 public:
  // Raises ArchiveException where `data` is no sequential archive.
  explicit SequentialUnarchiver(const QByteArray& data);
  ~SequentialUnarchiver() override;

  // Whether all values at this place have been read.
  bool isAtEnd() const;

  Any decodeValue() override;

 private:
  std::unique_ptr<SequentialUnarchiverState> state_;
};

} // namespace zq::platform
