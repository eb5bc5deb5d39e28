// Values from the bus as plain ones.
#pragma once

#include <QtCore/QVariant>

class QDBusArgument;

namespace zq::app {

// What a value may hold in all, so that a sender cannot make much of little.
struct ValueLimits {
  int depth = 8;                         // containers in containers
  qsizetype values = 10'000;             // elements of all containers, bytes of arrays aside
  qsizetype bytes = qsizetype(32) << 20; // of strings and byte arrays
};

// Takes values from the bus apart within limits that they share. Raises BusFailure (TooMuch) beyond
// them.
class PlainValues {
 public:
  explicit PlainValues(const ValueLimits& limits = {}) : limits_(limits) {}

  // The value with every container and every variant in it taken apart: a dictionary is a
  // QVariantMap, its keys as text; an array or a structure is a QVariantList, an array of strings a
  // QStringList, an array of bytes a QByteArray; a path or a signature is a QString; a descriptor,
  // which has no value of its own, an invalid QVariant. Numbers keep their types.
  QVariant plain(const QVariant& value) { return plain(value, 0); }

  // Bytes of strings and byte arrays so far, and a few for every other value.
  qsizetype bytes() const { return bytes_; }

 private:
  QVariant plain(const QVariant& value, int depth);
  QVariant plainContainer(const QVariant& value, int depth);
  QVariant plainElements(const QDBusArgument& container, int depth);
  void countBytes(qsizetype bytes);

  ValueLimits limits_;
  qsizetype values_ = 0;
  qsizetype bytes_ = 0;
};

// One value by itself.
QVariant plainValue(const QVariant& value, const ValueLimits& limits = {});

} // namespace zq::app
