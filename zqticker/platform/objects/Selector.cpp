#include "zqticker/platform/objects/Selector.h"

#include <QtCore/QMetaMethod>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// The most arguments that a method invoked by name takes.
constexpr qsizetype MostArguments = 10;

QString capitalized(const QString& word) {
  return word.isEmpty() ? word : word.front().toUpper() + word.sliced(1);
}

// Whether `method` is what "first:second:" calls: as many parameters as colons, the first words
// joined to its name, its other parameters called as the rest.
bool isCalled(const QMetaMethod& method, const QStringList& words) {
  if (method.parameterCount() != words.size())
    return false;
  const QString name = QString::fromLatin1(method.name());
  if (!name.startsWith(words.first()))
    return false;
  const QList<QByteArray> parameters = method.parameterNames();
  const auto namesParameter = [&](qsizetype i) {
    return parameters.at(i) == words.at(i).toLatin1();
  };
  QString joined;
  for (qsizetype used = 0; used < words.size(); ++used) {
    joined += used == 0 ? words.first() : capitalized(words.at(used));
    if (joined != name)
      continue;
    qsizetype rest = used + 1;
    while (rest < words.size() && namesParameter(rest))
      ++rest;
    if (rest == words.size())
      return true;
  }
  return false;
}

// The most derived public method called `name` that takes at most `argumentCount` arguments; of
// several the one with the most parameters. Invalid where there is none.
QMetaMethod methodCalled(const QString& name, const QMetaObject& metaObject,
                         qsizetype argumentCount) {
  const bool hasWords = name.endsWith(u':');
  const QStringList words = hasWords ? name.chopped(1).split(u':') : QStringList();
  const QByteArray plainName = name.toLatin1();
  QMetaMethod found;
  for (int i = metaObject.methodCount() - 1; i >= 0; --i) {
    const QMetaMethod method = metaObject.method(i);
    if (method.access() != QMetaMethod::Public || method.parameterCount() > argumentCount ||
        method.parameterCount() > MostArguments)
      continue;
    if (hasWords ? !isCalled(method, words) : method.name() != plainName)
      continue;
    if (!found.isValid() || method.parameterCount() > found.parameterCount())
      found = method;
  }
  return found;
}

struct Receiver {
  Ref<Object> object;
  QObject* qObject = nullptr;

  explicit Receiver(const Target& target) : object(target.object()), qObject(target.qObject()) {}

  const QMetaObject* metaObject() const {
    if (object)
      return object->metaObject();
    return qObject ? qObject->metaObject() : nullptr;
  }
};

Any argumentFor(const QMetaMethod& method, int index, const Any& value) {
  const QMetaType type = method.parameterMetaType(index);
  if (!value.isValid())
    return Any(type);
  Any argument = value;
  if (!argument.convert(type))
    throw InvalidArgumentException(u"%1 cannot be passed as %2"_s.arg(
        QLatin1StringView(value.typeName()), QLatin1StringView(type.name())));
  return argument;
}

Any invoke(const Receiver& receiver, const QMetaMethod& method, const QVariantList& arguments) {
  const QMetaType anyType = QMetaType::fromType<Any>();
  const auto storageOf = [&](Any& value, QMetaType type) -> void* {
    return type == anyType ? static_cast<void*>(&value) : value.data();
  };
  std::vector<Any> values;
  std::array<QGenericArgument, MostArguments> passed;
  values.reserve(static_cast<std::size_t>(method.parameterCount()));
  for (int i = 0; i < method.parameterCount(); ++i) {
    const QMetaType type = method.parameterMetaType(i);
    values.push_back(type == anyType ? arguments.at(i) : argumentFor(method, i, arguments.at(i)));
    passed[std::size_t(i)] = QGenericArgument(type.name(), storageOf(values.back(), type));
  }
  const QMetaType resultType = method.returnMetaType();
  const bool hasResult = resultType != QMetaType::fromType<void>();
  Any result = hasResult && resultType != anyType ? Any(resultType) : Any();
  const QGenericReturnArgument returned =
      hasResult ? QGenericReturnArgument(resultType.name(), storageOf(result, resultType))
                : QGenericReturnArgument();
  const auto call = [&](auto invokeWith) { return std::apply(invokeWith, passed); };
  const bool called =
      receiver.object ? call([&](const auto&... each) {
        return method.invokeOnGadget(dynamic_cast<void*>(receiver.object.get()), returned, each...);
      })
                      : call([&](const auto&... each) {
                          return method.invoke(receiver.qObject, Qt::DirectConnection, returned,
                                               each...);
                        });
  if (!called)
    throw InvalidArgumentException(QString::fromLatin1(method.methodSignature()) +
                                   " cannot be called by name"_L1);
  return result;
}
} // namespace

bool Selector::isAnsweredBy(const Target& target, qsizetype argumentCount) const {
  if (method_)
    return method_->parameterCount() <= argumentCount && method_->isMemberOf(target);
  if (name_.isEmpty())
    return false;
  const Receiver receiver(target);
  return receiver.metaObject() &&
         methodCalled(name_, *receiver.metaObject(), argumentCount).isValid();
}

Any Selector::send(const Target& target, const QVariantList& arguments) const {
  if (!*this || !target)
    return Any();
  const Receiver receiver(target);
  if (method_) {
    if (method_->parameterCount() <= arguments.size() && method_->isMemberOf(target))
      return method_->call(target, arguments);
  } else if (receiver.metaObject()) {
    const QMetaMethod method = methodCalled(name_, *receiver.metaObject(), arguments.size());
    if (method.isValid())
      return invoke(receiver, method, arguments);
  }
  throw UnrecognizedSelectorException(
      target.description() + " does not answer "_L1 +
      (name_.isEmpty() ? u"a member function of another class"_s : name_));
}

} // namespace zq::platform
