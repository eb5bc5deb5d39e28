#include "app/bus/BusFailure.h"

#include "app/bus/bus_names.h"

using namespace Qt::StringLiterals;

namespace zq::app {

BusFailure::BusFailure(Kind kind, const QString& message)
    : std::runtime_error(message.toStdString()), kind_(kind), message_(message) {}

BusFailure::~BusFailure() = default;

QString BusFailure::errorName() const {
  switch (kind_) {
  case Kind::InvalidMessage:
    return InvalidMessageErrorName;
  case Kind::InvalidSign:
    return InvalidSignErrorName;
  case Kind::TooMuch:
    return TooMuchErrorName;
  case Kind::InvalidArguments:
    return u"org.freedesktop.DBus.Error.InvalidArgs"_s;
  case Kind::Failed:
    break;
  }
  return FailedErrorName;
}

} // namespace zq::app
