#include "zqticker/platform/objects/Target.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

Target::operator bool() const {
  return address() != nullptr;
}

QObject* Target::qObject() const {
  const auto* pointer = std::get_if<QPointer<QObject>>(&receiver_);
  return pointer ? pointer->data() : nullptr;
}

Ref<Object> Target::object() const {
  const auto* pointer = std::get_if<std::weak_ptr<Object>>(&receiver_);
  return pointer ? pointer->lock() : nullptr;
}

const void* Target::address() const {
  if (QObject* object = qObject())
    return dynamic_cast<const void*>(object);
  if (const Ref<Object> reference = object())
    return dynamic_cast<const void*>(reference.get());
  if (const auto* weak = std::get_if<Weak<WeakReferenced>>(&receiver_))
    if (const WeakReferenced* receiver = weak->get())
      return dynamic_cast<const void*>(receiver);
  return nullptr;
}

const void* Target::identity() const {
  if (const auto* weak = std::get_if<Weak<WeakReferenced>>(&receiver_))
    return weak->get();
  if (const auto* pointer = std::get_if<QPointer<QObject>>(&receiver_))
    return pointer->data();
  return object().get();
}

QString Target::description() const {
  if (const Ref<Object> reference = object())
    return reference->defaultDescription();
  const void* receiver = address();
  if (!receiver)
    return u"(null)"_s;
  const QObject* named = qObject();
  return u"<%1: 0x%2>"_s.arg(named ? QString::fromLatin1(named->metaObject()->className())
                                   : u"delegate"_s,
                             QString::number(quintptr(receiver), 16));
}

} // namespace zq::platform
