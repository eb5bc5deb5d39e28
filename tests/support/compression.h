// Bodies as servers compress them.
#pragma once

#include <QtCore/QByteArray>

namespace zq::testing {

// For "Content-Encoding: gzip".
QByteArray gzip(const QByteArray& bytes);

// For "Content-Encoding: deflate", in zlib's wrapping as the standard asks.
QByteArray deflate(const QByteArray& bytes);

} // namespace zq::testing
