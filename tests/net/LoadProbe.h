// Hears of one loader, as its target and as its delegate, and keeps what it heard.
#pragma once

#include "zqticker/net/ZQURLLoader.h"
#include "zqticker/platform/objects/Error.h"
#include "zqticker/platform/system/URLConnection.h"
#include "zqticker/platform/system/URLResponse.h"
#include "zqticker/platform/system/url_errors.h"

#include <QtCore/QByteArray>
#include <QtCore/QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zq::testing {

class LoadProbe : public ZQURLLoaderDelegate {
 public:
  // A loader with this probe as target and delegate, not yet loading. The probe does not own it.
  std::shared_ptr<ZQURLLoader> prepare(const QUrl& url, const platform::Any& userInfo = {});
  // The same, loading with the default settings.
  void start(const QUrl& url);
  // The same, to the end. Returns whether there was one completion.
  bool load(const QUrl& url);
  // The same with a time-out in seconds.
  bool load(const QUrl& url, double timeout);

  bool isFinished() const { return completions > 0 && data.has_value() && !error; }
  int status() const { return response ? response->statusCode() : -1; }
  // The code of the error, 0 without one.
  int errorCode() const { return error ? error->code() : 0; }

  void loaded(const std::optional<QByteArray>& body, const QVariantMap& arguments);
  bool loaderWillReceiveDataOfLength(ZQURLLoader& loader, qint64 length) override;
  void loaderDidReceiveDataOfLength(ZQURLLoader& loader, qint64 total) override;

  // What came.
  int completions = 0;
  std::optional<QByteArray> data;
  std::shared_ptr<platform::URLResponse> response;
  std::shared_ptr<platform::Error> error;
  QStringList contextKeys;
  std::vector<qint64> lengths; // expected, one for each response
  std::vector<qint64> totals;

  // Called last in each.
  std::function<void(ZQURLLoader& loader)> onLength;
  std::function<void(ZQURLLoader& loader, qint64 total)> onTotal;
  std::function<void(const QVariantMap& context)> onCompletion;

  // The loader of the last load, without owning it.
  std::weak_ptr<ZQURLLoader> loader;
};

// The limit of a body for the length of a scope.
class BodyLimit {
 public:
  explicit BodyLimit(qint64 bytes);
  ~BodyLimit();
  BodyLimit(const BodyLimit&) = delete;
  BodyLimit& operator=(const BodyLimit&) = delete;

 private:
  const qint64 previous_ = platform::URLConnection::maximumBodyLength();
};

// The authority that is trusted for the length of a scope.
class TrustedAuthority {
 public:
  explicit TrustedAuthority(const QString& file);
  ~TrustedAuthority();
  TrustedAuthority(const TrustedAuthority&) = delete;
  TrustedAuthority& operator=(const TrustedAuthority&) = delete;

 private:
  const QString previous_ = platform::URLConnection::certificateAuthorityFile();
};

} // namespace zq::testing
