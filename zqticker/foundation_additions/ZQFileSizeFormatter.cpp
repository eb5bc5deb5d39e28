#include "zqticker/foundation_additions/ZQFileSizeFormatter.h"

#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/text/DecimalNumber.h"
#include "zqticker/platform/text/Scanner.h"
#include "zqticker/platform/text/value_numbers.h"

#include <array>
#include <charconv>
#include <limits>
#include <variant>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr double UnitSize = 1024.0;
constexpr double UnitFactor = 0.0009765625; // exactly 1/1024
constexpr QStringView UnitLetters = u"KMGT";
constexpr int Decimals = 1;

// Where a negative size is refused, and how; "to large" is the text that is known.
constexpr char AssertionFile[] = "ZQFileSizeFormatter";
constexpr int AssertionLine = 34;
constexpr QStringView AssertionText = u"ZQFileSizeFormatter - number to large: %@";

using Argument = std::variant<double, QString>;

QString oneDecimal(double number) {
  // Sign, every integer digit of the largest double, point and decimal.
  std::array<char, std::numeric_limits<double>::max_exponent10 + Decimals + 4> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                 std::chars_format::fixed, Decimals)
                       .ptr;
  return QString::fromLatin1(buffer.data(), end - buffer.data());
}

// The pattern with each "%@" replaced by the next argument if that is a text, each "%.1f" by the
// next if that is a number, else by "(null)", and each "%%" by "%". All else stands as it is.
QString formatted(QStringView pattern, const std::vector<Argument>& arguments) {
  QString text;
  auto next = arguments.begin();
  const auto take = [&](bool asText) {
    QString shown = u"(null)"_s;
    if (next != arguments.end()) {
      if (asText && std::holds_alternative<QString>(*next))
        shown = std::get<QString>(*next);
      else if (!asText && std::holds_alternative<double>(*next))
        shown = oneDecimal(std::get<double>(*next));
      ++next;
    }
    text += shown;
  };
  while (!pattern.isEmpty()) {
    const qsizetype percent = pattern.indexOf(u'%');
    text += pattern.first(percent < 0 ? pattern.size() : percent);
    if (percent < 0)
      break;
    pattern = pattern.sliced(percent);
    if (pattern.startsWith(u"%%")) {
      text += u'%';
      pattern = pattern.sliced(2);
    } else if (pattern.startsWith(u"%@")) {
      take(true);
      pattern = pattern.sliced(2);
    } else if (pattern.startsWith(u"%.1f")) {
      take(false);
      pattern = pattern.sliced(4);
    } else {
      text += u'%';
      pattern = pattern.sliced(1);
    }
  }
  return text;
}
} // namespace

ZQFileSizeFormatter::ZQFileSizeFormatter() = default;
ZQFileSizeFormatter::~ZQFileSizeFormatter() = default;

std::optional<QString> ZQFileSizeFormatter::stringForObjectValue(const Any& object) const {
  const std::optional<qlonglong> value = longLongValueOf(object);
  if (!value)
    return std::nullopt;
  if (*value < 0)
    failAssertion(formatted(AssertionText, {descriptionOf(object)}), AssertionFile, AssertionLine);
  auto size = double(*value);
  qsizetype unit = -1;
  while (size >= UnitSize) {
    ++unit;
    size *= UnitFactor;
  }
  if (unit >= UnitLetters.size())
    throw RangeException(u"index %1 beyond the %2 units of \"%3\""_s.arg(unit)
                             .arg(UnitLetters.size())
                             .arg(UnitLetters));
  const QString letter = unit < 0 ? QString() : QString(UnitLetters[unit]);
  const QString pattern = u"%.1f %@B"_s;
  // Twice: a text around the size may hold what the second round replaces.
  return formatted(formatString_ ? formatted(*formatString_, {pattern}) : pattern, {size, letter});
}

bool ZQFileSizeFormatter::getObjectValue(Any* object, const std::optional<QString>& string,
                                         QString*) const {
  const DecimalNumber factor(1024, 0, false);
  DecimalNumber number;
  QString unit;
  Scanner scanner(string.value_or(QString()));
  scanner.scanDecimal(&number);
  int power = 0;
  if (scanner.scanUpToString(u"\n", &unit)) {
    const std::array<QStringView, 5> units{u"", u"KB", u"MB", u"GB", u"TB"};
    // No upper case is shorter than the text: a long rest of a line is not turned into one.
    const QString upper = unit.size() > 2 ? QString() : unit.toUpper();
    for (std::size_t i = 1; i < units.size(); ++i)
      if (upper == units[i])
        power = int(i);
  }
  for (int i = 0; i < power; ++i)
    number = number.multipliedBy(factor);
  if (object)
    *object = Any::fromValue(number);
  return true;
}
