#include "tests/conformance/Case.h"

#include "zqticker/platform/calendar/CalendarDate.h"
#include "zqticker/platform/text/CharacterSet.h"
#include "zqticker/platform/text/DecimalNumber.h"

#include <QtCore/QDateTime>

#include <limits>

using namespace Qt::StringLiterals;

namespace zq::conformance {

using namespace platform;

namespace {
const CaseValue Null;

QString textMember(const CaseValue& value, QStringView name) {
  const CaseValue* member = value.find(name);
  return member ? stringOf(*member) : QString();
}

CharacterSet namedSet(const QString& name) {
  if (name == "letters"_L1)
    return CharacterSet::letterCharacterSet();
  if (name == "whitespace"_L1)
    return CharacterSet::whitespaceCharacterSet();
  if (name == "whitespaceAndNewline"_L1)
    return CharacterSet::whitespaceAndNewlineCharacterSet();
  if (name == "decimalDigits"_L1)
    return CharacterSet::decimalDigitCharacterSet();
  throw CaseError("unknown character set " + name.toStdString());
}

DecimalNumber decimalOf(const QString& text) {
  DecimalNumber number;
  if (DecimalNumber::readPrefix(text, number) != text.size() || text.isEmpty())
    throw CaseError("no decimal number: " + text.toStdString());
  return number;
}

double specialNumber(const QString& name) {
  if (name == "nan"_L1)
    return std::numeric_limits<double>::quiet_NaN();
  if (name == "inf"_L1 || name == "-inf"_L1)
    return (name.startsWith(u'-') ? -1 : 1) * std::numeric_limits<double>::infinity();
  throw CaseError("unknown number " + name.toStdString());
}

Any longInteger(const QByteArray& digits) {
  bool isUnsigned = false;
  const qulonglong value = digits.toULongLong(&isUnsigned);
  return isUnsigned ? Any(value) : Any::fromValue(decimalOf(QString::fromLatin1(digits)));
}

Any anyOfMap(const CaseValue& value) {
  if (const CaseValue* number = value.find(u"float"))
    return specialNumber(stringOf(*number));
  if (const CaseValue* number = value.find(u"decimal"))
    return Any::fromValue(decimalOf(stringOf(*number)));
  if (const CaseValue* bytes = value.find(u"hex"))
    return QByteArray::fromHex(stringOf(*bytes).toLatin1());
  if (const CaseValue* entries = value.find(u"dictionary")) {
    QVariantMap map;
    for (const auto& [name, entry] : entries->as<CaseValue::Map>())
      map.insert(name, anyOf(entry));
    return map;
  }
  if (const CaseValue* seconds = value.find(u"date"))
    return QDateTime::fromMSecsSinceEpoch(
        qint64((numberOf(*seconds) + TimeIntervalSince1970) * 1000));
  throw CaseError("unknown value " + value.json().left(100).toStdString());
}
} // namespace

Case Case::of(const CaseValue& value) {
  Case result;
  value.as<CaseValue::Map>();
  result.id = textMember(value, u"id");
  result.operation = textMember(value, u"op");
  result.className = textMember(value, u"class");
  if (const CaseValue* receiver = value.find(u"receiver"))
    result.receiver = *receiver;
  if (const CaseValue* arguments = value.find(u"args"))
    result.arguments = arguments->as<CaseValue::List>();
  if (const CaseValue* environment = value.find(u"environment"))
    result.environment = *environment;
  return result;
}

const CaseValue& Case::argument(std::size_t index) const {
  return index < arguments.size() ? arguments[index] : Null;
}

QString stringOf(const CaseValue& value) {
  return value.as<QString>();
}

std::optional<QString> optionalStringOf(const CaseValue& value) {
  return value.isNull() ? std::nullopt : std::optional(stringOf(value));
}

qint64 integerOf(const CaseValue& value) {
  if (value.is<bool>())
    return value.as<bool>();
  if (value.is<CaseValue::LongInteger>()) {
    bool isUnsigned = false;
    const quint64 number = value.as<CaseValue::LongInteger>().digits.toULongLong(&isUnsigned);
    if (isUnsigned)
      return static_cast<qint64>(number);
  }
  return value.as<qint64>();
}

double numberOf(const CaseValue& value) {
  if (const CaseValue* special = value.find(u"float"))
    return specialNumber(stringOf(*special));
  if (value.is<CaseValue::LongInteger>())
    return value.as<CaseValue::LongInteger>().digits.toDouble();
  return value.is<double>() ? value.as<double>() : double(integerOf(value));
}

const CaseValue& memberOf(const CaseValue& value, QStringView name) {
  if (const CaseValue* member = value.find(name))
    return *member;
  throw CaseError(name.toString().toStdString() + " expected, not " +
                  value.json().left(100).toStdString());
}

CharacterSet characterSetOf(const CaseValue& value) {
  if (value.is<QString>())
    return namedSet(value.as<QString>());
  if (const CaseValue* name = value.find(u"set"))
    return namedSet(stringOf(*name));
  return CharacterSet::characterSetWithCharactersInString(stringOf(memberOf(value, u"characters")));
}

TimeZone timeZoneOf(const CaseValue& name) {
  const auto zone = TimeZone::timeZoneWithName(stringOf(name));
  if (!zone)
    throw CaseError("unknown time zone " + name.json().toStdString());
  return *zone;
}

Any anyOf(const CaseValue& value) {
  if (value.isNull())
    return {};
  if (value.is<bool>())
    return value.as<bool>();
  if (value.is<qint64>())
    return value.as<qint64>();
  if (value.is<CaseValue::LongInteger>())
    return longInteger(value.as<CaseValue::LongInteger>().digits);
  if (value.is<double>())
    return value.as<double>();
  if (value.is<QString>())
    return value.as<QString>();
  if (!value.is<CaseValue::List>())
    return anyOfMap(value);
  QVariantList list;
  for (const CaseValue& each : value.as<CaseValue::List>())
    list.append(anyOf(each));
  return list;
}

CaseValue resultOf(const std::optional<QString>& value) {
  return value ? CaseValue(*value) : CaseValue();
}

CaseValue resultOf(const Date& value) {
  return tagged(u"date"_s, value.timeIntervalSinceReferenceDate());
}

CaseValue resultOf(const CalendarDate& value) {
  return tagged(u"calendarDate"_s,
                CaseValue::Map{{u"instant"_s, value.timeIntervalSinceReferenceDate()},
                               {u"timeZone"_s, value.timeZone().name()}});
}

CaseValue tagged(const QString& name, CaseValue value) {
  return CaseValue::Map{{name, std::move(value)}};
}

} // namespace zq::conformance
