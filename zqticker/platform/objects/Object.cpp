#include "zqticker/platform/objects/Object.h"

#include "zqticker/platform/archiving/PortCoder.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QMetaClassInfo>
#include <QtCore/QMetaObject>

using namespace Qt::StringLiterals;

namespace zq::platform {

Object::Object() = default;
Object::Object(const Object&) : std::enable_shared_from_this<Object>() {}
Object::~Object() = default;

QString Object::className() const {
  const auto qualified = QLatin1StringView(metaObject()->className());
  const qsizetype colons = qualified.lastIndexOf("::"_L1);
  return qualified.mid(colons < 0 ? 0 : colons + 2);
}

QString Object::description() const {
  return defaultDescription();
}

QString Object::defaultDescription() const {
  return "<"_L1 + className() + ": 0x"_L1 + QString::number(quintptr(this), 16) + ">"_L1;
}

bool Object::isEqual(const Object& other) const {
  return this == &other;
}

[[noreturn]] static void refuse(const Object& object, QLatin1StringView selector) {
  throw UnrecognizedSelectorException(object.defaultDescription() + " does not answer "_L1 +
                                      selector);
}

Ref<Object> Object::copy() {
  refuse(*this, "copyWithZone:"_L1);
}
void Object::encodeWithCoder(Coder&) {
  refuse(*this, "encodeWithCoder:"_L1);
}
Ref<Object> Object::initWithCoder(Coder&) {
  refuse(*this, "initWithCoder:"_L1);
}

Ref<Object> Object::replacementObjectForPortCoder(PortCoder& coder) {
  return coder.proxyFor(shared_from_this());
}

QString describe(const Ref<Object>& object) {
  return object ? object->description() : u"(null)"_s;
}

Ref<Object> objectOf(const Any& value) {
  return value.metaType() == QMetaType::fromType<Ref<Object>>() ? value.value<Ref<Object>>()
                                                                : nullptr;
}

bool isSameObject(const Any& a, const Any& b) {
  const Ref<Object> first = objectOf(a);
  const Ref<Object> second = objectOf(b);
  if (first || second)
    return first == second;
  return a.metaType() == b.metaType() && isEqualValue(a, b);
}

bool isEqualValue(const Any& a, const Any& b) {
  const Ref<Object> first = objectOf(a);
  const Ref<Object> second = objectOf(b);
  if (first && second)
    return first == second || first->isEqual(*second);
  if (first || second)
    return false;
  if (a.metaType() == QMetaType::fromType<QVariantList>() && b.metaType() == a.metaType()) {
    const auto& left = *static_cast<const QVariantList*>(a.constData());
    const auto& right = *static_cast<const QVariantList*>(b.constData());
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), isEqualValue);
  }
  if (a.metaType() == QMetaType::fromType<QVariantMap>() && b.metaType() == a.metaType()) {
    const auto& left = *static_cast<const QVariantMap*>(a.constData());
    const auto& right = *static_cast<const QVariantMap*>(b.constData());
    if (left.size() != right.size())
      return false;
    for (auto i = left.begin(), j = right.begin(); i != left.end(); ++i, ++j)
      if (i.key() != j.key() || !isEqualValue(i.value(), j.value()))
        return false;
    return true;
  }
  return a == b;
}

} // namespace zq::platform
