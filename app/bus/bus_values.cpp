#include "app/bus/bus_values.h"

#include "app/bus/BusFailure.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusUnixFileDescriptor>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype BytesOfOthers = 16;

[[noreturn]] void refuse(const QString& what) {
  throw BusFailure(BusFailure::Kind::TooMuch, what);
}

// A container that is being read. It is left in any case: one that was not would keep the whole
// message for ever.
class Reading {
 public:
  using Step = void (QDBusArgument::*)() const;

  Reading(const QDBusArgument& argument, Step begin, Step end) : argument_(argument), end_(end) {
    (argument_.*begin)();
  }
  ~Reading() { (argument_.*end_)(); }
  Reading(const Reading&) = delete;

 private:
  const QDBusArgument& argument_;
  Step end_;
};

template <typename T>
bool holds(const QVariant& value) {
  return value.metaType() == QMetaType::fromType<T>();
}
} // namespace

void PlainValues::countBytes(qsizetype bytes) {
  bytes_ += bytes;
  if (bytes_ > limits_.bytes)
    refuse(u"more than %1 bytes"_s.arg(limits_.bytes));
}

QVariant PlainValues::plain(const QVariant& value, int depth) {
  if (++values_ > limits_.values)
    refuse(u"more than %1 values"_s.arg(limits_.values));
  if (depth > limits_.depth)
    refuse(u"containers nested more than %1 deep"_s.arg(limits_.depth));
  if (holds<QDBusVariant>(value))
    return plain(value.value<QDBusVariant>().variant(), depth + 1);
  if (holds<QDBusArgument>(value))
    return plainContainer(value, depth);
  if (holds<QDBusObjectPath>(value))
    return plain(value.value<QDBusObjectPath>().path(), depth);
  if (holds<QDBusSignature>(value))
    return plain(value.value<QDBusSignature>().signature(), depth);
  if (holds<QByteArray>(value)) {
    countBytes(value.toByteArray().size());
  } else if (holds<QString>(value)) {
    countBytes(value.toString().size() * qsizetype(sizeof(QChar)));
  } else if (holds<QStringList>(value)) {
    for (const QString& string : value.toStringList())
      plain(string, depth + 1);
  } else {
    countBytes(BytesOfOthers);
  }
  return holds<QDBusUnixFileDescriptor>(value) ? QVariant() : value;
}

QVariant PlainValues::plainElements(const QDBusArgument& container, int depth) {
  QVariantList list;
  while (!container.atEnd())
    list.append(plain(container.asVariant(), depth + 1));
  return list;
}

QVariant PlainValues::plainContainer(const QVariant& value, int depth) {
  const auto argument = value.value<QDBusArgument>();
  switch (argument.currentType()) {
  case QDBusArgument::MapType: {
    QVariantMap map;
    const Reading reading(argument, &QDBusArgument::beginMap, &QDBusArgument::endMap);
    while (!argument.atEnd()) {
      const Reading entry(argument, &QDBusArgument::beginMapEntry, &QDBusArgument::endMapEntry);
      const QString key = plain(argument.asVariant(), depth + 1).toString();
      map.insert(key, plain(argument.asVariant(), depth + 1));
    }
    return map;
  }
  case QDBusArgument::ArrayType: {
    const Reading reading(argument, &QDBusArgument::beginArray, &QDBusArgument::endArray);
    return plainElements(argument, depth);
  }
  case QDBusArgument::StructureType: {
    const Reading reading(argument, &QDBusArgument::beginStructure, &QDBusArgument::endStructure);
    return plainElements(argument, depth);
  }
  case QDBusArgument::BasicType:
  case QDBusArgument::VariantType:
    return plain(argument.asVariant(), depth + 1);
  case QDBusArgument::MapEntryType:
  case QDBusArgument::UnknownType:
    break;
  }
  return QVariant();
}

QVariant plainValue(const QVariant& value, const ValueLimits& limits) {
  return PlainValues(limits).plain(value);
}

} // namespace zq::app
