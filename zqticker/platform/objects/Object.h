// Reference objects: identity, description, copy and archive.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/qobjectdefs.h>

#include <memory>
#include <optional>

namespace zq::platform {

class Coder;
class Object;
class PortCoder;

// Shared ownership of a reference object. Null means nothing; `==` compares identity.
template <class T>
using Ref = std::shared_ptr<T>;

// Base of the objects that have an identity and are held by Ref.
//
// A subclass states Q_GADGET and ZQ_OBJECT in its body: class name, archive name and invokable
// methods come from its meta-object. Its archive name is its class name without namespace, unless
// it states another by Q_CLASSINFO("ArchiveName", "NSColor"); Q_CLASSINFO("ArchiveName", "")
// leaves it out of the class list that an archive records.
class ZQTICKER_EXPORT Object : public std::enable_shared_from_this<Object> {
  Q_GADGET
  Q_CLASSINFO("ArchiveName", "NSObject")

 public:
  Object();
  virtual ~Object();
  Object& operator=(const Object&) = delete;

  virtual const QMetaObject* metaObject() const { return &staticMetaObject; }

  // The class name without its namespace.
  QString className() const;

  // A text for people; by default "<ClassName: 0xaddress>".
  virtual QString description() const;
  // That default, for classes that describe themselves only sometimes.
  QString defaultDescription() const;

  // Whether `other` has the same value. By default only the very same object has.
  virtual bool isEqual(const Object& other) const;

  // A new, equal object of the same class, never the same one. Not const: some classes change
  // their source while being copied. Raises UnrecognizedSelectorException where a class has no
  // copies.
  // Operation: copyWithZone:
  virtual Ref<Object> copy();

  // Writes the object's values. Raises UnrecognizedSelectorException where a class does not
  // archive.
  virtual void encodeWithCoder(Coder& coder);
  // Reads the object's values into this fresh object, and returns it or a substitute that takes
  // its place. Raises like encodeWithCoder.
  virtual Ref<Object> initWithCoder(Coder& coder);

  // What travels to another process in the place of this object; by default a proxy.
  virtual Ref<Object> replacementObjectForPortCoder(PortCoder& coder);

 protected:
  Object(const Object&);
};

// States the virtual meta-object of a class derived from Object; stands after Q_GADGET.
#define ZQ_OBJECT                                                                                  \
 public:                                                                                           \
  const QMetaObject* metaObject() const override {                                                 \
    return &staticMetaObject;                                                                      \
  }                                                                                                \
                                                                                                   \
 private:

// The text of `object`'s description, or "(null)".
ZQTICKER_EXPORT QString describe(const Ref<Object>& object);

// Copies `object` with its static type kept. Null gives null.
template <class T>
Ref<T> copyOf(const Ref<T>& object) {
  return object ? std::static_pointer_cast<T>(object->copy()) : nullptr;
}

// A value of any kind: a QString, QByteArray, number, date, list, map or Ref<Object>; the invalid
// QVariant is nothing. A Ref to a derived class is stored as Ref<Object> by `any`.
using Any = QVariant;

template <class T>
Any any(const Ref<T>& object) {
  return object ? Any::fromValue<Ref<Object>>(object) : Any();
}
inline Any any(const std::optional<QString>& text) {
  return text ? Any(*text) : Any();
}

// The reference object that `value` holds, or null.
ZQTICKER_EXPORT Ref<Object> objectOf(const Any& value);

// The reference object of class T that `value` holds, or null.
template <class T>
Ref<T> objectOf(const Any& value) {
  return std::dynamic_pointer_cast<T>(objectOf(value));
}

// Whether both hold the same: identity for reference objects, equality for plain values.
ZQTICKER_EXPORT bool isSameObject(const Any& a, const Any& b);

// Whether both hold equal values, reference objects compared by isEqual, containers by element.
ZQTICKER_EXPORT bool isEqualValue(const Any& a, const Any& b);

} // namespace zq::platform

Q_DECLARE_METATYPE(std::shared_ptr<zq::platform::Object>)
