#include "zqticker/platform/graphics/TiffFile_p.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>

namespace zq::platform {

namespace {

// The largest single allocation that libtiff may make for a file: one strip of the largest
// picture.
constexpr tmsize_t maximumAllocation = tmsize_t(512) << 20;
// No picture is written or read beyond this.
constexpr std::uint64_t maximumFileSize = std::uint64_t(1) << 30;

int ignoreMessage(TIFF*, void*, const char*, const char*, va_list) {
  return 1;
}

} // namespace

TiffFile TiffFile::reading(const QByteArray& data) {
  return TiffFile(data, "r");
}

TiffFile TiffFile::writing() {
  return TiffFile(QByteArray(), "wl");
}

TiffFile::TiffFile(const QByteArray& data, const char* mode) : data_(data) {
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (!options)
    return;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, maximumAllocation);
  TIFFOpenOptionsSetErrorHandlerExtR(options, ignoreMessage, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options, ignoreMessage, nullptr);
  handle_ = TIFFClientOpenExt("picture", mode, this, read, write, seek, doNothing, size, map, unmap,
                              options);
  TIFFOpenOptionsFree(options);
}

TiffFile::~TiffFile() {
  if (handle_)
    TIFFClose(handle_);
}

QByteArray TiffFile::close() {
  if (handle_)
    TIFFClose(handle_);
  handle_ = nullptr;
  return data_;
}

std::intptr_t TiffFile::read(void* self, void* buffer, std::intptr_t count) {
  auto& file = *static_cast<TiffFile*>(self);
  const auto available = std::uint64_t(file.data_.size());
  if (file.position_ >= available || count <= 0)
    return 0;
  const auto taken = std::min(std::uint64_t(count), available - file.position_);
  std::memcpy(buffer, file.data_.constData() + file.position_, taken);
  file.position_ += taken;
  return std::intptr_t(taken);
}

std::intptr_t TiffFile::write(void* self, void* buffer, std::intptr_t count) {
  auto& file = *static_cast<TiffFile*>(self);
  const std::uint64_t end = file.position_ + std::uint64_t(count);
  if (count < 0 || end > maximumFileSize)
    return 0;
  // What lies between the old end and the new part is zeros.
  if (end > std::uint64_t(file.data_.size()))
    file.data_.append(qsizetype(end) - file.data_.size(), '\0');
  std::memcpy(file.data_.data() + file.position_, buffer, std::size_t(count));
  file.position_ = end;
  return count;
}

std::uint64_t TiffFile::seek(void* self, std::uint64_t offset, int whence) {
  auto& file = *static_cast<TiffFile*>(self);
  if (whence == SEEK_CUR)
    offset += file.position_;
  else if (whence == SEEK_END)
    offset += std::uint64_t(file.data_.size());
  return file.position_ = offset;
}

int TiffFile::doNothing(void*) {
  return 0;
}

std::uint64_t TiffFile::size(void* self) {
  return std::uint64_t(static_cast<TiffFile*>(self)->data_.size());
}

int TiffFile::map(void* self, void** base, std::uint64_t* size) {
  auto& file = *static_cast<TiffFile*>(self);
  // libtiff does not write into a file that it maps for reading.
  *base = const_cast<char*>(file.data_.constData());
  *size = std::uint64_t(file.data_.size());
  return 1;
}

void TiffFile::unmap(void*, void*, std::uint64_t) {}

} // namespace zq::platform
