#include "zqticker/platform/archiving/number_text.h"

#include <charconv>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// The longest text of a double in plain notation from 1e-5 to 1e17, with room to spare.
constexpr std::size_t NumberBufferSize = 48;

char* putNumber(char* at, double value) {
  const double size = std::abs(value);
  const bool isPlain = value == 0 || (size >= 1e-5 && size < 1e17);
  return std::to_chars(at, at + NumberBufferSize, value,
                       isPlain ? std::chars_format::fixed : std::chars_format::scientific)
      .ptr;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c;
}

bool beginsWord(const char* at, const char* end, const char* word) {
  for (; *word; ++word, ++at)
    if (at == end || lowered(*at) != *word)
      return false;
  return true;
}

// Whether a number without its sign begins at `at`.
bool beginsNumber(const char* at, const char* end) {
  if (at == end)
    return false;
  return isDigit(*at) || (*at == '.' && at + 1 != end && isDigit(at[1])) ||
         beginsWord(at, end, "inf") || beginsWord(at, end, "nan");
}

// Reads the number at `at` (where beginsNumber) and moves past it.
double takeNumber(const char*& at, const char* end) {
  double value = 0;
  const auto result = std::from_chars(at, end, value);
  if (result.ec == std::errc::result_out_of_range) {
    bool isTiny = false;
    for (const char* c = at; c != result.ptr; ++c)
      isTiny |= lowered(*c) == 'e' && c + 1 != result.ptr && c[1] == '-';
    value = isTiny ? 0 : std::numeric_limits<double>::infinity();
  }
  at = result.ptr;
  return value;
}

// The text with each character beyond ASCII as one byte that is no part of a number.
struct Ascii {
  explicit Ascii(QStringView text) : bytes(text.size(), '\x7f') {
    for (qsizetype i = 0; i < text.size(); ++i)
      if (text[i].unicode() < 0x80)
        bytes[i] = char(text[i].unicode());
  }
  const char* begin() const { return bytes.constData(); }
  const char* end() const { return begin() + bytes.size(); }
  QByteArray bytes;
};

QString pairText(const char* open, double first, double second, const char* close) {
  char buffer[2 * NumberBufferSize + 8];
  char* at = buffer;
  while (*open)
    *at++ = *open++;
  at = putNumber(at, first);
  *at++ = ',';
  *at++ = ' ';
  at = putNumber(at, second);
  while (*close)
    *at++ = *close++;
  return QString::fromLatin1(buffer, at - buffer);
}

} // namespace

QString textOfNumber(double value) {
  char buffer[NumberBufferSize];
  return QString::fromLatin1(buffer, putNumber(buffer, value) - buffer);
}

std::optional<double> numberOfText(QStringView text) {
  const Ascii ascii(text.trimmed());
  const char* at = ascii.begin();
  const bool isNegative = at != ascii.end() && *at == '-';
  if (isNegative || (at != ascii.end() && *at == '+'))
    ++at;
  if (!beginsNumber(at, ascii.end()))
    return std::nullopt;
  const double value = takeNumber(at, ascii.end());
  if (at != ascii.end() && !(*at == '.' && at + 1 == ascii.end()))
    return std::nullopt;
  return isNegative ? -value : value;
}

std::vector<double> numbersInText(QStringView text, std::size_t limit) {
  const Ascii ascii(text);
  std::vector<double> numbers;
  const char* at = ascii.begin();
  while (at != ascii.end() && numbers.size() < limit) {
    const bool isNegative = *at == '-';
    const char* unsignedPart = at + (isNegative ? 1 : 0);
    if (!beginsNumber(unsignedPart, ascii.end())) {
      ++at;
      continue;
    }
    at = unsignedPart;
    const double value = takeNumber(at, ascii.end());
    numbers.push_back(isNegative ? -value : value);
  }
  return numbers;
}

QString textOfPoint(QPointF point) {
  return pairText("{", point.x(), point.y(), "}");
}

QString textOfSize(QSizeF size) {
  return pairText("{", size.width(), size.height(), "}");
}

QString textOfRect(const QRectF& rect) {
  return pairText("{{", rect.x(), rect.y(), "}, ") +
         pairText("{", rect.width(), rect.height(), "}}");
}

QPointF pointOfText(QStringView text) {
  std::vector<double> numbers = numbersInText(text, 2);
  numbers.resize(2);
  return {numbers[0], numbers[1]};
}

QSizeF sizeOfText(QStringView text) {
  std::vector<double> numbers = numbersInText(text, 2);
  numbers.resize(2);
  return {numbers[0], numbers[1]};
}

QRectF rectOfText(QStringView text) {
  std::vector<double> numbers = numbersInText(text, 4);
  numbers.resize(4);
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

} // namespace zq::platform
