#include "app/services/BoundedLoad.h"

#include "zqticker/platform/objects/Error.h"
#include "zqticker/platform/system/URLResponse.h"
#include "zqticker/platform/system/url_errors.h"

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr int FirstErrorStatus = 400;
constexpr qint64 BytesPerMebibyte = 1 << 20;
} // namespace

BoundedLoad::BoundedLoad(const QUrl& url, qint64 mostBytes, QObject* parent)
    : QObject(parent), url_(url), mostBytes_(mostBytes) {}

BoundedLoad::~BoundedLoad() {
  stop();
}

void BoundedLoad::start(URLRequestCachePolicy policy) {
  if (!url_.isValid() || url_.isEmpty()) {
    QMetaObject::invokeMethod(
        this, [this] { end(u"not an address"_s); }, Qt::QueuedConnection);
    return;
  }
  loader_ = ZQURLLoader::loaderWithURL(url_, Target(this), Selector(&BoundedLoad::loaded));
  loader_->setDelegate(this);
  loader_->loadWithCachePolicy(policy, URLRequest::DefaultTimeoutInterval);
}

void BoundedLoad::stop() {
  hasEnded_ = true;
  cancel();
}

// A loader frees itself by its completion only: what is broken off completes as failed.
void BoundedLoad::cancel() {
  const Ref<ZQURLLoader> loader = std::exchange(loader_, nullptr);
  const Ref<URLConnection> connection = loader ? loader->connection() : nullptr;
  if (!connection)
    return;
  loader->setDelegate(nullptr);
  connection->cancel();
  loader->connectionDidFailWithError(
      *connection,
      Error::make(URLErrorDomain, static_cast<int>(URLError::Cancelled), u"cancelled"_s, url_));
}

Ref<URLResponse> BoundedLoad::response() const {
  return loader_ ? objectOf<URLResponse>(loader_->context().value(u"response"_s)) : response_;
}

const QByteArray& BoundedLoad::data() const {
  return loader_ ? loader_->receivedData() : body_;
}

bool BoundedLoad::loaderWillReceiveDataOfLength(ZQURLLoader&, qint64 length) {
  if (length > mostBytes_ && !beginsInAnyCase_)
    endTooLarge();
  else
    Q_EMIT responded();
  return true;
}

void BoundedLoad::loaderDidReceiveDataOfLength(ZQURLLoader&, qint64 total) {
  if (total > mostBytes_)
    endTooLarge();
  else
    Q_EMIT grown();
}

void BoundedLoad::endTooLarge() {
  isTooLarge_ = true;
  body_ = loader_->receivedData();
  end(u"larger than %1 MiB"_s.arg(mostBytes_ / BytesPerMebibyte));
}

bool BoundedLoad::isRefused() const {
  const Ref<URLResponse> last = response();
  return last && last->statusCode() >= FirstErrorStatus;
}

void BoundedLoad::loaded(const std::optional<QByteArray>& data, const QVariantMap& context) {
  if (hasEnded_)
    return;
  response_ = response();
  body_ = data.value_or(QByteArray());
  loader_.reset();
  const Ref<Error> error = objectOf<Error>(context.value(u"error"_s));
  if (!data)
    end(error ? error->localizedDescription() : u"cannot be loaded"_s);
  else if (isRefused())
    end(u"the server answers with status %1"_s.arg(response_->statusCode()));
  else
    end(QString());
}

void BoundedLoad::end(const QString& errorText) {
  if (hasEnded_)
    return;
  response_ = response();
  hasEnded_ = true;
  cancel();
  Q_EMIT ended(errorText);
}

} // namespace zq::app
