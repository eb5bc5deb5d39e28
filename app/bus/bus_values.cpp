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

QVariant PlainValues::plainContainer(const QVariant& value, int depth) {
  const auto argument = value.value<QDBusArgument>();
  switch (argument.currentType()) {
  case QDBusArgument::MapType: {
    QVariantMap map;
    argument.beginMap();
    while (!argument.atEnd()) {
      argument.beginMapEntry();
      const QString key = plain(argument.asVariant(), depth + 1).toString();
      map.insert(key, plain(argument.asVariant(), depth + 1));
      argument.endMapEntry();
    }
    argument.endMap();
    return map;
  }
  case QDBusArgument::ArrayType:
  case QDBusArgument::StructureType: {
    const bool isArray = argument.currentType() == QDBusArgument::ArrayType;
    QVariantList list;
    isArray ? argument.beginArray() : argument.beginStructure();
    while (!argument.atEnd())
      list.append(plain(argument.asVariant(), depth + 1));
    isArray ? argument.endArray() : argument.endStructure();
    return list;
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
