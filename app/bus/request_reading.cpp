#include "app/bus/request_reading.h"

#include "app/bus/BusFailure.h"
#include "app/bus/bus_values.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
using Kind = BusRequest::Kind;

struct Method {
  QLatin1StringView name;
  QLatin1StringView signature;
  Kind kind;
};

constexpr Method Methods[] = {
    {"DisplayMessage"_L1, "a{sv}"_L1, Kind::DisplayMessage},
    {"DisplaySign"_L1, "ay"_L1, Kind::DisplaySign},
    {"DisplaySignFrom"_L1, "aya{sv}"_L1, Kind::DisplaySign},
    {"RemoveSign"_L1, "s"_L1, Kind::RemoveSign},
    {"ArrangeSigns"_L1, "as"_L1, Kind::ArrangeSigns},
    {"Run"_L1, "assah"_L1, Kind::Run},
    {"ShowQueue"_L1, ""_L1, Kind::ShowQueue},
    {"ShowSettings"_L1, ""_L1, Kind::ShowSettings},
    {"Pause"_L1, ""_L1, Kind::Pause},
    {"Resume"_L1, ""_L1, Kind::Resume},
    {"Hide"_L1, ""_L1, Kind::Hide},
    {"Show"_L1, ""_L1, Kind::Show},
    {"Focus"_L1, ""_L1, Kind::Focus},
    {"Quit"_L1, ""_L1, Kind::Quit},
};

// dbus-send cannot make a dictionary of variants; one of strings says as much.
constexpr QLatin1StringView StringDictionary("a{ss}");

void requireSignature(const QDBusMessage& message, QLatin1StringView signature) {
  const QString given = message.signature();
  if (given == signature || (signature == "a{sv}"_L1 && given == StringDictionary))
    return;
  throw BusFailure(BusFailure::Kind::InvalidArguments,
                   u"%1 takes (%2), not (%3)"_s.arg(message.member(), signature, given));
}

// The only one, or none.
QDBusUnixFileDescriptor readDescriptor(const QVariant& value) {
  const auto argument = value.value<QDBusArgument>();
  QDBusUnixFileDescriptor descriptor;
  argument.beginArray();
  if (!argument.atEnd())
    argument >> descriptor;
  const bool hasMore = !argument.atEnd();
  argument.endArray();
  if (hasMore)
    throw BusFailure(BusFailure::Kind::InvalidArguments, u"Run takes one descriptor at most"_s);
  return descriptor;
}

BusRequest begin(Kind kind, const QDBusMessage& message) {
  BusRequest request;
  request.kind = kind;
  request.sender = message.service();
  return request;
}
} // namespace

std::optional<BusRequest> readCall(const QDBusMessage& call) {
  const QString member = call.member();
  const auto method = std::find_if(std::begin(Methods), std::end(Methods),
                                   [&](const Method& one) { return one.name == member; });
  if (method == std::end(Methods))
    return std::nullopt;
  requireSignature(call, method->signature);
  BusRequest request = begin(method->kind, call);
  const QList<QVariant> arguments = call.arguments();
  PlainValues values;
  switch (request.kind) {
  case Kind::DisplayMessage:
    request.dictionary = values.plain(arguments.at(0)).toMap();
    break;
  case Kind::DisplaySign:
    request.archive = values.plain(arguments.at(0)).toByteArray();
    if (arguments.size() > 1)
      request.dictionary = values.plain(arguments.at(1)).toMap();
    break;
  case Kind::RemoveSign:
    request.text = values.plain(arguments.at(0)).toString();
    break;
  case Kind::ArrangeSigns:
    request.strings = values.plain(arguments.at(0)).toStringList();
    break;
  case Kind::Run:
    request.strings = values.plain(arguments.at(0)).toStringList();
    request.text = values.plain(arguments.at(1)).toString();
    request.descriptor = readDescriptor(arguments.at(2));
    break;
  case Kind::DisplayNotification: // no method
  case Kind::ShowQueue:
  case Kind::ShowSettings:
  case Kind::Pause:
  case Kind::Resume:
  case Kind::Hide:
  case Kind::Show:
  case Kind::Focus:
  case Kind::Quit:
    break;
  }
  request.bytes = values.bytes();
  return request;
}

BusRequest readNotification(const QDBusMessage& signal) {
  requireSignature(signal, "a{sv}"_L1);
  BusRequest request = begin(Kind::DisplayNotification, signal);
  PlainValues values;
  request.dictionary = values.plain(signal.arguments().at(0)).toMap();
  request.bytes = values.bytes();
  return request;
}

} // namespace zq::app
