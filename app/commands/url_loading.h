// Loading one address for a command that has nothing else to do.
#pragma once

#include "app/commands/OptionTable.h"
#include "zqticker/platform/objects/Error.h"
#include "zqticker/platform/system/URLRequest.h"
#include "zqticker/platform/system/URLResponse.h"

#include <functional>
#include <optional>

namespace zq::app {

// What a load came to: data, or an error. A response can have come before an error.
struct LoadedURL {
  std::optional<QByteArray> data;
  platform::Ref<platform::URLResponse> response;
  platform::Ref<platform::Error> error;
};

// Hears of bytes as they arrive: how many so far, and how many there will be (-1 when unknown).
using LoadProgress = std::function<void(qint64 received, qint64 expected)>;

// Loads `url` and waits for the end in an event loop of its own; the application's other events go
// on meanwhile. No result where SIGINT or another polite request to end came first.
//
// `timeoutSeconds` counts from the last byte. Needs a QCoreApplication.
std::optional<LoadedURL> loadAndWait(const QUrl& url, platform::URLRequestCachePolicy policy,
                                     double timeoutSeconds, const LoadProgress& progress = {});

// The address that an argument states. UsageError naming the argument for one that is none, or
// that has no scheme.
QUrl addressOf(const QString& argument);

// The seconds that a time-out option states, from a millisecond to a day. UsageError like numberOf.
double timeoutOf(const ParsedOption& option);

} // namespace zq::app
