#include "zqticker/platform/archiving/KeyedUnarchiver.h"

#include "zqticker/platform/archiving/KeyedUnarchiver_p.h"
#include "zqticker/platform/archiving/number_text.h"
#include "zqticker/platform/objects/Exception.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace zq::platform {

Any KeyedUnarchiver::unarchiveObjectWithData(const QByteArray& data) {
  return unarchiveObjectWithData(data, Options());
}

Any KeyedUnarchiver::unarchiveObjectWithData(const QByteArray& data, const Options& options) {
  return KeyedUnarchiver(data, options).decodeObjectForKey("root");
}

KeyedUnarchiver::KeyedUnarchiver(const QByteArray& data) : KeyedUnarchiver(data, Options()) {}
KeyedUnarchiver::KeyedUnarchiver(const QByteArray& data, const Options& options)
    : state_(std::make_unique<KeyedUnarchiverState>(*this, data, options)) {}
KeyedUnarchiver::~KeyedUnarchiver() = default;

const KeyedArchive& KeyedUnarchiver::archive() const {
  return state_->archive;
}

Any KeyedUnarchiver::decodeObjectAt(std::uint32_t uid) {
  return state_->objectAt(uid);
}

bool KeyedUnarchiver::allowsKeyedCoding() const {
  return true;
}

bool KeyedUnarchiver::containsValueForKey(QAnyStringView key) const {
  return state_->find(key).has_value();
}

std::int32_t KeyedUnarchiver::decodeIntForKey(QAnyStringView key) {
  const std::int64_t value = decodeInt64ForKey(key);
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max())
    state_->fail(u"%1 is outside the range of 32 bits"_s.arg(value), key);
  return std::int32_t(value);
}

std::int64_t KeyedUnarchiver::decodeInt64ForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? state_->integer(*value, key) : 0;
}

bool KeyedUnarchiver::decodeBoolForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value && state_->boolean(*value, key);
}

float KeyedUnarchiver::decodeFloatForKey(QAnyStringView key) {
  const double value = decodeDoubleForKey(key);
  // Beyond its range a float is infinite.
  if (std::isfinite(value) && std::abs(value) > double(std::numeric_limits<float>::max()))
    return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
  return float(value);
}

double KeyedUnarchiver::decodeDoubleForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? state_->real(*value, key) : 0;
}

QByteArray KeyedUnarchiver::decodeBytesForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? state_->bytes(*value, key) : QByteArray();
}

QPointF KeyedUnarchiver::decodePointForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? pointOfText(state_->text(*value, key)) : QPointF();
}

QSizeF KeyedUnarchiver::decodeSizeForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? sizeOfText(state_->text(*value, key)) : QSizeF(0, 0);
}

QRectF KeyedUnarchiver::decodeRectForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? rectOfText(state_->text(*value, key)) : QRectF();
}

Any KeyedUnarchiver::decodeObjectForKey(QAnyStringView key) {
  const auto value = state_->find(key);
  return value ? state_->object(*value, key) : Any();
}

QString KeyedUnarchiver::keyPath(QAnyStringView key) const {
  return state_->keyPath(key);
}

void KeyedUnarchiver::raiseUnsupported(QAnyStringView key, Operation operation) const {
  if (operation == Operation::Encode)
    throw ArchiveException(u"an unarchiver does not encode"_s, keyPath(key));
  Coder::raiseUnsupported(key, operation);
}

} // namespace zq::platform
