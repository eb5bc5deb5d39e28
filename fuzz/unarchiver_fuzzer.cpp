// Keyed and sequential archives: decode, archive what came out, decode that, archive it again; the
// two archives must be the same bytes. Both as strict readers and with unknown classes kept.
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/archiving/SequentialUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"

#include <cstdlib>

using namespace zq::platform;

namespace {

constexpr std::size_t LargestInput = 1 << 16;

void decode(const QByteArray& archive, const KeyedUnarchiver::Options& options) {
  Any root;
  try {
    root = KeyedUnarchiver::unarchiveObjectWithData(archive, options);
  } catch (const Exception&) {
    return;
  }
  QByteArray written;
  try {
    written = KeyedArchiver::archivedDataWithRootObject(root);
  } catch (const InvalidArgumentException&) {
    // A placeholder may hold what lists may not: nothing.
    return;
  } catch (const ArchiveException&) {
    // Objects that owe their depth to their contents.
    return;
  }
  // What was written here must be readable.
  const Any again = KeyedUnarchiver::unarchiveObjectWithData(written, options);
  const QByteArray rewritten = KeyedArchiver::archivedDataWithRootObject(again);
  if (rewritten != written)
    std::abort();
}

void decodeInOrder(const QByteArray& archive) {
  try {
    SequentialUnarchiver unarchiver(archive);
    while (!unarchiver.isAtEnd())
      unarchiver.decodeValue();
  } catch (const Exception&) {
    // The input is no sequential archive, or one of an object that insists on keys.
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  const QByteArray archive(reinterpret_cast<const char*>(data), qsizetype(size));
  decode(archive, {});
  KeyedUnarchiver::Options keeping;
  keeping.keepUnknownClasses = true;
  keeping.convertNumbers = true;
  decode(archive, keeping);
  decodeInOrder(archive);
  return 0;
}
