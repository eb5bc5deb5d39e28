#include "zqticker/platform/archiving/Coder.h"

#include "zqticker/platform/objects/Exception.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

[[noreturn]] static void refuse(QAnyStringView key) {
  throw InvalidArgumentException("this coder has no operation for the key "_L1 + key.toString());
}

Coder::~Coder() = default;

bool Coder::allowsKeyedCoding() const {
  return false;
}

void Coder::encodeInt(std::int32_t, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeInt64(std::int64_t, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeBool(bool, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeFloat(float, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeDouble(double, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeBytes(const QByteArray&, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodePoint(QPointF, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeSize(QSizeF, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeRect(const QRectF&, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeObject(const Any&, QAnyStringView forKey) {
  refuse(forKey);
}
void Coder::encodeConditionalObject(const Ref<Object>&, QAnyStringView forKey) {
  refuse(forKey);
}

bool Coder::containsValueForKey(QAnyStringView key) const {
  refuse(key);
}
std::int32_t Coder::decodeIntForKey(QAnyStringView key) {
  refuse(key);
}
std::int64_t Coder::decodeInt64ForKey(QAnyStringView key) {
  refuse(key);
}
bool Coder::decodeBoolForKey(QAnyStringView key) {
  refuse(key);
}
float Coder::decodeFloatForKey(QAnyStringView key) {
  refuse(key);
}
double Coder::decodeDoubleForKey(QAnyStringView key) {
  refuse(key);
}
QByteArray Coder::decodeBytesForKey(QAnyStringView key) {
  refuse(key);
}
QPointF Coder::decodePointForKey(QAnyStringView key) {
  refuse(key);
}
QSizeF Coder::decodeSizeForKey(QAnyStringView key) {
  refuse(key);
}
QRectF Coder::decodeRectForKey(QAnyStringView key) {
  refuse(key);
}
Any Coder::decodeObjectForKey(QAnyStringView key) {
  refuse(key);
}

std::optional<QString> Coder::decodeStringForKey(QAnyStringView key) {
  const Any value = decodeObjectForKey(key);
  if (!value.isValid())
    return std::nullopt;
  if (value.metaType() != QMetaType::fromType<QString>())
    raiseWrongClass(key, value, "NSString");
  return value.toString();
}

std::optional<QByteArray> Coder::decodeDataForKey(QAnyStringView key) {
  const Any value = decodeObjectForKey(key);
  if (!value.isValid())
    return std::nullopt;
  if (value.metaType() != QMetaType::fromType<QByteArray>())
    raiseWrongClass(key, value, "NSData");
  return value.toByteArray();
}

QString Coder::keyPath(QAnyStringView key) const {
  return key.toString();
}

void Coder::raiseWrongClass(QAnyStringView key, const Any& found, const char* expected) const {
  const Ref<Object> object = objectOf(found);
  throw ArchiveException(
      "expected "_L1 + QLatin1StringView(expected) + ", found "_L1 +
          (object ? object->className() : QString::fromLatin1(found.metaType().name())),
      keyPath(key));
}

} // namespace zq::platform
