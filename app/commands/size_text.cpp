#include "app/commands/size_text.h"

#include "zqticker/foundation_additions/ZQFileSizeFormatter.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

QString sizeText(qint64 bytes) {
  // 1024 TB, where the formatter's units end. What servers announce may be any number.
  constexpr qint64 EndOfUnits = qint64(1) << 50;
  if (bytes >= EndOfUnits)
    return QString::number(bytes) + u" B"_s;
  return ZQFileSizeFormatter().stringForObjectValue(std::max<qint64>(bytes, 0)).value_or(QString());
}

} // namespace zq::app
