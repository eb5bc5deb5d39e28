// What an object sees of an archiver or an unarchiver.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QAnyStringView>
#include <QtCore/QByteArray>
#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>

#include <cstdint>
#include <optional>

namespace zq::platform {

// One interface for writing and reading objects. A keyed coder stores each value under a key that
// is unique within the object being coded; a sequential coder knows no keys, answers false to
// allowsKeyedCoding, and raises InvalidArgumentException from every keyed operation. It has
// encodeValue and decodeValue instead.
//
// An archiver raises ArchiveException from decoding operations and an unarchiver from encoding
// ones. Writing the same key twice in one object raises InvalidArgumentException.
class ZQTICKER_EXPORT Coder {
 public:
  virtual ~Coder();

  // Whether values can be stored under keys. False by default.
  virtual bool allowsKeyedCoding() const;

  // Writing.
  virtual void encodeInt(std::int32_t value, QAnyStringView forKey);
  virtual void encodeInt64(std::int64_t value, QAnyStringView forKey);
  virtual void encodeBool(bool value, QAnyStringView forKey);
  virtual void encodeFloat(float value, QAnyStringView forKey);
  virtual void encodeDouble(double value, QAnyStringView forKey);
  virtual void encodeBytes(const QByteArray& bytes, QAnyStringView forKey);
  virtual void encodePoint(QPointF point, QAnyStringView forKey);
  virtual void encodeSize(QSizeF size, QAnyStringView forKey);
  virtual void encodeRect(const QRectF& rect, QAnyStringView forKey);
  // Writes a string, data, number, date, list, map or reference object. The invalid QVariant is
  // nothing: the key is written and reads back as nothing.
  virtual void encodeObject(const Any& object, QAnyStringView forKey);
  // Writes a reference to `object` that reads back as nothing unless the same archive also holds
  // the object unconditionally.
  virtual void encodeConditionalObject(const Ref<Object>& object, QAnyStringView forKey);

  template <class T>
  void encodeObject(const Ref<T>& object, QAnyStringView forKey) {
    encodeObject(any(object), forKey);
  }
  void encodeObject(const std::optional<QString>& text, QAnyStringView forKey) {
    encodeObject(any(text), forKey);
  }

  // Reading. A missing key gives false, 0, zeros, no bytes or nothing. A value of another kind
  // raises ArchiveException, a number too large for its type too, both with the key path.
  virtual bool containsValueForKey(QAnyStringView key) const;
  virtual std::int32_t decodeIntForKey(QAnyStringView key);
  virtual std::int64_t decodeInt64ForKey(QAnyStringView key);
  virtual bool decodeBoolForKey(QAnyStringView key);
  virtual float decodeFloatForKey(QAnyStringView key);
  virtual double decodeDoubleForKey(QAnyStringView key);
  virtual QByteArray decodeBytesForKey(QAnyStringView key);
  virtual QPointF decodePointForKey(QAnyStringView key);
  virtual QSizeF decodeSizeForKey(QAnyStringView key);
  virtual QRectF decodeRectForKey(QAnyStringView key);
  // Reads any object. The same reference object of the archive is the same Ref at every place.
  virtual Any decodeObjectForKey(QAnyStringView key);

  // Reads an object that must be of one kind; ArchiveException with the key path otherwise.
  std::optional<QString> decodeStringForKey(QAnyStringView key);
  std::optional<QByteArray> decodeDataForKey(QAnyStringView key);
  template <class T>
  Ref<T> decodeObjectOfClass(QAnyStringView key) {
    const Any value = decodeObjectForKey(key);
    Ref<T> object = objectOf<T>(value);
    if (!object && value.isValid())
      raiseWrongClass(key, value, T::staticMetaObject);
    return object;
  }

  // The way from the top of the archive to `key` of the object being coded ("root.ZQText").
  virtual QString keyPath(QAnyStringView key) const;

  // Writes and reads values in their order; InvalidArgumentException from a keyed coder.
  virtual void encodeValue(const Any& value);
  virtual Any decodeValue();

 protected:
  enum class Operation { Encode, Decode };
  // Raises the exception for an operation that this coder does not have; by default an
  // InvalidArgumentException. Never returns.
  virtual void raiseUnsupported(QAnyStringView key, Operation operation) const;
  // Names both classes as archives do.
  [[noreturn]] void raiseWrongClass(QAnyStringView key, const Any& found,
                                    const QMetaObject& expected) const;
  [[noreturn]] void raiseWrongClass(QAnyStringView key, const Any& found,
                                    const QString& expected) const;

 private:
  [[noreturn]] void refuse(QAnyStringView key, Operation operation) const;
};

} // namespace zq::platform
