#include "zqticker/net/ZQURLLoader.h"

#include "zqticker/net/living_loaders_p.h"

#include <QtCore/QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
const QString LoaderKey = u"ZQURLLoader"_s;
const QString UserInfoKey = u"userInfo"_s;
const QString ResponseKey = u"response"_s;
const QString ErrorKey = u"error"_s;

// The most bytes that are set aside on the word of a response alone.
constexpr qint64 MostReservedBytes = qint64(64) << 20;

// Appends with room to spare where the buffer is full. A buffer that is reserved anew can grow
// where it stands or be moved page by page; one that appends by itself is copied, and for that
// moment is there twice.
void appendTo(QByteArray& buffer, QByteArrayView data) {
  const qsizetype needed = buffer.size() + data.size();
  if (needed > buffer.capacity())
    buffer.reserve(std::max(needed, 2 * buffer.capacity()));
  buffer.append(data);
}

// An empty buffer that is a value: nothing is said by the invalid QVariant only.
QByteArray emptyData() {
  return QByteArray("");
}
} // namespace

ZQURLLoaderDelegate::~ZQURLLoaderDelegate() = default;

bool ZQURLLoaderDelegate::loaderWillReceiveDataOfLength(ZQURLLoader&, qint64) {
  return false;
}

ZQURLLoader::ZQURLLoader() : receivedData_(emptyData()) {}

ZQURLLoader::~ZQURLLoader() = default;

Ref<ZQURLLoader> ZQURLLoader::loaderWithURL(const QUrl& URL, const Target& target,
                                            const Selector& selector, const Any& userInfo) {
  auto loader = std::make_shared<ZQURLLoader>();
  loader->initWithURL(URL, target, selector, userInfo);
  return loader;
}

void ZQURLLoader::initWithURL(const QUrl& URL, const Target& target, const Selector& selector,
                              const Any& userInfo) {
  const Ref<ZQURLLoader> self = std::static_pointer_cast<ZQURLLoader>(shared_from_this());
  url_ = URL;
  target_ = target;
  selector_ = selector;
  context_ = {{LoaderKey, any(self)}};
  if (userInfo.isValid())
    context_.insert(UserInfoKey, userInfo);
  keepLoader(self);
}

void ZQURLLoader::load() {
  loadRequest(URLRequest::requestWithURL(url_));
}

void ZQURLLoader::loadWithCachePolicy(URLRequestCachePolicy cachePolicy, double timeoutInterval) {
  loadRequest(URLRequest::requestWithURL(url_, cachePolicy, timeoutInterval));
}

void ZQURLLoader::loadRequest(const Ref<URLRequest>& request) {
  request_ = request;
  if (request_)
    connection_ = URLConnection::connectionWithRequest(request_, Weak<URLConnectionDelegate>(this));
}

void ZQURLLoader::setReceivedData(const QByteArray& receivedData) {
  receivedData_ = receivedData;
}

void ZQURLLoader::setRequest(const Ref<URLRequest>& request) {
  request_ = request;
}

void ZQURLLoader::setConnection(const Ref<URLConnection>& connection) {
  connection_ = connection;
}

void ZQURLLoader::setContext(QVariantMap context) {
  // The old one goes last: it may be all that holds the loader.
  context_.swap(context);
}

void ZQURLLoader::setURL(const QUrl& URL) {
  url_ = URL;
}

void ZQURLLoader::connectionDidReceiveResponse(URLConnection&, const Ref<URLResponse>& response) {
  const Ref<Object> self = weak_from_this().lock();
  context_.insert(ResponseKey, any(response));
  receivedData_ = emptyData();
  const qint64 length = response ? response->expectedContentLength() : -1;
  if (length > 0)
    receivedData_.reserve(qsizetype(std::min(length, MostReservedBytes)));
  if (ZQURLLoaderDelegate* receiver = delegate_.get())
    receiver->loaderWillReceiveDataOfLength(*this, length);
}

Ref<URLRequest> ZQURLLoader::connectionWillSendRequest(URLConnection&,
                                                       const Ref<URLRequest>& request,
                                                       const Ref<URLResponse>&) {
  return request;
}

void ZQURLLoader::connectionDidReceiveData(URLConnection&, QByteArrayView data) {
  const Ref<Object> self = weak_from_this().lock();
  appendTo(receivedData_, data);
  if (ZQURLLoaderDelegate* receiver = delegate_.get())
    receiver->loaderDidReceiveDataOfLength(*this, receivedData_.size());
}

void ZQURLLoader::connectionDidFailWithError(URLConnection&, const Ref<Error>& error) {
  context_.insert(ErrorKey, any(error));
  complete(Any());
}

void ZQURLLoader::connectionDidFinishLoading(URLConnection&) {
  complete(receivedData_);
}

void ZQURLLoader::complete(const Any& data) {
  if (isCompleted_)
    return;
  isCompleted_ = true;
  const Ref<ZQURLLoader> self = std::static_pointer_cast<ZQURLLoader>(shared_from_this());
  // Also when the target raises. After the call, so that the event loop of a dialogue which the
  // target shows does not count as the end of this unit of work.
  const auto release = qScopeGuard([&] { releaseLoaderAfterUnitOfWork(self); });
  selector_.send(target_, {data, context_});
}
