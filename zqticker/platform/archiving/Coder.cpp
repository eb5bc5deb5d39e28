#include "zqticker/platform/archiving/Coder.h"

#include "zqticker/platform/archiving/ClassRegistry.h"
#include "zqticker/platform/objects/Exception.h"

#include <exception>

using namespace Qt::StringLiterals;

namespace zq::platform {

Coder::~Coder() = default;

bool Coder::allowsKeyedCoding() const {
  return false;
}

void Coder::encodeInt(std::int32_t, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeInt64(std::int64_t, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeBool(bool, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeFloat(float, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeDouble(double, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeBytes(const QByteArray&, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodePoint(QPointF, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeSize(QSizeF, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeRect(const QRectF&, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeObject(const Any&, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}
void Coder::encodeConditionalObject(const Ref<Object>&, QAnyStringView forKey) {
  refuse(forKey, Operation::Encode);
}

bool Coder::containsValueForKey(QAnyStringView key) const {
  refuse(key, Operation::Decode);
}
std::int32_t Coder::decodeIntForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
std::int64_t Coder::decodeInt64ForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
bool Coder::decodeBoolForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
float Coder::decodeFloatForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
double Coder::decodeDoubleForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
QByteArray Coder::decodeBytesForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
QPointF Coder::decodePointForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
QSizeF Coder::decodeSizeForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
QRectF Coder::decodeRectForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}
Any Coder::decodeObjectForKey(QAnyStringView key) {
  refuse(key, Operation::Decode);
}

std::optional<QString> Coder::decodeStringForKey(QAnyStringView key) {
  const Any value = decodeObjectForKey(key);
  if (!value.isValid())
    return std::nullopt;
  if (value.metaType() != QMetaType::fromType<QString>())
    raiseWrongClass(key, value, u"NSString"_s);
  return value.toString();
}

std::optional<QByteArray> Coder::decodeDataForKey(QAnyStringView key) {
  const Any value = decodeObjectForKey(key);
  if (!value.isValid())
    return std::nullopt;
  if (value.metaType() != QMetaType::fromType<QByteArray>())
    raiseWrongClass(key, value, u"NSData"_s);
  return value.toByteArray();
}

void Coder::encodeValue(const Any&) {
  refuse("", Operation::Encode);
}
Any Coder::decodeValue() {
  refuse("", Operation::Decode);
}

QString Coder::keyPath(QAnyStringView key) const {
  return key.toString();
}

void Coder::refuse(QAnyStringView key, Operation operation) const {
  raiseUnsupported(key, operation);
  std::terminate();
}

void Coder::raiseUnsupported(QAnyStringView key, Operation) const {
  throw InvalidArgumentException(key.isEmpty() ? u"this coder has no values in order"_s
                                               : u"this coder has no operation for the key "_s +
                                                     key.toString());
}

// The class under which a value archives.
static QString archiveNameOf(const Any& value) {
  if (const Ref<Object> object = objectOf(value))
    return ClassRegistry::archiveNameOf(*object->metaObject());
  switch (value.typeId()) {
  case QMetaType::UnknownType:
    return u"nothing"_s;
  case QMetaType::QString:
    return u"NSString"_s;
  case QMetaType::QByteArray:
    return u"NSData"_s;
  case QMetaType::QVariantList:
    return u"NSArray"_s;
  case QMetaType::QVariantMap:
    return u"NSDictionary"_s;
  case QMetaType::QDateTime:
    return u"NSDate"_s;
  case QMetaType::QUrl:
    return u"NSURL"_s;
  case QMetaType::Bool:
  case QMetaType::Int:
  case QMetaType::LongLong:
  case QMetaType::ULongLong:
  case QMetaType::Float:
  case QMetaType::Double:
    return u"NSNumber"_s;
  default:
    return QString::fromLatin1(value.metaType().name());
  }
}

void Coder::raiseWrongClass(QAnyStringView key, const Any& found,
                            const QMetaObject& expected) const {
  raiseWrongClass(key, found, ClassRegistry::archiveNameOf(expected));
}

void Coder::raiseWrongClass(QAnyStringView key, const Any& found, const QString& expected) const {
  throw ArchiveException(u"expected %1, found %2"_s.arg(expected, archiveNameOf(found)),
                         keyPath(key));
}

} // namespace zq::platform
