// How a KeyedUnarchiver reads records of the value classes.
#include "zqticker/platform/archiving/IndexSet.h"
#include "zqticker/platform/archiving/KeyedUnarchiver_p.h"
#include "zqticker/platform/archiving/decimal_number_p.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/archiving/seven_bit_groups.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QMargins>
#include <QtCore/QUrl>
#include <QtCore/QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// What an element of a list counts as, in bytes.
constexpr quint64 ElementBytes = 16;

template <class T>
bool holds(const Any& value) {
  return value.metaType() == QMetaType::fromType<T>();
}

} // namespace

Any KeyedUnarchiverState::valueOf(ValueKind kind, Index) {
  switch (kind) {
  case ValueKind::String:
    return stringRecord();
  case ValueKind::Data:
    return dataRecord();
  case ValueKind::Number:
    return numberRecord();
  case ValueKind::DecimalNumber:
    return decimalNumberRecord();
  case ValueKind::Array:
  case ValueKind::Set:
  case ValueKind::OrderedSet:
    return listRecord();
  case ValueKind::CountedSet:
    return countedSetRecord();
  case ValueKind::Dictionary:
    return dictionaryRecord();
  case ValueKind::Null:
    return Any::fromValue(nullptr);
  case ValueKind::Date:
    return dateRecord();
  case ValueKind::Url:
    return urlRecord();
  case ValueKind::Uuid:
    return uuidRecord();
  case ValueKind::Value:
    return valueRecord();
  case ValueKind::IndexSet:
    return indexSetRecord();
  case ValueKind::Locale:
    return localeRecord();
  case ValueKind::None:
    break;
  }
  return {};
}

// The value under a key, inline or referred to; nothing where the key is missing.
Any KeyedUnarchiverState::valueFor(QLatin1StringView key) {
  const auto value = find(key);
  if (!value)
    return {};
  if (list.kind(*value) == Kind::Uid)
    return object(*value, key);
  return inlineValue(*value);
}

std::optional<qint64> KeyedUnarchiverState::integerFor(QLatin1StringView key) {
  const auto value = find(key);
  return value ? std::optional(integer(*value, key)) : std::nullopt;
}

double KeyedUnarchiverState::realFor(QLatin1StringView key) {
  const auto value = find(key);
  return value ? real(*value, key) : 0;
}

QString KeyedUnarchiverState::textFor(QLatin1StringView key) {
  const auto value = find(key);
  return value ? text(*value, key) : QString();
}

Any KeyedUnarchiverState::element(Index reference, std::size_t position) {
  charge(ElementBytes);
  scope_->element = qint64(position);
  Any value = object(reference, {});
  if (!value.isValid())
    fail(u"a container holds nothing"_s);
  scope_->element = -1;
  return value;
}

// The values under "<prefix>0", "<prefix>1" and so on.
std::vector<PropertyList::Index> KeyedUnarchiverState::indexedValues(QLatin1StringView prefix) {
  std::vector<std::pair<qulonglong, Index>> found;
  for (std::uint32_t i = 0; i < list.count(scope_->record); ++i) {
    const auto key = list.asciiString(list.key(scope_->record, i));
    if (!key || !key->startsWith(prefix) || key->size() == prefix.size())
      continue;
    bool isNumber = false;
    const qulonglong number = QByteArrayView(key->mid(prefix.size())).toULongLong(&isNumber);
    if (isNumber)
      found.emplace_back(number, list.value(scope_->record, i));
  }
  std::sort(found.begin(), found.end());
  std::vector<Index> values;
  for (const auto& [number, value] : found) {
    if (number != values.size())
      fail(u"%1%2 is missing"_s.arg(prefix).arg(values.size()));
    values.push_back(value);
  }
  return values;
}

std::vector<PropertyList::Index> KeyedUnarchiverState::references(QLatin1StringView listKey,
                                                                  QLatin1StringView indexedPrefix) {
  const auto array = find(listKey);
  if (!array)
    return indexedValues(indexedPrefix);
  if (list.kind(*array) != Kind::Array)
    fail(u"expected an array of references"_s, listKey);
  const std::uint32_t count = list.count(*array);
  charge(count * sizeof(Index));
  std::vector<Index> elements;
  elements.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i)
    elements.push_back(list.element(*array, i));
  return elements;
}

Any KeyedUnarchiverState::stringRecord() {
  Any value = valueFor("NS.string"_L1);
  if (!value.isValid())
    value = valueFor("NS.bytes"_L1);
  if (holds<QByteArray>(value))
    return QString::fromUtf8(value.toByteArray());
  if (value.isValid() && !holds<QString>(value))
    fail(u"a string holds another value"_s);
  return value.toString();
}

Any KeyedUnarchiverState::dataRecord() {
  Any value = valueFor("NS.data"_L1);
  if (!value.isValid())
    value = valueFor("NS.bytes"_L1);
  if (value.isValid() && !holds<QByteArray>(value))
    fail(u"data holds another value"_s);
  return value.toByteArray();
}

Any KeyedUnarchiverState::numberRecord() {
  for (const QLatin1StringView key :
       {"NS.number"_L1, "NS.boolval"_L1, "NS.intval"_L1, "NS.dblval"_L1}) {
    const auto value = find(key);
    if (!value)
      continue;
    if (key == "NS.boolval"_L1)
      return boolean(*value, key);
    return list.kind(*value) == Kind::Uid ? object(*value, key) : number(*value);
  }
  fail(u"a number without a value"_s);
}

Any KeyedUnarchiverState::decimalNumberRecord() {
  DecimalParts parts;
  parts.mantissa = valueFor("NS.mantissa"_L1).toByteArray();
  parts.wordCount = integerFor("NS.length"_L1).value_or(0);
  parts.exponent = integerFor("NS.exponent"_L1).value_or(0);
  const auto negative = find("NS.negative"_L1);
  parts.isNegative = negative && boolean(*negative, "NS.negative");
  parts.byteOrder = integerFor("NS.mantissa.bo"_L1).value_or(DecimalParts::LittleEndian);
  const Any value = decimalNumber(parts);
  if (!value.isValid())
    fail(u"a decimal number is malformed"_s);
  return value;
}

Any KeyedUnarchiverState::listRecord() {
  const std::vector<Index> elements = references("NS.objects"_L1, "NS.object."_L1);
  QVariantList values;
  for (std::size_t i = 0; i < elements.size(); ++i)
    values.append(element(elements[i], i));
  return values;
}

Any KeyedUnarchiverState::countedSetRecord() {
  const std::vector<Index> elements = indexedValues("NS.object"_L1);
  const std::vector<Index> counts = indexedValues("NS.count"_L1);
  if (elements.size() != counts.size() ||
      quint64(integerFor("NS.count"_L1).value_or(0)) != elements.size())
    fail(u"a counted set does not agree with its count"_s);
  QVariantList values;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const qint64 times = integer(counts[i], "NS.count");
    const quint64 weightBefore = weight_;
    const Any value = element(elements[i], i);
    const quint64 weight = weight_ - weightBefore;
    if (times < 1 || quint64(times) > maximumWeight_)
      fail(u"an element of a counted set counts %1 times"_s.arg(times));
    charge(quint64(times) * ElementBytes);
    addContent(quint64(times - 1) * weight, 0);
    for (qint64 n = 0; n < times; ++n)
      values.append(value);
  }
  return values;
}

Any KeyedUnarchiverState::dictionaryRecord() {
  const std::vector<Index> keys = references("NS.keys"_L1, "NS.key."_L1);
  const std::vector<Index> objects = references("NS.objects"_L1, "NS.object."_L1);
  if (keys.size() != objects.size())
    fail(u"a dictionary has %1 keys for %2 objects"_s.arg(keys.size()).arg(objects.size()));
  QVariantMap values;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const Any key = element(keys[i], i);
    if (!holds<QString>(key))
      fail(u"a dictionary key is no string"_s);
    values.insert(key.toString(), element(objects[i], i));
  }
  return values;
}

Any KeyedUnarchiverState::dateRecord() {
  if (const auto date = dateOfSeconds(realFor("NS.time"_L1)))
    return *date;
  fail(u"a date is out of range"_s, "NS.time");
}

Any KeyedUnarchiverState::urlRecord() {
  const Any base = valueFor("NS.base"_L1);
  if (base.isValid() && !holds<QUrl>(base))
    fail(u"the base of a URL is no URL"_s, "NS.base");
  const QUrl relative(textFor("NS.relative"_L1));
  return base.isValid() ? base.toUrl().resolved(relative) : relative;
}

Any KeyedUnarchiverState::uuidRecord() {
  const Any bytes = valueFor("NS.uuidbytes"_L1);
  if (!holds<QByteArray>(bytes) || bytes.toByteArray().size() != 16)
    fail(u"a UUID has not 16 bytes"_s, "NS.uuidbytes");
  return QUuid::fromRfc4122(bytes.toByteArray());
}

Any KeyedUnarchiverState::valueRecord() {
  const auto special = integerFor("NS.special"_L1);
  if (!special) {
    // The type as a text, then the value.
    const QString type = textFor("$0"_L1);
    const QString value = textFor("$1"_L1);
    const std::vector<double> numbers = numbersInText(value, 2);
    // A rect's type names point and size as its parts.
    if (type.contains("Rect"_L1))
      return rectOfText(value);
    if (type.contains("Point"_L1))
      return pointOfText(value);
    if (type.contains("Size"_L1))
      return sizeOfText(value);
    fail(u"a value of the unknown type %1"_s.arg(type.left(80)));
  }
  const auto index = [this](QLatin1StringView key) -> qsizetype {
    const Any number = valueFor(key);
    if (!holds<qlonglong>(number) || number.toLongLong() < 0)
      fail(u"a bound of a range is no index"_s, key);
    return qsizetype(number.toLongLong());
  };
  switch (*special) {
  case 1:
    return pointOfText(textFor("NS.pointval"_L1));
  case 2:
    return sizeOfText(textFor("NS.sizeval"_L1));
  case 3:
    return rectOfText(textFor("NS.rectval"_L1));
  case 4:
    return Any::fromValue(Range{index("NS.rangeval.location"_L1), index("NS.rangeval.length"_L1)});
  case 12:
    return Any::fromValue(QMarginsF(realFor("NS.edgeval.left"_L1), realFor("NS.edgeval.top"_L1),
                                    realFor("NS.edgeval.right"_L1),
                                    realFor("NS.edgeval.bottom"_L1)));
  default:
    fail(u"a value of the unknown kind %1"_s.arg(*special), "NS.special");
  }
}

Any KeyedUnarchiverState::indexSetRecord() {
  const qint64 count = integerFor("NSRangeCount"_L1).value_or(0);
  IndexSet set;
  const auto append = [&](qint64 location, qint64 length) {
    const bool isFirst = set.ranges.isEmpty();
    if (location < 0 || length < 1 || location > std::numeric_limits<qint64>::max() - length ||
        (!isFirst && location < set.ranges.last().end()))
      fail(u"the ranges of an index set are not in order"_s);
    charge(ElementBytes);
    set.ranges.append({qsizetype(location), qsizetype(length)});
  };
  if (count == 1) {
    append(integerFor("NSLocation"_L1).value_or(0), integerFor("NSLength"_L1).value_or(0));
  } else if (count != 0) {
    const Any packed = valueFor("NSRangeData"_L1);
    if (!holds<QByteArray>(packed))
      fail(u"expected data"_s, "NSRangeData");
    const QByteArray bytes = packed.toByteArray();
    for (qsizetype at = 0; at < bytes.size();) {
      const auto location = takeSevenBitGroups(bytes, at);
      const auto length = location ? takeSevenBitGroups(bytes, at) : std::nullopt;
      if (!length)
        fail(u"a number is cut off"_s, "NSRangeData");
      append(*location, *length);
    }
    if (set.ranges.size() != count)
      fail(u"an index set does not agree with its count"_s);
  }
  return Any::fromValue(set);
}

Any KeyedUnarchiverState::localeRecord() {
  return QLocale(textFor("NS.identifier"_L1));
}

} // namespace zq::platform
