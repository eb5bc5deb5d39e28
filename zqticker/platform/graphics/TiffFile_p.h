// A TIFF file in memory.
#pragma once

#include <QtCore/QByteArray>

#include <cstdint>

// libtiff's own type, whose header stays out of this one.
typedef struct tiff TIFF;

namespace zq::platform {

// A libtiff handle over a byte array. libtiff's messages go nowhere: a damaged file is no event to
// report, and the handlers are this handle's own, so that other users of libtiff in the process
// are not touched.
//
// Thread: one at a time.
class TiffFile {
 public:
  // Opens `data` for reading; kept alive by this object.
  static TiffFile reading(const QByteArray& data);
  // Opens an empty file for writing; little-endian, so that the bytes are the same everywhere.
  static TiffFile writing();
  ~TiffFile();
  TiffFile(const TiffFile&) = delete;
  TiffFile& operator=(const TiffFile&) = delete;

  // Null where the data is no TIFF file.
  TIFF* handle() const { return handle_; }
  // Ends writing and returns what was written.
  QByteArray close();

 private:
  TiffFile(const QByteArray& data, const char* mode);

  // libtiff's calls back; `self` is this object.
  static std::intptr_t read(void* self, void* buffer, std::intptr_t count);
  static std::intptr_t write(void* self, void* buffer, std::intptr_t count);
  static std::uint64_t seek(void* self, std::uint64_t offset, int whence);
  static int doNothing(void* self);
  static std::uint64_t size(void* self);
  static int map(void* self, void** base, std::uint64_t* size);
  static void unmap(void* self, void* base, std::uint64_t size);

  QByteArray data_;
  std::uint64_t position_ = 0;
  TIFF* handle_ = nullptr;
};

} // namespace zq::platform
