// One conformance case, and what came of it.
#pragma once

#include "tests/conformance/CaseValue.h"
#include "zqticker/platform/objects/Object.h"

#include <optional>

namespace zq::platform {
class CalendarDate;
class Calendar;
class CharacterSet;
class Date;
struct DateComponents;
class Locale;
class TimeZone;
} // namespace zq::platform

namespace zq::conformance {

// What an operation is asked. The functions below raise CaseError for what is of another kind.
struct Case {
  QString id;
  QString operation;
  QString className;
  CaseValue receiver;
  CaseValue::List arguments;
  CaseValue environment;

  // Raises CaseError where `value` is no case.
  static Case of(const CaseValue& value);

  // By its place; null where there is none.
  const CaseValue& argument(std::size_t index) const;
};

// What it answered. Fields that are missing do not exist for the operation.
struct Outcome {
  std::optional<CaseValue> value = {};
  std::optional<CaseValue> out = {};
  std::optional<CaseValue> locationAfter = {};
  std::optional<CaseValue> receiverAfter = {};
  std::optional<QString> raises = {};
};

// ---- From cases ---------------------------------------------------------------------------------

QString stringOf(const CaseValue& value);
// Nothing for null.
std::optional<QString> optionalStringOf(const CaseValue& value);
qint64 integerOf(const CaseValue& value);
// A number of any kind.
double numberOf(const CaseValue& value);
// The member of a map with one member; CaseError where there is another or none.
const CaseValue& memberOf(const CaseValue& value, QStringView name);

platform::CharacterSet characterSetOf(const CaseValue& value);
platform::TimeZone timeZoneOf(const CaseValue& name);
// Any value, as formatters and transformers take it.
platform::Any anyOf(const CaseValue& value);

// ---- To results ---------------------------------------------------------------------------------

CaseValue resultOf(const std::optional<QString>& value);
CaseValue resultOf(const platform::Date& value);
CaseValue resultOf(const platform::CalendarDate& value);
// {"name": value}
CaseValue tagged(const QString& name, CaseValue value);

} // namespace zq::conformance
