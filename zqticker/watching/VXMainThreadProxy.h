// Messages from any thread to an object of the main thread.
#pragma once

#include "zqticker/platform/objects/MainThread.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Selector.h"
#include "zqticker/platform/objects/Target.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QVariantList>

#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

// Delivers messages to its target on the main thread, while the sender waits until each has been
// handled: a call through the proxy has the order of a direct one.
//
//     mainThreadProxy(delegate)->call(&Delegate::finished, path);
//     mainThreadProxy(label)->send("setText", {text});
//
// The target is not owned; it must not be destroyed by another thread while a message is sent,
// except by the main thread during `call`, which looks at the target there only. A target that has
// gone is not called: nothing. A proxy of nothing answers its own operations only.
//
// Thread: any. The main thread must run its event loop, or the sender waits until it does; on the
// main thread itself messages are delivered at once. Raises MainThreadEndedException once the main
// loop has quit (see performOnMainThreadAndWait).
class ZQTICKER_EXPORT VXMainThreadProxy final : public zq::platform::Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "")

 public:
  // Operation: initWithTarget:
  static zq::platform::Ref<VXMainThreadProxy> make(const zq::platform::Target& target);
  ~VXMainThreadProxy() override;

  // Whether the proxy itself or the living target answers `message`. Asked on this thread.
  bool respondsToSelector(const zq::platform::Selector& message) const;

  // Delivers `message` and returns its result; what the target raises is raised here. The arguments
  // are kept until then. What the proxy itself answers (respondsToSelector:, performSelector:,
  // performSelector:withObject:, mainThreadProxy, copyMainThreadProxy, description, className,
  // isEqual:, and member functions of its class) it answers on this thread.
  //
  // Raises UnrecognizedSelectorException, on this thread and without asking the main one, where the
  // target has no such method.
  // Operation: forwardInvocation:
  zq::platform::Any send(const zq::platform::Selector& message, const QVariantList& arguments = {});

  // Like `send`, without an argument or with one, but returns nothing from a method of the target.
  // What the proxy itself answers gives its result.
  zq::platform::Any performSelector(const zq::platform::Selector& message);
  // Operation: performSelector:withObject:
  zq::platform::Any performSelector(const zq::platform::Selector& message,
                                    const zq::platform::Any& object);

  // This proxy.
  zq::platform::Ref<VXMainThreadProxy> mainThreadProxy();
  zq::platform::Ref<VXMainThreadProxy> copyMainThreadProxy();

  // Calls a member function of the target, like `send` and without conversions. A result of a
  // target that has gone is a default-made one. Arguments are copied, and kept until the call has
  // returned, except those that the method takes by a reference through which it may write and
  // those of abstract classes. Raises UnrecognizedSelectorException for a target of another class.
  template <class C, class R, class... A, class... P>
  R call(R (C::*method)(A...), P&&... arguments) {
    return deliver<C, R, A...>(method, std::forward<P>(arguments)...);
  }
  template <class C, class R, class... A, class... P>
  R call(R (C::*method)(A...) const, P&&... arguments) {
    return deliver<C, R, A...>(method, std::forward<P>(arguments)...);
  }

 private:
  // How an argument is kept for a parameter of type A.
  template <class A>
  using Kept = std::conditional_t<std::is_reference_v<A> &&
                                      ((std::is_lvalue_reference_v<A> &&
                                        !std::is_const_v<std::remove_reference_t<A>>) ||
                                       std::is_abstract_v<std::remove_reference_t<A>>),
                                  A, std::decay_t<A>>;

  template <class C, class R, class... A, class Method, class... P>
  R deliver(Method method, P&&... arguments) {
    static_assert(sizeof...(A) == sizeof...(P), "as many arguments as the method takes");
    static_assert(!std::is_reference_v<R>, "a target that has gone has nothing to refer to");
    // Released last, and by this thread, should it be the last reference.
    const zq::platform::Ref<zq::platform::Object> kept = target_.object();
    std::tuple<Kept<A>...> values{std::forward<P>(arguments)...};
    return zq::platform::performOnMainThreadAndWait([&]() -> R {
      if (C* const receiver = target_.as<C>())
        return std::apply(
            [&](Kept<A>&... each) -> R { return (receiver->*method)(std::forward<A>(each)...); },
            values);
      if (!hasTarget_ || target_)
        raiseUnrecognized(zq::platform::Selector());
      return R();
    });
  }

  explicit VXMainThreadProxy(const zq::platform::Target& target);
  std::optional<zq::platform::Any> ownAnswer(const zq::platform::Selector& message,
                                             const QVariantList& arguments);
  [[noreturn]] void raiseUnrecognized(const zq::platform::Selector& message) const;

  // Constant after construction.
  zq::platform::Target target_;
  bool hasTarget_;
};

// A new proxy of a QObject, a reference object or anything derived from WeakReferenced, given by a
// pointer or a Ref; a proxy itself unchanged. Null for none.
template <class T>
zq::platform::Ref<VXMainThreadProxy> mainThreadProxy(T&& receiver) {
  const zq::platform::Target target(std::forward<T>(receiver));
  if (VXMainThreadProxy* const proxy = target.as<VXMainThreadProxy>())
    return proxy->mainThreadProxy();
  return target ? VXMainThreadProxy::make(target) : nullptr;
}

// The same: a Ref is owned by whoever holds it.
template <class T>
zq::platform::Ref<VXMainThreadProxy> copyMainThreadProxy(T&& receiver) {
  return mainThreadProxy(std::forward<T>(receiver));
}
