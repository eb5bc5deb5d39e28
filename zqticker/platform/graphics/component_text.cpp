#include "zqticker/platform/graphics/component_text_p.h"

#include <charconv>
#include <cmath>

namespace zq::platform {

// More than the components of any space; a longer text is no colour.
static constexpr std::size_t MaximumCount = 32;

QByteArray componentText(const std::vector<double>& components) {
  QByteArray text;
  for (const double component : components) {
    if (!text.isEmpty())
      text.append(' ');
    // Long enough for the smallest double without an exponent.
    char digits[400];
    const auto result =
        std::to_chars(digits, digits + sizeof digits, component, std::chars_format::fixed);
    text.append(digits, result.ptr - digits);
  }
  return text;
}

std::optional<std::vector<double>> parsedComponents(const QByteArray& text) {
  std::vector<double> numbers;
  const char* position = text.constData();
  const qsizetype nul = text.indexOf('\0');
  const char* const end = position + (nul < 0 ? text.size() : nul);
  const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  for (;;) {
    while (position != end && isSpace(*position))
      ++position;
    if (position == end)
      return numbers;
    double number = 0;
    const auto [next, error] = std::from_chars(position, end, number);
    const bool complete = next == end || isSpace(*next);
    if (error != std::errc() || !complete || !std::isfinite(number) ||
        numbers.size() == MaximumCount)
      return std::nullopt;
    numbers.push_back(number);
    position = next;
  }
}

} // namespace zq::platform
