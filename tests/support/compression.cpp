#include "tests/support/compression.h"

#include <zlib.h>

#include <stdexcept>

namespace zq::testing {

namespace {

// zlib's window bits: 15 in its own wrapping, 31 in that of gzip.
QByteArray compress(const QByteArray& bytes, int windowBits) {
  z_stream stream{};
  if (::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 9, Z_DEFAULT_STRATEGY) !=
      Z_OK)
    throw std::runtime_error("deflateInit2");
  QByteArray result(qsizetype(::deflateBound(&stream, bytes.size())), Qt::Uninitialized);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.constData()));
  stream.avail_in = uInt(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = uInt(result.size());
  const int status = ::deflate(&stream, Z_FINISH);
  result.truncate(qsizetype(stream.total_out));
  ::deflateEnd(&stream);
  if (status != Z_STREAM_END)
    throw std::runtime_error("deflate");
  return result;
}

} // namespace

QByteArray gzip(const QByteArray& bytes) {
  return compress(bytes, 31);
}

QByteArray deflate(const QByteArray& bytes) {
  return compress(bytes, 15);
}

} // namespace zq::testing
