// How a KeyedArchiver writes values: as entries of the object table or as records of the value
// classes.
#include "zqticker/platform/archiving/KeyedArchiver_p.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/archiving/reference_date_p.h"
#include "zqticker/platform/archiving/seven_bit_groups.h"
#include "zqticker/platform/objects/Exception.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr ValueClass MutableString{"NSMutableString", "NSString"};
constexpr ValueClass Null{"NSNull"};
constexpr ValueClass Array{"NSArray"};
constexpr ValueClass Dictionary{"NSDictionary"};
constexpr ValueClass Date{"NSDate"};
constexpr ValueClass Url{"NSURL"};
constexpr ValueClass Uuid{"NSUUID"};
constexpr ValueClass Value{"NSValue"};
constexpr ValueClass IndexSetClass{"NSIndexSet"};
constexpr ValueClass Locale{"NSLocale"};

template <class T>
const T& held(const Any& value) {
  return *static_cast<const T*>(value.constData());
}

template <class T>
bool holds(const Any& value) {
  return value.metaType() == QMetaType::fromType<T>();
}

} // namespace

KeyedArchiverState::Uid KeyedArchiverState::classUid(const ValueClass& valueClass) {
  if (const auto known = classesByAddress_.constFind(&valueClass);
      known != classesByAddress_.cend())
    return *known;
  QStringList classes{QString::fromLatin1(valueClass.name)};
  if (valueClass.superclass)
    classes.append(QString::fromLatin1(valueClass.superclass));
  classes.append(u"NSObject"_s);
  const Uid uid = classUid(classes.first(), classes);
  classesByAddress_.insert(&valueClass, uid);
  return uid;
}

KeyedArchiverState::Uid KeyedArchiverState::encode(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::UnknownType:
    return 0;
  case QMetaType::QString:
    return encodeString(held<QString>(value));
  case QMetaType::QByteArray:
    return append(writer.addData(held<QByteArray>(value)));
  case QMetaType::Nullptr:
    return encodeNull();
  case QMetaType::QVariantList:
    return encodeList(held<QVariantList>(value));
  case QMetaType::QStringList:
  case QMetaType::QByteArrayList:
    return encodeList(value.toList());
  case QMetaType::QVariantMap:
    return encodeMap(held<QVariantMap>(value));
  case QMetaType::QVariantHash:
    return encodeMap(value.toMap());
  case QMetaType::QDateTime:
    return encodeDate(held<QDateTime>(value));
  case QMetaType::QUrl:
    return encodeUrl(held<QUrl>(value));
  case QMetaType::QUuid:
    return encodeUuid(held<QUuid>(value));
  case QMetaType::QLocale:
    return encodeLocale(held<QLocale>(value));
  default:
    break;
  }
  if (holds<Ref<Object>>(value))
    return encodeReference(held<Ref<Object>>(value));
  if (const std::optional<Uid> number = encodeNumber(value))
    return *number;
  if (const std::optional<Uid> object = encodeValueObject(value))
    return *object;
  throw InvalidArgumentException(u"%1: a value of type %2 cannot be archived"_s.arg(
      keyPath(scope_->key), QLatin1StringView(value.metaType().name())));
}

// The text "$null" as an entry would read as nothing.
KeyedArchiverState::Uid KeyedArchiverState::encodeString(QStringView text) {
  if (text == "$null"_L1)
    return encodeRecord(MutableString, [&] { add("NS.string", writer.addString(text)); });
  return encodeEntry(writer.addString(text));
}

std::optional<KeyedArchiverState::Uid> KeyedArchiverState::encodeNumber(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::Bool:
    return encodeEntry(writer.addBoolean(value.toBool()));
  case QMetaType::Short:
  case QMetaType::SChar:
  case QMetaType::Char:
  case QMetaType::Int:
  case QMetaType::Long:
  case QMetaType::LongLong:
    return encodeEntry(writer.addInteger(value.toLongLong()));
  case QMetaType::UShort:
  case QMetaType::UChar:
  case QMetaType::UInt:
  case QMetaType::ULong:
  case QMetaType::ULongLong:
    return encodeEntry(writer.addUnsigned(value.toULongLong()));
  case QMetaType::Float:
    return encodeEntry(writer.addSingle(held<float>(value)));
  case QMetaType::Double:
    return encodeEntry(writer.addReal(held<double>(value)));
  default:
    return std::nullopt;
  }
}

KeyedArchiverState::Uid KeyedArchiverState::encodeNull() {
  if (null_ == 0)
    null_ = encodeRecord(Null, [] {});
  return null_;
}

KeyedArchiverState::Index KeyedArchiverState::references(const QVariantList& values) {
  std::vector<Index> elements;
  elements.reserve(std::size_t(values.size()));
  for (const Any& value : values) {
    const Uid uid = encode(value);
    if (uid == 0)
      throw InvalidArgumentException(u"%1: a list or a map holds nothing"_s.arg(keyPath({})));
    elements.push_back(uidValue(uid));
  }
  return writer.addArray(elements);
}

KeyedArchiverState::Uid KeyedArchiverState::encodeList(const QVariantList& list) {
  return encodeRecord(Array, [&] { add("NS.objects", references(list)); });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeMap(const QVariantMap& map) {
  return encodeRecord(Dictionary, [&] {
    std::vector<Index> keys;
    keys.reserve(std::size_t(map.size()));
    for (auto pair = map.keyBegin(); pair != map.keyEnd(); ++pair)
      keys.push_back(uidValue(encodeString(*pair)));
    add("NS.keys", writer.addArray(keys));
    add("NS.objects", references(map.values()));
  });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeDate(const QDateTime& date) {
  if (!date.isValid())
    throw InvalidArgumentException(u"%1: the date is invalid"_s.arg(keyPath(scope_->key)));
  return encodeRecord(Date, [&] { add("NS.time", writer.addReal(secondsOfDate(date))); });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeUrl(const QUrl& url) {
  return encodeRecord(Url, [&] {
    add("NS.base", uidValue(0));
    add("NS.relative", uidValue(encodeString(QString::fromLatin1(url.toEncoded()))));
  });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeUuid(const QUuid& uuid) {
  return encodeRecord(Uuid, [&] { add("NS.uuidbytes", writer.addData(uuid.toRfc4122())); });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeLocale(const QLocale& locale) {
  return encodeRecord(Locale, [&] { add("NS.identifier", uidValue(encodeString(locale.name()))); });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeGeometry(int special, QLatin1StringView key,
                                                           const QString& text) {
  return encodeRecord(Value, [&] {
    add("NS.special", writer.addInteger(special));
    add(key, uidValue(encodeString(text)));
  });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeRange(Range range) {
  return encodeRecord(Value, [&] {
    add("NS.special", writer.addInteger(4));
    add("NS.rangeval.location", uidValue(encodeEntry(writer.addInteger(range.location))));
    add("NS.rangeval.length", uidValue(encodeEntry(writer.addInteger(range.length))));
  });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeMargins(const QMarginsF& margins) {
  return encodeRecord(Value, [&] {
    add("NS.special", writer.addInteger(12));
    add("NS.edgeval.top", writer.addReal(margins.top()));
    add("NS.edgeval.left", writer.addReal(margins.left()));
    add("NS.edgeval.bottom", writer.addReal(margins.bottom()));
    add("NS.edgeval.right", writer.addReal(margins.right()));
  });
}

KeyedArchiverState::Uid KeyedArchiverState::encodeIndexSet(const IndexSet& indices) {
  return encodeRecord(IndexSetClass, [&] {
    add("NSRangeCount", writer.addInteger(indices.ranges.size()));
    if (indices.ranges.size() == 1) {
      add("NSLocation", writer.addInteger(indices.ranges.first().location));
      add("NSLength", writer.addInteger(indices.ranges.first().length));
    } else if (indices.ranges.size() > 1) {
      QByteArray packed;
      for (const Range& range : indices.ranges) {
        appendSevenBitGroups(packed, quint64(range.location));
        appendSevenBitGroups(packed, quint64(range.length));
      }
      add("NSRangeData", uidValue(append(writer.addData(packed))));
    }
  });
}

std::optional<KeyedArchiverState::Uid> KeyedArchiverState::encodeValueObject(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::QPoint:
  case QMetaType::QPointF:
    return encodeGeometry(1, "NS.pointval"_L1, textOfPoint(value.toPointF()));
  case QMetaType::QSize:
  case QMetaType::QSizeF:
    return encodeGeometry(2, "NS.sizeval"_L1, textOfSize(value.toSizeF()));
  case QMetaType::QRect:
  case QMetaType::QRectF:
    return encodeGeometry(3, "NS.rectval"_L1, textOfRect(value.toRectF()));
  default:
    break;
  }
  if (holds<Range>(value))
    return encodeRange(held<Range>(value));
  if (holds<QMarginsF>(value))
    return encodeMargins(held<QMarginsF>(value));
  if (holds<IndexSet>(value))
    return encodeIndexSet(held<IndexSet>(value));
  return std::nullopt;
}

// A value that stands in a record as it is.
KeyedArchiverState::Index KeyedArchiverState::inlineValue(const Any& value) {
  switch (value.typeId()) {
  case QMetaType::Bool:
    return writer.addBoolean(value.toBool());
  case QMetaType::LongLong:
    return writer.addInteger(value.toLongLong());
  case QMetaType::ULongLong:
    return writer.addUnsigned(value.toULongLong());
  case QMetaType::Float:
    return writer.addSingle(held<float>(value));
  case QMetaType::Double:
    return writer.addReal(held<double>(value));
  case QMetaType::QString:
    return writer.addString(held<QString>(value));
  case QMetaType::QByteArray:
    return writer.addData(held<QByteArray>(value));
  case QMetaType::QDateTime:
    return writer.addDate(secondsOfDate(held<QDateTime>(value)));
  default:
    throw InvalidArgumentException(u"%1: a value of type %2 cannot stand in a record"_s.arg(
        keyPath(scope_->key), QLatin1StringView(value.metaType().name())));
  }
}

} // namespace zq::platform
