// Writes values in order, without keys.
#pragma once

#include "zqticker/platform/archiving/Coder.h"

#include <memory>

namespace zq::platform {

class SequentialArchiverState;

// A coder that stores values one after the other; they are read in the same order by
// SequentialUnarchiver. It knows no keys: classes that insist on them refuse it.
//
// encodeValue takes nothing, strings, data, booleans, numbers, valid dates, lists, maps and
// reference objects; anything else raises InvalidArgumentException. An object that is encoded more
// than once is stored once. Values deeper in one another than MaximumDepth raise ArchiveException.
//
// Thread: an archiver belongs to one thread.
class ZQTICKER_EXPORT SequentialArchiver : public Coder {
 public:
  static constexpr int MaximumDepth = 200;

  SequentialArchiver();
  ~SequentialArchiver() override;

  // What has been encoded so far, as an archive.
  QByteArray encodedData() const;

  void encodeValue(const Any& value) override;

 private:
  std::unique_ptr<SequentialArchiverState> state_;
};

} // namespace zq::platform
