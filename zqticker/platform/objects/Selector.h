// Messages to receivers that are not known by their type.
#pragma once

#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/objects/Target.h"

#include <QtCore/QVariantList>

#include <array>
#include <tuple>
#include <utility>

namespace zq::platform {

// Turns `value` into a T. Nothing becomes nothing (an empty std::optional, a null Ref, the invalid
// QVariant) and elsewhere a default-made T, as a message to nothing answers zero. Raises
// InvalidArgumentException for a value of another kind.
template <class T>
struct AnyTo {
  static T convert(const Any& value) {
    if (!value.isValid())
      return T();
    if (!value.canConvert<T>())
      throw InvalidArgumentException(QStringLiteral("%1 cannot be passed as %2")
                                         .arg(QLatin1StringView(value.typeName()),
                                              QLatin1StringView(QMetaType::fromType<T>().name())));
    return qvariant_cast<T>(value);
  }
};
template <>
struct AnyTo<Any> {
  static Any convert(const Any& value) { return value; }
};
template <class T>
struct AnyTo<std::optional<T>> {
  static std::optional<T> convert(const Any& value) {
    return value.isValid() ? std::optional<T>(AnyTo<T>::convert(value)) : std::nullopt;
  }
};
template <class T>
struct AnyTo<std::shared_ptr<T>> {
  static Ref<T> convert(const Any& value) {
    Ref<T> object = objectOf<T>(value);
    if (!object && value.isValid())
      throw InvalidArgumentException(QStringLiteral("an object of another class is expected"));
    return object;
  }
};

// A message: either a member function, or the name of an invokable method (Q_INVOKABLE or a slot)
// of the receiver's class.
//
// A name may be the system's own, "loader:willReceiveDataOfLength:", or that of the C++ function,
// "loaderWillReceiveDataOfLength": `first:second:` stands for a function called `first` whose
// second parameter is called `second`, or for one in whose name words are joined, `firstSecond`.
//
// Arguments beyond those that the method takes are left out.
class ZQTICKER_EXPORT Selector {
 public:
  // No message; sending it does nothing.
  Selector() = default;
  Selector(const char* name) : Selector(QString::fromLatin1(name)) {}
  Selector(const QString& name) : name_(name) {}
  template <class C, class R, class... A>
  Selector(R (C::*method)(A...))
      : method_(std::make_shared<Member<C, R (C::*)(A...), R, A...>>(method)) {}
  template <class C, class R, class... A>
  Selector(R (C::*method)(A...) const)
      : method_(std::make_shared<Member<const C, R (C::*)(A...) const, R, A...>>(method)) {}

  // The name it was made from; empty for a member function and for none.
  const QString& name() const { return name_; }

  explicit operator bool() const { return method_ || !name_.isEmpty(); }

  // Whether `target` lives and has such a method for at most `argumentCount` arguments.
  bool isAnsweredBy(const Target& target, qsizetype argumentCount = 10) const;

  // Calls the method on this thread and returns its result, nothing for void. A target that is
  // none or has gone is not called: nothing. What the method raises passes through.
  //
  // Raises UnrecognizedSelectorException where the receiver has no such method,
  // InvalidArgumentException where an argument cannot be turned into the method's parameter.
  Any send(const Target& target, const QVariantList& arguments = {}) const;

 private:
  struct Method {
    virtual ~Method() = default;
    virtual qsizetype parameterCount() const = 0;
    virtual bool isMemberOf(const Target& target) const = 0;
    virtual Any call(const Target& target, const QVariantList& arguments) const = 0;
  };

  template <class C, class Pointer, class R, class... A>
  struct Member final : Method {
    explicit Member(Pointer pointer) : method(pointer) {}

    qsizetype parameterCount() const override { return sizeof...(A); }
    bool isMemberOf(const Target& target) const override {
      return target.as<std::remove_const_t<C>>() != nullptr;
    }
    Any call(const Target& target, const QVariantList& arguments) const override {
      return call(*target.as<std::remove_const_t<C>>(), arguments, std::index_sequence_for<A...>());
    }

    template <std::size_t... I>
    Any call(C& receiver, const QVariantList& arguments, std::index_sequence<I...>) const {
      static_assert(
          (!(std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>)&&...),
          "a method called by a selector takes values or const references");
      std::tuple<std::decay_t<A>...> values{AnyTo<std::decay_t<A>>::convert(arguments.at(I))...};
      if constexpr (std::is_void_v<R>) {
        (receiver.*method)(std::forward<A>(std::get<I>(values))...);
        return Any();
      } else {
        return toAny((receiver.*method)(std::forward<A>(std::get<I>(values))...));
      }
    }

    Pointer method;
  };

  template <class T>
  static Any toAny(const T& value) {
    return Any::fromValue(value);
  }
  static Any toAny(const Any& value) { return value; }
  template <class T>
  static Any toAny(const Ref<T>& object) {
    return any(object);
  }
  template <class T>
  static Any toAny(const std::optional<T>& value) {
    return value ? toAny(*value) : Any();
  }

  QString name_;
  std::shared_ptr<const Method> method_;
};

} // namespace zq::platform
