#include "zqticker/signs/rectangle_text.h"

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/number_parsing.h"

#include <QtCore/QStringTokenizer>

#include <array>
#include <charconv>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr int Decimals = 6;

void appendFixed(QString& text, double value) {
  // Sign, every integer digit of the largest double, point and decimals.
  std::array<char, std::numeric_limits<double>::max_exponent10 + Decimals + 4> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::fixed, Decimals)
                       .ptr;
  text += QLatin1StringView(buffer.data(), end - buffer.data());
}
} // namespace

QString ZQStringFromRect(const QRectF& rect) {
  QString text;
  for (const double value : {rect.x(), rect.y(), rect.width(), rect.height()}) {
    if (!text.isEmpty())
      text += u' ';
    appendFixed(text, value);
  }
  return text;
}

QRectF ZQRectFromString(const std::optional<QString>& string) {
  if (!string)
    return QRectF(0, 0, 0, 0);
  std::array<double, 4> values;
  std::size_t count = 0;
  for (const QStringView piece : QStringTokenizer(*string, u' ')) {
    if (count == values.size())
      break;
    values[count++] = floatValue(piece);
  }
  if (count < values.size())
    throw RangeException(u"index %1 beyond the %1 pieces of \"%2\""_s.arg(count).arg(*string));
  return QRectF(values[0], values[1], values[2], values[3]);
}
