#include "app/commands/url_loading.h"

#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "zqticker/net/ZQURLLoader.h"

#include <QtCore/QEventLoop>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr double LeastTimeout = 0.001; // seconds
constexpr double MostTimeout = 86400;

class Waiting : public ZQURLLoaderDelegate {
 public:
  explicit Waiting(const LoadProgress& progress) : progress_(progress) {}

  void loaded(const std::optional<QByteArray>& data, const QVariantMap& context) {
    result_ = LoadedURL{data, objectOf<URLResponse>(context.value(u"response"_s)),
                        objectOf<Error>(context.value(u"error"_s))};
    loop_.quit();
  }

  bool loaderWillReceiveDataOfLength(ZQURLLoader&, qint64 length) override {
    expected_ = length;
    return true;
  }
  void loaderDidReceiveDataOfLength(ZQURLLoader&, qint64 total) override {
    if (progress_)
      progress_(total, expected_);
  }

  std::optional<LoadedURL> wait() {
    const Interrupts interrupts;
    QObject::connect(&interrupts, &Interrupts::interrupted, &loop_, &QEventLoop::quit);
    loop_.exec();
    return std::move(result_);
  }

 private:
  const LoadProgress& progress_;
  qint64 expected_ = -1;
  std::optional<LoadedURL> result_;
  QEventLoop loop_;
};
} // namespace

std::optional<LoadedURL> loadAndWait(const QUrl& url, URLRequestCachePolicy policy,
                                     double timeoutSeconds, const LoadProgress& progress) {
  Waiting waiting(progress);
  const Ref<ZQURLLoader> loader = ZQURLLoader::loaderWithURL(url, &waiting, &Waiting::loaded);
  loader->setDelegate(&waiting);
  loader->loadWithCachePolicy(policy, timeoutSeconds);
  return waiting.wait();
}

QUrl addressOf(const QString& argument) {
  if (argument.isEmpty())
    throw UsageError(u"the address is empty"_s);
  const QUrl url(argument, QUrl::TolerantMode);
  if (!url.isValid())
    throw UsageError(quotedForMessage(argument) + u": not an address"_s);
  if (url.scheme().isEmpty())
    throw UsageError(quotedForMessage(argument) +
                     u": no scheme (such as https://) begins this address"_s);
  return url;
}

double timeoutOf(const ParsedOption& option) {
  return numberOf(option, LeastTimeout, MostTimeout);
}

} // namespace zq::app
