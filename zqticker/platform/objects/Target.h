// The receiver of a message that is not known by its type.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <variant>

namespace zq::platform {

// Refers to a QObject, a reference object or anything derived from WeakReferenced, without owning
// it; reads as none once it has gone.
//
// Thread: a receiver is resolved on the thread that sends; it must not be destroyed by another
// meanwhile. A reference object is kept alive for the length of a call.
class ZQTICKER_EXPORT Target {
 public:
  Target() = default;
  Target(std::nullptr_t) {}
  template <class T>
  Target(T* receiver) {
    if (!receiver)
      return;
    if constexpr (std::is_base_of_v<QObject, T>)
      receiver_ = QPointer<QObject>(receiver);
    else if constexpr (std::is_base_of_v<WeakReferenced, T>)
      receiver_ = Weak<WeakReferenced>(receiver);
    else
      receiver_ = receiver->weak_from_this();
  }
  template <class T>
  Target(const Ref<T>& receiver) {
    if (receiver)
      receiver_ = std::weak_ptr<Object>(receiver);
  }

  // Whether there is a receiver that has not gone.
  explicit operator bool() const;

  // The receiver by its base, while it lives; null for one of another kind. The owning pointer
  // keeps a reference object for as long as it is held.
  QObject* qObject() const;
  Ref<Object> object() const;

  // The receiver as a `C`, a class or an interface that it derives from; null for another class,
  // and once it has gone.
  template <class C>
  C* as() const {
    if (const Ref<Object> reference = object())
      return dynamic_cast<C*>(reference.get());
    if (QObject* widget = qObject())
      return dynamic_cast<C*>(widget);
    if (const auto* weak = std::get_if<Weak<WeakReferenced>>(&receiver_))
      return dynamic_cast<C*>(weak->get());
    return nullptr;
  }

  // Tells receivers apart without looking at them, so that it may be asked while another thread
  // destroys the receiver; null for none and once it has gone. A receiver that is both a QObject
  // and a WeakReferenced has two, by the type that it was given as.
  const void* identity() const;

  // "<ClassName: 0xaddress>", or "(null)".
  QString description() const;

  // Whether both refer to the same living receiver, or both to none.
  friend bool operator==(const Target& a, const Target& b) { return a.address() == b.address(); }

 private:
  const void* address() const;

  std::variant<std::monostate, QPointer<QObject>, std::weak_ptr<Object>, Weak<WeakReferenced>>
      receiver_;
};

} // namespace zq::platform
