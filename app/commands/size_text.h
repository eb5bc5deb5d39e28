// Sizes for people.
#pragma once

#include <QtCore/QString>

namespace zq::app {

// A number of bytes as ZQFileSizeFormatter shows it, "1.5 KB", in powers of 1024. What is too large
// for its units stands in bytes; a negative number counts as 0.
QString sizeText(qint64 bytes);

} // namespace zq::app
