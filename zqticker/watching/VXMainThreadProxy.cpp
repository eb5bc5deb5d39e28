#include "zqticker/watching/VXMainThreadProxy.h"

#include <iterator>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
using Answer = Any (*)(VXMainThreadProxy& proxy, const QVariantList& arguments);

// An operation of the proxy itself, under the system's name.
struct OwnOperation {
  QLatin1StringView name;
  qsizetype argumentCount;
  Answer answer;
};

Selector selectorOf(const Any& name) {
  return Selector(name.toString());
}

const OwnOperation OwnOperations[] = {
    {"respondsToSelector:"_L1, 1,
     [](VXMainThreadProxy& proxy, const QVariantList& arguments) -> Any {
       return proxy.respondsToSelector(selectorOf(arguments.at(0)));
     }},
    {"performSelector:"_L1, 1,
     [](VXMainThreadProxy& proxy, const QVariantList& arguments) -> Any {
       return proxy.performSelector(selectorOf(arguments.at(0)));
     }},
    {"performSelector:withObject:"_L1, 2,
     [](VXMainThreadProxy& proxy, const QVariantList& arguments) -> Any {
       return proxy.performSelector(selectorOf(arguments.at(0)), arguments.at(1));
     }},
    {"mainThreadProxy"_L1, 0,
     [](VXMainThreadProxy& proxy, const QVariantList&) -> Any {
       return any(proxy.mainThreadProxy());
     }},
    {"copyMainThreadProxy"_L1, 0,
     [](VXMainThreadProxy& proxy, const QVariantList&) -> Any {
       return any(proxy.copyMainThreadProxy());
     }},
    {"description"_L1, 0,
     [](VXMainThreadProxy& proxy, const QVariantList&) -> Any { return proxy.description(); }},
    {"className"_L1, 0,
     [](VXMainThreadProxy& proxy, const QVariantList&) -> Any { return proxy.className(); }},
    {"isEqual:"_L1, 1,
     [](VXMainThreadProxy& proxy, const QVariantList& arguments) -> Any {
       const Ref<Object> other = objectOf(arguments.at(0));
       return other && proxy.isEqual(*other);
     }},
};

// The most parameters first, so that "performSelector" with two arguments means the longer one.
const OwnOperation* ownOperation(const QString& name, qsizetype argumentCount) {
  const OwnOperation* found = nullptr;
  for (const OwnOperation& operation : OwnOperations) {
    // Without its colons the first word is the C++ name.
    const QLatin1StringView word = operation.name.first(
        operation.argumentCount ? operation.name.indexOf(':'_L1) : operation.name.size());
    if (operation.argumentCount <= argumentCount && (name == operation.name || name == word) &&
        (!found || operation.argumentCount > found->argumentCount))
      found = &operation;
  }
  return found;
}
} // namespace

Ref<VXMainThreadProxy> VXMainThreadProxy::make(const Target& target) {
  return Ref<VXMainThreadProxy>(new VXMainThreadProxy(target));
}

VXMainThreadProxy::VXMainThreadProxy(const Target& target)
    : target_(target), hasTarget_(static_cast<bool>(target)) {}

VXMainThreadProxy::~VXMainThreadProxy() = default;

bool VXMainThreadProxy::respondsToSelector(const Selector& message) const {
  constexpr qsizetype AnyNumber = 10;
  if (!message.name().isEmpty() && ownOperation(message.name(), AnyNumber))
    return true;
  // Only asked: nothing is sent to the proxy itself.
  auto* const self = const_cast<VXMainThreadProxy*>(this);
  return message.isAnsweredBy(Target(self)) || message.isAnsweredBy(target_);
}

std::optional<Any> VXMainThreadProxy::ownAnswer(const Selector& message,
                                                const QVariantList& arguments) {
  if (message.name().isEmpty()) {
    const Target self(this);
    if (message.isAnsweredBy(self, arguments.size()))
      return message.send(self, arguments);
    return std::nullopt;
  }
  if (const OwnOperation* const operation = ownOperation(message.name(), arguments.size()))
    return operation->answer(*this, arguments);
  return std::nullopt;
}

Any VXMainThreadProxy::send(const Selector& message, const QVariantList& arguments) {
  if (const std::optional<Any> answer = ownAnswer(message, arguments))
    return *answer;
  // Released by this thread, should it be the last reference.
  const Ref<Object> kept = target_.object();
  if (!message || (hasTarget_ && !target_))
    return Any();
  if (!message.isAnsweredBy(target_, arguments.size()))
    raiseUnrecognized(message);
  return performOnMainThreadAndWait([&] { return message.send(target_, arguments); });
}

Any VXMainThreadProxy::performSelector(const Selector& message) {
  if (const std::optional<Any> answer = ownAnswer(message, {}))
    return *answer;
  send(message);
  return Any(); // deliberately not the result
}

Any VXMainThreadProxy::performSelector(const Selector& message, const Any& object) {
  const QVariantList arguments{object};
  if (const std::optional<Any> answer = ownAnswer(message, arguments))
    return *answer;
  send(message, arguments);
  return Any(); // deliberately not the result
}

Ref<VXMainThreadProxy> VXMainThreadProxy::mainThreadProxy() {
  return std::static_pointer_cast<VXMainThreadProxy>(shared_from_this());
}

Ref<VXMainThreadProxy> VXMainThreadProxy::copyMainThreadProxy() {
  return mainThreadProxy();
}

void VXMainThreadProxy::raiseUnrecognized(const Selector& message) const {
  throw UnrecognizedSelectorException(
      defaultDescription() + " does not answer "_L1 +
      (message.name().isEmpty() ? u"a member function of another class"_s : message.name()));
}
