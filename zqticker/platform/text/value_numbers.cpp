#include "zqticker/platform/text/value_numbers.h"

#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/text/DecimalNumber.h"
#include "zqticker/platform/text/number_parsing.h"

#include <cmath>
#include <limits>
#include <variant>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
using Number = std::variant<std::monostate, qlonglong, qulonglong, double, DecimalNumber, QString>;

Number numberIn(const Any& value) {
  switch (value.metaType().id()) {
  case QMetaType::Bool:
  case QMetaType::Char:
  case QMetaType::SChar:
  case QMetaType::UChar:
  case QMetaType::Short:
  case QMetaType::UShort:
  case QMetaType::Int:
  case QMetaType::UInt:
  case QMetaType::Long:
  case QMetaType::LongLong:
    return value.toLongLong();
  case QMetaType::ULong:
  case QMetaType::ULongLong:
    return value.toULongLong();
  case QMetaType::Float:
  case QMetaType::Double:
    return value.toDouble();
  case QMetaType::QString:
    return value.toString();
  default:
    if (value.metaType() == QMetaType::fromType<DecimalNumber>())
      return value.value<DecimalNumber>();
    return {};
  }
}

template <class Integer>
Integer truncated(double number) {
  using Limits = std::numeric_limits<Integer>;
  // The lowest number is a power of two, and exact.
  if (std::isnan(number))
    return 0;
  if (number < double(Limits::min()))
    return Limits::min();
  if (number >= -double(Limits::min()))
    return Limits::max();
  return static_cast<Integer>(number);
}

struct LongLong {
  std::optional<qlonglong> operator()(std::monostate) const { return std::nullopt; }
  std::optional<qlonglong> operator()(qlonglong number) const { return number; }
  std::optional<qlonglong> operator()(qulonglong number) const { return qlonglong(number); }
  std::optional<qlonglong> operator()(double number) const { return truncated<qlonglong>(number); }
  std::optional<qlonglong> operator()(const DecimalNumber& number) const {
    return number.longLongValue();
  }
  std::optional<qlonglong> operator()(const QString& text) const { return longLongValue(text); }
};

struct Int {
  std::optional<int> operator()(std::monostate) const { return std::nullopt; }
  std::optional<int> operator()(qlonglong number) const { return int(number); }
  std::optional<int> operator()(qulonglong number) const { return int(number); }
  std::optional<int> operator()(double number) const { return truncated<int>(number); }
  std::optional<int> operator()(const DecimalNumber& number) const {
    return truncated<int>(number.doubleValue());
  }
  std::optional<int> operator()(const QString& text) const { return intValue(text); }
};

struct Float {
  std::optional<float> operator()(std::monostate) const { return std::nullopt; }
  std::optional<float> operator()(qlonglong number) const { return float(number); }
  std::optional<float> operator()(qulonglong number) const { return float(number); }
  std::optional<float> operator()(double number) const { return float(number); }
  std::optional<float> operator()(const DecimalNumber& number) const { return number.floatValue(); }
  std::optional<float> operator()(const QString& text) const { return floatValue(text); }
};

struct Description {
  QString operator()(std::monostate) const { return {}; }
  QString operator()(qlonglong number) const { return QString::number(number); }
  QString operator()(qulonglong number) const { return QString::number(number); }
  QString operator()(double number) const { return textOfNumber(number); }
  QString operator()(const DecimalNumber& number) const { return number.description(); }
  QString operator()(const QString& text) const { return text; }
};
} // namespace

std::optional<qlonglong> longLongValueOf(const Any& value) {
  return std::visit(LongLong(), numberIn(value));
}

std::optional<int> intValueOf(const Any& value) {
  return std::visit(Int(), numberIn(value));
}

std::optional<float> floatValueOf(const Any& value) {
  return std::visit(Float(), numberIn(value));
}

QString descriptionOf(const Any& value) {
  const Number number = numberIn(value);
  if (!std::holds_alternative<std::monostate>(number))
    return std::visit(Description(), number);
  if (!value.isValid())
    return u"(null)"_s;
  const Ref<Object> object = objectOf(value);
  return object ? object->description() : QString::fromLatin1(value.metaType().name());
}

} // namespace zq::platform
